"""Edges of the families: interfaces and their markers, flags, second initialisation, descriptors of enums, casts."""

from __future__ import annotations

import weakref
from typing import Any, List

import pytest
from generator.model import Kind
from samples import CATALOGUE, arguments, blank


def interface_setters() -> List[Any]:
    """(type, property) of each writable property whose type is an interface."""
    return [(wrapped, prop) for wrapped in CATALOGUE.types.values() for prop in wrapped.properties
            if prop.type.kind is Kind.INTERFACE and not prop.read_only]  # fmt: skip


def test_a_type_that_lists_an_interface_passes_without_a_question(managed: Any, voxlar: Any) -> None:
    tried = 0
    for wrapped in CATALOGUE.types.values():
        for method in wrapped.methods:
            for overload in method.overloads:
                for position, parameter in enumerate(overload.parameters):
                    if parameter.type.kind is not Kind.INTERFACE:
                        continue
                    wanted = parameter.type.type_name
                    fitting = [t for t in CATALOGUE.types.values() if wanted in (*t.interfaces, t.base_name)]
                    for implementer in fitting[:3]:
                        values = arguments(voxlar, overload)
                        values[position] = blank(voxlar, implementer)
                        this = blank(voxlar, wrapped)
                        managed.calls.clear()
                        getattr(type(this) if method.static else this, method.name)(*values)
                        asked = [c for c, name, _ in managed.calls if name == "btp_IsAssignable"]
                        assert CATALOGUE.types[wanted].managed_class not in asked
                        tried += bool(managed.calls_of(overload.entry))
    for wrapped, prop in interface_setters():
        wanted = prop.type.type_name
        for implementer in [t for t in CATALOGUE.types.values() if wanted in (*t.interfaces, t.base_name)]:
            managed.calls.clear()
            setattr(blank(voxlar, wrapped), prop.name, blank(voxlar, implementer))
            assert managed.calls_of("btp_IsAssignable") == [] and len(managed.calls_of(prop.setter)) == 1
            tried += 1
    assert tried > 0
    print(f"{tried} arguments passed by their marker")


def test_any_other_wrapper_is_asked_about(managed: Any, voxlar: Any) -> None:
    tried = 0
    for wrapped, prop in interface_setters():
        wanted = CATALOGUE.types[prop.type.type_name]
        this, sibling = blank(voxlar, wrapped), voxlar.Node._type_of()
        managed.answer(wanted.name, "btp_IsAssignable", lambda value: 1)
        setattr(this, prop.name, sibling)
        managed.answer(wanted.name, "btp_IsAssignable", lambda value: 0)
        with pytest.raises(TypeError, match=f"^can't build {wanted.name} value from "):
            setattr(this, prop.name, sibling)
        with pytest.raises(TypeError, match=f"^can't build {wanted.name} value from 'int'$"):
            setattr(this, prop.name, 5)
        setattr(this, prop.name, None)
        tried += 1
    print(f"{tried} interfaces asked")


def test_a_marker_is_no_python_base(voxlar: Any) -> None:
    mesh = voxlar.entities.Mesh.__new__(voxlar.entities.Mesh)
    assert not isinstance(mesh, voxlar.INamedObject)
    assert isinstance(mesh, voxlar.Entity)


def test_derived_interfaces_answer_as_their_base(managed: Any, voxlar: Any) -> None:
    for name in ("ITexture1D", "ITexture2D", "ITextureCubemap"):
        derived = getattr(voxlar.render, name)
        for prop in CATALOGUE.types["ITextureUnit"].properties:
            assert prop.name in derived.__dict__, f"{name}.{prop.name}"
    for name in ("IRenderTexture", "IRenderWindow"):
        assert {"size", "viewports", "create_viewport"} <= set(getattr(voxlar.render, name).__dict__)


def test_flags_combine(managed: Any, voxlar: Any) -> None:
    flags = voxlar.PropertyFlags
    both = list(flags)[-1] | list(flags)[-2]
    assert isinstance(both, flags)
    features = voxlar.render.EntityRendererFeatures
    every = features.FRAME_BEGIN | features.FRAME_END | features.SHADOWMAP
    seen: List[int] = []
    managed.answer("EntityRenderer", "ctor_000_EntityRenderer", lambda key, value: seen.append(value) or 0)
    voxlar.render.EntityRenderer("key", every)
    assert seen == [7]
    for refused in (7, both, None):
        with pytest.raises(TypeError, match="can't build EntityRendererFeatures value from "):
            voxlar.render.EntityRenderer("key", refused)


def test_built_ins_of_enums_are_no_members(voxlar: Any) -> None:
    names = {"_type_of", "_cast_to", "_cast_from", "_reinterpret_obj", "_as_uni_enum", "_cast_as", "_is_assignable",
             "get_type"}  # fmt: skip
    for row in CATALOGUE.enums.values():
        owner = voxlar if row.module is CATALOGUE.modules[0] else getattr(voxlar, row.module.short)
        made = getattr(owner, row.name)
        assert names <= set(made.__dict__)
        assert not names & set(made.__members__)
        assert all(isinstance(member, made) for member in made)


def test_methods_of_enums(managed: Any, voxlar: Any) -> None:
    Axis = voxlar.Axis
    bound = Axis.X_AXIS.get_type
    assert bound == Axis.X_AXIS.get_type and hash(bound) == hash(Axis.X_AXIS.get_type)
    assert bound != Axis.Y_AXIS.get_type
    assert bound.__doc__ is None and Axis._type_of.__doc__ is None
    weakref.ref(bound)
    assert "get_type" in repr(Axis.get_type) and "Axis" in repr(Axis.get_type)
    with pytest.raises(TypeError):
        Axis._reinterpret_obj(5)
    assert Axis._is_assignable(5) is False and Axis._is_assignable(None) is False
    managed.answer("Axis", "btp_CastTo", lambda value, out: managed.store(out, "i", 2) or 1)
    succeeded, value = Axis._cast_to(voxlar.Node())
    assert succeeded and value is Axis.Z_AXIS
    managed.answer("Axis", "btp_CastTo", lambda value, out: managed.store(out, "i", 77) or 1)
    with pytest.raises(ValueError):
        Axis._cast_to(voxlar.Node())


def test_a_value_read_is_a_copy_of_its_own(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    first, second = node.transform.translation, node.transform.translation
    assert first is not second
    seen: List[Any] = []
    managed.answer("Vector3", "set_x", lambda handle, value: seen.append((handle, value)))
    first.x = 2.0
    assert len(seen) == 1 and seen[0][1] == 2.0 and seen[0][0] in managed.living


def test_casts_of_vectors_to_a_type_given_at_run_time(managed: Any, voxlar: Any) -> None:
    kind = voxlar.Node._type_of()
    for name in ("Vector2", "Vector3", "Vector4", "FVector2", "FVector3", "FVector4"):
        vector = getattr(voxlar.utilities, name)()
        managed.answer(name, "btp_CastFrom", lambda this, target, out: 0)
        assert not vector._cast_from(kind)
        managed.fail(name, "btp_CastFrom", KeyError("no cast"), result=-1)
        with pytest.raises(KeyError):
            vector._cast_from(kind)
    assert not voxlar.utilities.Quaternion()._cast_from(5)
    assert not voxlar.Node()._cast_from(5)
