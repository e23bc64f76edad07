"""velbor.pyreflection and velbor.pygc over the real runtime."""

from __future__ import annotations

import io
import sys
import zipfile

import pytest

import velbor.voxlar  # noqa: F401  starts the runtime
from velbor import pygc, pyreflection

Enum, Object, Type = pyreflection.Enum, pyreflection.Object, pyreflection.Type


pytestmark = pytest.mark.usefixtures("no_handle_is_left")


def test_a_type_tells_what_it_is() -> None:
    type_ = Type._type_of()
    assert (type_.name, type_.full_name, type_.namespace) == ("Type", "System.Type", "System")
    assert type_.assembly_name == "System.Private.CoreLib"
    assert type_.base_type.full_name == "System.Reflection.MemberInfo"
    assert Object._type_of().base_type is None
    assert type_.element_type is None
    assert (type_.is_class, type_.is_abstract, type_.is_interface, type_.is_enum) == (True, True, False, False)
    assert (type_.is_value_type, type_.is_array, type_.is_generic_type, type_.is_sealed) == (False,) * 4
    assert {interface.name for interface in type_.get_interfaces()} == {"ICustomAttributeProvider", "IReflect"}
    assert all(interface.is_interface for interface in type_.get_interfaces())


def test_texts() -> None:
    type_ = Type._type_of()
    assert str(type_) == "System.Type"
    assert repr(type_) == "<velbor.pyreflection.Type: System.Type>"


def test_equality_and_hash_are_those_of_the_type() -> None:
    one, other = Type._type_of(), Type._type_of()
    assert one is not other
    assert one == other and hash(one) == hash(other)
    assert one != Object._type_of()
    assert one != "System.Type" and one != None  # noqa: E711
    assert {one: 1}[other] == 1
    with pytest.raises(TypeError):
        one < other  # noqa: B015
    assert Object.reference_equals(one, other) is True
    assert Object.reference_equals(one, None) is False


def test_relations_between_types() -> None:
    object_, type_ = Object._type_of(), Type._type_of()
    assert object_.is_assignable_from(type_) is True
    assert type_.is_assignable_from(object_) is False
    assert object_.is_assignable_from(None) is False
    assert object_.is_assignable_from(Type) is True, "a wrapper class stands for its type"
    assert type_.is_subclass_of(object_) is True
    assert object_.is_subclass_of(type_) is False
    assert object_.is_instance_of_type(type_) is True
    assert object_.is_instance_of_type(None) is False
    for call in (object_.is_assignable_from, object_.is_subclass_of):
        with pytest.raises(TypeError, match="^can't build Type from 'int'$"):
            call(5)
    with pytest.raises(TypeError, match="^can't build Object from 'int'$"):
        object_.is_instance_of_type(5)


def test_casts() -> None:
    type_ = Type._type_of()
    as_object = Object._cast_to(type_)
    assert as_object and as_object.succeeded is True and as_object.status == 1
    succeeded, value = as_object
    assert succeeded is True and type(value) is Object and value == type_
    assert type(Type._cast_as(value).value) is Type
    refused = Enum._cast_as(value)
    assert not refused and tuple(refused) == (False, None) and refused.status == 0
    assert repr(refused) == "<velbor.pygc.CastResult: succeeded=False, value=None>"
    assert len(refused) == 2 and refused[-1] is None
    with pytest.raises(IndexError):
        refused[2]
    assert not Type._cast_to(5) and not Type._cast_as(None) and not type_._cast_from(type_)
    assert tuple(Type._cast_to(None)) == (True, None)
    assert Type._is_assignable(value) is True and Enum._is_assignable(value) is False
    assert type(Type._reinterpret_obj(value)) is Type
    with pytest.raises(TypeError, match=r"^_reinterpret_obj\(\) expects a .Net Object argument, got a int object$"):
        Type._reinterpret_obj(5)
    with pytest.raises(RuntimeError, match="InvalidCastException"):
        Enum._reinterpret_obj(value)


def test_wrappers_cannot_be_made_or_derived_from() -> None:
    for wrapper in (Type, Object, Enum, pygc.CastResult):
        with pytest.raises(TypeError):
            wrapper()
        with pytest.raises(TypeError):
            type("Derived", (wrapper,), {})
    empty = Type.__new__(Type)
    with pytest.raises(RuntimeError, match="NullReferenceException"):
        empty.name


def test_types_of_the_scene_library() -> None:
    scene = velbor.voxlar.Scene()
    type_ = scene.get_type()
    assert isinstance(type_, Type) and isinstance(type_, Object)
    assert (type_.name, type_.assembly_name) == ("Scene", "Velbor.Voxlar")
    assert type_ == velbor.voxlar.Scene._type_of()
    assert type_.is_instance_of_type(scene)
    assert velbor.voxlar.SceneObject._type_of().is_assignable_from(velbor.voxlar.Scene)
    as_object = Object._cast_to(scene).value
    assert as_object == scene and as_object.get_type() == type_
    assert Object.reference_equals(as_object, scene)
    assert velbor.voxlar.Scene._reinterpret_obj(as_object) == scene


def test_a_struct_is_an_object_by_its_boxed_value() -> None:
    vector = velbor.voxlar.utilities.Vector3(1.0, 2.0, 3.0)
    boxed = Object._cast_to(vector).value
    assert boxed.get_type().is_value_type
    assert velbor.voxlar.utilities.Vector3._reinterpret_obj(boxed) == vector
    assert Object._type_of().is_instance_of_type(vector)


def test_enum_members_become_managed_values() -> None:
    axis = velbor.voxlar.Axis
    member = list(axis)[1]
    value = member._as_uni_enum()
    assert type(value) is Enum
    assert (int(value), value.value) == (int(member), int(member))
    assert value.get_type() == axis._type_of() == member.get_type()
    assert axis._type_of().is_enum and axis._type_of().is_value_type
    assert str(value) == value.name
    assert value == member._as_uni_enum() and hash(value) == hash(member._as_uni_enum())
    assert value != list(axis)[0]._as_uni_enum()
    assert axis._type_of().is_instance_of_type(member), "a member is an instance by its boxed value"
    assert Enum._type_of().is_assignable_from(axis)
    assert range(9)[value] == int(member)
    assert value.has_flag(member) is True
    with pytest.raises(TypeError, match="^can't build Enum from 'int'$"):
        value.has_flag(1)


def test_collect_gives_python_objects_back() -> None:
    file = io.BytesIO()
    with zipfile.ZipFile(file, "w") as archive:
        archive.writestr("a.txt", "text")
    file.seek(0)
    before = sys.getrefcount(file)
    file_system = velbor.voxlar.utilities.ZipArchiveFileSystem(file)
    assert sys.getrefcount(file) > before, "managed code keeps the file as long as the file system lives"
    del file_system
    assert pygc.collect() is None
    assert sys.getrefcount(file) == before
    assert pygc.total_memory() > 0


def test_a_loop_leaves_nothing() -> None:
    before = pygc.living_handles()
    for _ in range(1000):
        Type._type_of().base_type.get_interfaces()
    assert pygc.living_handles() == before
