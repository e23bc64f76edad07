"""Casts over the runtime, and calls from several Python threads."""

from __future__ import annotations

import threading
from typing import Any

import pytest

from velbor import pyreflection
from velbor.voxlar import Axis, Entity, FileFormat, INamedObject, Node, PropertyFlags, Scene, SceneObject
from velbor.voxlar.entities import Box, IMeshConvertible, Mesh
from velbor.voxlar.utilities import FVector3, MathUtils, Matrix4, Vector3, Vector4

Object = pyreflection.Object


def entity_of(scene: Scene) -> Entity:
    return scene.root_node.create_child_node("box", Box()).entity


def test_a_declared_type_is_cast_down() -> None:
    entity = entity_of(Scene())
    assert type(entity) is Entity
    down = Box._cast_to(entity)
    assert (down.status, type(down.value)) == (1, Box)
    assert down.value == entity
    assert type(Box._cast_as(entity).value) is Box
    assert Mesh._cast_to(entity).status == 0
    assert Mesh._cast_as(entity).value is None
    assert Box._is_assignable(entity) and not Mesh._is_assignable(entity)
    assert INamedObject._is_assignable(entity) and IMeshConvertible._is_assignable(entity)
    assert type(IMeshConvertible._cast_to(entity).value) is IMeshConvertible


def test_none_and_strangers() -> None:
    assert Node._cast_to(None).status == 1
    assert Node._cast_to(None).value is None
    assert Node._cast_as(None).status == 0
    assert Node._cast_to(5).status == 0
    assert Node._is_assignable(None) is False
    assert Vector3._cast_to(None).status == 0


def test_structs_are_converted_by_their_own_operators() -> None:
    single = FVector3._cast_to(Vector3(1.0, 2.0, 3.0))
    assert (single.status, type(single.value), single.value.y) == (1, FVector3, 2.0)
    assert Vector3._cast_as(FVector3()).status == 0
    assert Vector3._is_assignable(Vector3()) and not Vector3._is_assignable(FVector3())
    same = Vector3(1.0, 2.0, 3.0)._cast_from(Vector3._type_of())
    assert same.status == 1
    assert Vector3._reinterpret_obj(same.value) == Vector3(1.0, 2.0, 3.0)
    assert Vector3()._cast_from(Scene._type_of()).status == 0


def test_objects_are_viewed_as_their_type() -> None:
    scene = Scene()
    seen = Object._cast_to(scene).value
    assert type(seen) is Object
    assert type(Scene._reinterpret_obj(seen)) is Scene
    assert Scene._reinterpret_obj(seen) == scene
    with pytest.raises(RuntimeError, match=r"^Proxy error\(InvalidCastException\)"):
        Node._reinterpret_obj(seen)


def test_enum_members_go_both_ways() -> None:
    boxed = Axis.Y_AXIS._as_uni_enum()
    assert Axis._cast_to(boxed).value is Axis.Y_AXIS
    assert Axis._cast_as(boxed).value is Axis.Y_AXIS
    assert Axis._is_assignable(boxed)
    assert not PropertyFlags._is_assignable(boxed)
    assert str(Axis.Y_AXIS.get_type()) == "Velbor.Voxlar.Axis"
    flags = PropertyFlags.HIDDEN | PropertyFlags.ANIMATED
    assert PropertyFlags._cast_to(flags._as_uni_enum()).value == flags


def test_a_static_class_has_a_type_and_no_objects() -> None:
    assert str(MathUtils._type_of()) == "Velbor.Voxlar.Utilities.MathUtils"
    assert MathUtils._cast_to(Scene()).status == 0
    assert not MathUtils._is_assignable(Scene())


def test_types_tell_their_names() -> None:
    assert str(Scene().get_type()) == "Velbor.Voxlar.Scene"
    assert str(Vector3().get_type()) == "Velbor.Voxlar.Utilities.Vector3"
    assert str(SceneObject._type_of()) == "Velbor.Voxlar.SceneObject"


def test_python_threads_take_turns() -> None:
    mesh = Mesh()
    errors: list[BaseException] = []

    def work(value: float) -> None:
        try:
            for _ in range(200):
                mesh.control_points.append(Vector4(value, 0.0, 0.0, 1.0))
                Node("n").set_property("p", [value])
                assert Matrix4.translate(value, 0.0, 0.0).to_array()[12] == value
        except BaseException as error:  # noqa: BLE001  told by the main thread
            errors.append(error)

    threads = [threading.Thread(target=work, args=(float(number),)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not errors
    assert len(mesh.control_points) == 800


def test_a_list_that_one_thread_gave_another_may_use() -> None:
    node = Node("n")
    given = [1, 2]
    node.set_property("p", given)
    seen: list[Any] = []
    thread = threading.Thread(target=lambda: seen.append(node.get_property("p")))
    thread.start()
    thread.join()
    assert seen[0] is given
    assert FileFormat.WAVEFRONT_OBJ is not None
