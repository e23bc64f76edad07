"""The module tree: its names, its types, its markers, its version objects."""

from __future__ import annotations

import enum
import sys
from typing import Any

import pytest
import samples
from samples import CATALOGUE

SUBMODULES = ("animation", "deformers", "entities", "formats", "profiles", "render", "shading", "utilities")


def test_modules_are_attributes(voxlar: Any) -> None:
    for name in SUBMODULES:
        assert getattr(voxlar, name).__name__ == f"velbor.voxlar.{name}"
        assert f"velbor.voxlar.{name}" not in sys.modules
    assert voxlar._wrpgen._interop.__name__ == "velbor.voxlar._wrpgen._interop"
    assert voxlar._wrpgen._generic._ArrayWrapper_A4A29720.__name__ == "_ArrayWrapper_A4A29720"


def test_the_generic_wrappers(voxlar: Any) -> None:
    names = [name for name in vars(voxlar._wrpgen._generic) if "Wrapper_" in name]
    assert len(names) == 82
    kinds = [name.partition("_")[2].partition("Wrapper")[0] for name in names]
    assert {kind: kinds.count(kind) for kind in set(kinds)} == {"Array": 10, "IList": 25, "ICol": 2, "Iter": 39, "List": 6}


def test_versions(voxlar: Any) -> None:
    version, threshold = voxlar.VERSION, voxlar._BACKWARD_COMPATIBILITY_THRESHOLD
    assert (version.view, str(version), repr(version)) == (
        "23.8.0.0", "23.8.0.0", "<velbor.voxlar._ModuleVersionType: 23.8.0.0>")  # fmt: skip
    assert (version.major, version.minor, version.patch, version.sub) == (23, 8, 0, 0)
    assert threshold.view == "22.6.0.0"
    assert not version < threshold and version > threshold and version != threshold and version == version
    assert version.__eq__("23.8.0.0") is NotImplemented
    expected = 2166136261
    for byte in b"".join(part.to_bytes(4, "little") for part in (23, 8, 0, 0)):
        expected = (expected ^ byte) * 16777619 % 2**32
    assert hash(version) == (expected - 2**32 if expected >= 2**31 else expected)
    with pytest.raises(TypeError):
        voxlar._ModuleVersionType()


def test_hook_dirs(voxlar: Any) -> None:
    dirs = voxlar.get_pyinstaller_hook_dirs()
    assert len(dirs) == 5
    assert all(path.endswith("__pyinstaller") for path in dirs)
    assert [path.split("/")[-2] for path in dirs[1:]] == ["voxlar", "pyreflection", "pygc", "pycore"]
    with pytest.raises(TypeError):
        voxlar.get_pyinstaller_hook_dirs(1)
    assert voxlar.get_pyinstaller_hook_dirs.__doc__.startswith("Function required by PyInstaller.")


def test_every_type_is_there_and_marked(voxlar: Any) -> None:
    for wrapped in CATALOGUE.types.values():
        python_type = samples.python_type(voxlar, wrapped)
        own = python_type.__dict__
        assert own["_velbor_clr_host"] is (Ellipsis if wrapped.is_struct else None), wrapped.name
        assert own["_velbor_clr_castable_obj"] is None
        interfaces = {samples.python_type(voxlar, CATALOGUE.types[name]) for name in wrapped.interfaces}
        if wrapped.is_interface and wrapped.base is not None:
            interfaces.add(samples.python_type(voxlar, wrapped.base))
        if wrapped.iterable:
            interfaces.add(voxlar._wrpgen._interop._IterableWrapper)
        if wrapped.disposable:
            interfaces.add(voxlar._wrpgen._interop._IDisposableWrapper)
        for marker in ("_additional_interfaces", "_implicit_interfaces"):
            assert own.get(marker, set()) == interfaces, wrapped.name
            assert (marker in own) == bool(interfaces)
        qualified = f"{wrapped.outer_name}.{wrapped.name}" if wrapped.outer_name else wrapped.name
        assert f"{python_type.__module__}.{python_type.__name__}" == f"{wrapped.module.name}.{qualified}"
        expected_base = object
        if wrapped.base is not None and not wrapped.is_interface:
            expected_base = samples.python_type(voxlar, wrapped.base)
        assert python_type.__base__ is expected_base
        assert python_type.__doc__ is None
    assert "_velbor_clr_host" not in voxlar._wrpgen._interop._ShlBufferView.__dict__


def test_the_nested_type(voxlar: Any) -> None:
    segment = voxlar.entities.CompositeCurve.Segment
    assert segment.__name__ == "Segment"
    assert segment.__module__ == "velbor.voxlar.entities.CompositeCurve"
    assert not hasattr(voxlar.entities, "Segment")


def test_every_enum(voxlar: Any) -> None:
    for row in CATALOGUE.enums.values():
        owner = voxlar if row.module is CATALOGUE.modules[0] else getattr(voxlar, row.module.short)
        made = getattr(owner, row.name)
        assert issubclass(made, enum.IntFlag if row.flags else enum.IntEnum)
        assert [(name, int(member)) for name, member in made.__members__.items()] == list(row.members)
        assert made.__dict__["_velbor_clr_castable_obj"] is Ellipsis
        assert made.__name__ == made.__qualname__ == row.name
        assert len(list(made)) <= len(row.members)


def test_types_cannot_be_derived_from_or_changed(voxlar: Any) -> None:
    with pytest.raises(TypeError):
        type("X", (voxlar.Scene,), {})
    with pytest.raises(TypeError):
        voxlar.FileFormat.PLY = 1
    with pytest.raises(AttributeError):
        voxlar.Node().anything = 1
    import weakref

    with pytest.raises(TypeError):
        weakref.ref(voxlar.Node())


def test_descriptor_types(voxlar: Any) -> None:
    assert voxlar._FieldDescrType.__name__ == "_FieldDescrType"
    assert voxlar._MixMethodDescrType.__name__ == "_MixMethodDescrType"
    field = voxlar.utilities.Vector3.__dict__["ORIGIN"]
    assert type(field) is voxlar._FieldDescrType
    assert repr(field) == "<attribute 'ORIGIN' of 'velbor.voxlar.utilities.Vector3' objects>"
    assert field.__doc__ is None
    with pytest.raises(TypeError, match="descriptor 'ORIGIN' needs a type, not 'int', as arg 2"):
        field.__get__(None, 5)
