"""Classes, overloads, structs, enums, interfaces: what Python sees and what reaches managed code."""

from __future__ import annotations

import gc
import sys
from typing import Any

import pytest


def text(error: Any) -> str:
    return str(error.value)


# Classes


def test_a_constructor_keeps_the_handle_and_its_end_frees_it(managed: Any, voxlar: Any) -> None:
    managed.answer("Scene", "ctor_000_Scene", lambda: managed.new_handle())
    scene = voxlar.Scene()
    (handle,) = managed.living
    del scene
    gc.collect()
    assert managed.calls_of("FreeInstance") == [(handle,)]


def test_a_failed_constructor_frees_nothing(managed: Any, voxlar: Any) -> None:
    managed.fail("Scene", "ctor_000_Scene", RuntimeError("no"))
    with pytest.raises(RuntimeError, match="no"):
        voxlar.Scene()
    assert managed.calls_of("FreeInstance") == []


def test_a_second_init_replaces_the_handle(managed: Any, voxlar: Any) -> None:
    scene = voxlar.Scene()
    first = set(managed.living)
    scene.__init__()
    second = managed.living - first
    del scene
    gc.collect()
    assert managed.calls_of("FreeInstance") == [(second.pop(),)]
    managed.living -= first  # the first handle is lost: that is how a second __init__ behaves


def test_no_constructor(managed: Any, voxlar: Any) -> None:
    for made in (voxlar.Entity, voxlar.FileFormat, voxlar.INamedObject, voxlar.entities.IOrientable,
                 voxlar.utilities.IOUtils):  # fmt: skip
        with pytest.raises(TypeError, match="^type has no available constructor$"):
            made()


def test_none_is_a_null_object_and_a_null_text(managed: Any, voxlar: Any) -> None:
    seen = []
    managed.answer("Node", "set_Entity", lambda handle, value: seen.append(value))
    managed.answer("VbrObject", "call_000_FindProperty", lambda handle, name: seen.append(managed.text(name)) or 0)
    node = voxlar.Node()
    node.entity = None
    assert node.find_property(None) is None
    assert seen == [0, None]


def test_a_class_refuses_other_classes(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    with pytest.raises(TypeError, match="^can't build Entity value from 'velbor.voxlar.Node'$"):
        node.entity = node
    with pytest.raises(TypeError, match="^can't build Entity value from 'int'$"):
        node.entity = 5


def test_managed_code_may_call_another_class_assignable(managed: Any, voxlar: Any) -> None:
    managed.answer("Entity", "btp_IsAssignable", lambda value: 1)
    seen = []
    managed.answer("Node", "set_Entity", lambda handle, value: seen.append(value))
    node = voxlar.Node()
    node.entity = node
    assert seen[0] in managed.living


def test_deleting_an_attribute(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    with pytest.raises(TypeError, match="^can't delete attribute$"):
        del node.name
    with pytest.raises(AttributeError):
        del node.transform


def test_text_repr_hash_and_equality_are_managed(managed: Any, voxlar: Any) -> None:
    def to_string(handle: int, out: int) -> int:
        managed.store_object(out, "the text")
        return 1

    managed.answer("ObjectHost", "ToStringOfObj", to_string)
    managed.answer("ObjectHost", "GetHashOfObj", lambda handle: -1)
    equals = []
    managed.answer("ObjectHost", "IsEqualsOfObj", lambda handle, other: equals.append(managed.variant(other)) or 1)
    node, other = voxlar.Node(), voxlar.Node()
    assert str(node) == repr(node) == "the text"
    assert hash(node) == -2
    assert node == node and not node != node
    assert equals == []
    assert node == other and not node != other
    assert node == None and (node == 5) is False and (node != 5) is True  # noqa: E711
    assert [kind for kind, _ in equals] == [0, 0, 0]
    assert equals[-1][1] == 0
    with pytest.raises(TypeError):
        node < other


def test_a_failing_text_falls_back(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    assert repr(node).startswith("<velbor.voxlar.Node object at 0x")
    managed.fail("ObjectHost", "ToStringOfObj", RuntimeError("no text"))
    with pytest.raises(RuntimeError, match="no text"):
        repr(node)


def test_results_have_the_declared_type(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    assert type(node.entity) is voxlar.Entity
    managed.answer("Node", "get_Entity", lambda handle: 0)
    assert node.entity is None


# Overloads


def test_the_first_overload_that_accepts_is_called(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    managed.calls.clear()
    node.remove_property("x")
    node.remove_property(property="x")
    node.remove_property(None)
    assert [name for _, name, _ in managed.calls] == [
        "call_001_RemoveProperty", "call_001_RemoveProperty", "call_000_RemoveProperty"]  # fmt: skip


def test_an_overload_is_not_passed_over_before_its_first_values_are_asked_about(managed: Any, voxlar: Any) -> None:
    mesh = voxlar.entities.Mesh.__new__(voxlar.entities.Mesh)
    # (declaration, mesh) comes first: whether a mesh is a declaration only the managed side can say.
    made = voxlar.entities.TriMesh.from_mesh(mesh, True)
    assert made is not None and [name for _, name, _ in managed.calls] == ["btp_IsAssignable", "call_001_FromMesh"]
    # Too many arguments are refused before any of them is looked at.
    managed.calls.clear()
    with pytest.raises(TypeError):
        voxlar.entities.TriMesh.from_mesh(mesh, mesh, mesh, mesh)
    assert managed.calls == []


@pytest.mark.parametrize("status", [0, 1, 5])
def test_a_cast_that_fails_with_any_status_raises_what_it_left(managed: Any, voxlar: Any, status: int) -> None:
    node = voxlar.Node()
    for entry, call in (
        ("btp_CastTo", lambda: voxlar.Node._cast_to(node)),
        ("btp_CastAs", lambda: voxlar.Node._cast_as(node)),
        ("btp_TypeOf", voxlar.Node._type_of),
    ):
        managed.fail("Node", entry, KeyError(entry), result=status)
        with pytest.raises(KeyError, match=entry):
            call()


def test_all_refusals_stand_in_one_list(managed: Any, voxlar: Any) -> None:
    with pytest.raises(TypeError) as caught:
        voxlar.Node().remove_property(prop=1)
    (messages,) = caught.value.args
    assert len(messages) == 2 and messages[0] == messages[1]
    with pytest.raises(TypeError) as caught:
        voxlar.Scene().save(1)
    (messages,) = caught.value.args
    assert len(messages) == 5
    assert messages[2] == "can't build String from 'int'"
    with pytest.raises(TypeError) as caught:
        voxlar.utilities.Vector3(1, 2, 3)
    assert len(caught.value.args[0]) == 5


def test_a_managed_failure_ends_the_dispatch(managed: Any, voxlar: Any) -> None:
    managed.fail("VbrObject", "call_001_RemoveProperty", KeyError("managed"))
    with pytest.raises(KeyError, match="managed"):
        voxlar.Node().remove_property("x")


def test_a_value_of_the_right_type_that_is_refused_takes_the_told_way(managed: Any, voxlar: Any) -> None:
    mesh = voxlar.entities.Mesh()
    with pytest.raises(TypeError) as caught:
        mesh.create_polygon(2**70, 1, 2)
    (messages,) = caught.value.args
    assert len(messages) == 4
    assert messages[3] == "Python int too large to convert to C long"


def test_refused_overloads_leave_no_reference(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    argument = ["a list of its own"]
    before = sys.getrefcount(argument)
    for _ in range(50):
        with pytest.raises(TypeError):
            node.remove_property(argument)
    gc.collect()
    assert sys.getrefcount(argument) == before


def test_an_inherited_overload_is_tried_last(managed: Any, voxlar: Any) -> None:
    buffer = voxlar.render.IIndexBuffer.__new__(voxlar.render.IIndexBuffer)
    with pytest.raises(TypeError) as caught:
        buffer.load_data(5)
    assert len(caught.value.args[0]) == 5
    managed.calls.clear()
    buffer.load_data(data=b"x")
    assert [(name.rpartition(".")[2], method) for name, method, _ in managed.calls] == [("WrpCs_IBuffer_D1A17BA9", "call_000_LoadData")]
    vertices = voxlar.render.IVertexBuffer.__new__(voxlar.render.IVertexBuffer)
    with pytest.raises(TypeError) as caught:
        vertices.load_data(5)
    assert len(caught.value.args[0]) == 3


def test_by_list_outputs(managed: Any, voxlar: Any) -> None:
    def decompose(this, t, t_out, s, s_out, r, r_out, pins):
        for index, out in enumerate((t_out, s_out, r_out)):
            handle = managed.new_handle()
            managed.store(out, "Q", handle)
            managed.store(pins + 8 * index, "Q", handle)
        return True

    managed.answer("Matrix4", "call_000_Decompose", decompose)
    t, s, r = [], [voxlar.utilities.Vector3(), "stays"], [None]
    assert voxlar.utilities.Matrix4().decompose(t, s, r) is True
    assert [type(item).__name__ for item in (t[0], s[0], r[0])] == ["Vector3", "Vector3", "Quaternion"]
    assert s[1] == "stays"
    with pytest.raises(TypeError, match=r"argument should be empty list or list contains default value, not 'tuple'"):
        voxlar.utilities.Matrix4().decompose((), [], [])


def test_by_list_outputs_of_a_failed_call_are_freed(managed: Any, voxlar: Any) -> None:
    def decompose(this, t, t_out, s, s_out, r, r_out, pins):
        for index, out in enumerate((t_out, s_out, r_out)):
            handle = managed.new_handle()
            managed.store(out, "Q", handle)
            managed.store(pins + 8 * index, "Q", handle)
        raise RuntimeError("after the outputs")

    managed.answer("Matrix4", "call_000_Decompose", decompose)
    lists = [[], [], []]
    with pytest.raises(RuntimeError, match="after the outputs"):
        voxlar.utilities.Matrix4().decompose(*lists)
    assert lists == [[], [], []]


# Structs


def test_structs_go_by_their_holder(managed: Any, voxlar: Any) -> None:
    Vector3 = voxlar.utilities.Vector3
    seen = []
    managed.answer("Transform", "set_Translation", lambda handle, value: seen.append(managed.variant(value)))
    node = voxlar.Node()
    transform, vector = node.transform, Vector3(1.0, 2.0, 3.0)
    transform.translation = vector
    assert seen[0][0] == 1 and seen[0][1] in managed.living
    with pytest.raises(TypeError, match="^can't build Vector3 value from 'NoneType'$"):
        transform.translation = None
    with pytest.raises(TypeError):
        vector + vector


def test_constructors_of_structs_by_other_structs(managed: Any, voxlar: Any) -> None:
    u = voxlar.utilities
    for argument, entry in ((u.FVector3(), "ctor_001_Vector3"), (u.Vector4(), "ctor_003_Vector3"), (2.0, "ctor_002_Vector3")):
        managed.calls.clear()
        u.Vector3(argument)
        assert entry in [name for _, name, _ in managed.calls]


def test_a_static_field_is_read_each_time(managed: Any, voxlar: Any) -> None:
    Vector3 = voxlar.utilities.Vector3
    assert Vector3.ORIGIN is not Vector3.ORIGIN
    assert type(Vector3().ORIGIN) is Vector3
    assert type(voxlar.utilities.Matrix4.identity) is voxlar.utilities.Matrix4
    managed.answer("MorphTargetChannel", "getsa_DefaultWeight", lambda: 1.25)
    assert voxlar.deformers.MorphTargetChannel.DEFAULT_WEIGHT == 1.25


# Enums


def test_enum_parameters_take_members_alone(managed: Any, voxlar: Any) -> None:
    seen = []
    managed.answer("Pose", "set_PoseType", lambda handle, value: seen.append(value))
    pose = voxlar.Pose()
    pose.pose_type = voxlar.PoseType.SNAPSHOT
    assert seen == [1]
    for value, name in ((1, "int"), (None, "NoneType"), (voxlar.Axis.X_AXIS, "Axis")):
        with pytest.raises(TypeError, match=f"^can't build PoseType value from '{name}'$"):
            pose.pose_type = value
    managed.answer("Pose", "get_PoseType", lambda handle: 7)
    with pytest.raises(ValueError):
        pose.pose_type


def test_enum_methods(managed: Any, voxlar: Any) -> None:
    Axis = voxlar.Axis
    assert Axis._type_of is Axis._type_of
    assert Axis.X_AXIS._as_uni_enum == Axis.X_AXIS._as_uni_enum
    assert type(Axis.Y_AXIS.get_type()).__name__ == "Type"
    assert Axis.X_AXIS == 0 and isinstance(Axis.X_AXIS, int)
    with pytest.raises(TypeError, match="unbound method _cast_from\\(\\) needs a 'self' argument"):
        Axis._cast_from()
    with pytest.raises(TypeError, match="descriptor '_cast_from' for 'Axis' objects doesn't apply to a 'int' object"):
        Axis._cast_from(5)
    with pytest.raises(TypeError, match=r"get_type\(\) takes no arguments \(1 given\)"):
        Axis.X_AXIS.get_type(1)
    with pytest.raises(TypeError, match=r"_cast_to\(\) takes exactly one argument \(0 given\)"):
        Axis._cast_to()
    assert not Axis.X_AXIS._cast_from(5)


def test_nullable_members(managed: Any, voxlar: Any) -> None:
    info = voxlar.AssetInfo()
    managed.answer("AssetInfo", "get_UpVector", lambda handle, flag: managed.store(flag, "i", 0) or 0)
    assert info.up_vector is None
    managed.answer("AssetInfo", "get_UpVector", lambda handle, flag: 2)
    assert info.up_vector is voxlar.Axis.Z_AXIS
    seen = []
    managed.answer("AssetInfo", "set_UpVector", lambda handle, flag, value: seen.append((flag, value)))
    info.up_vector = voxlar.Axis.Y_AXIS
    info.up_vector = None
    assert seen == [(1, 1), (0, 0)]


# Interfaces


def test_interfaces_share_the_functions_of_their_base(managed: Any, voxlar: Any) -> None:
    render = voxlar.render
    assert set(dir(render.ITextureUnit)) <= set(dir(render.ITexture2D))
    texture = render.ITexture2D.__new__(render.ITexture2D)
    managed.calls.clear()
    texture.width
    assert managed.calls[0][0].endswith("WrpCs_ITexture_18BDDF85")


def test_nothing_is_reinterpreted_as_an_interface(managed: Any, voxlar: Any) -> None:
    with pytest.raises(TypeError) as caught:
        voxlar.render.IBuffer._reinterpret_obj(5)
    assert text(caught) == "cannot convert from  'int' to 'velbor.voxlar.render.IBuffer'"
    with pytest.raises(TypeError) as caught:
        voxlar.Node._reinterpret_obj(5)
    assert text(caught) == "_reinterpret_obj() expects a .Net Object argument, got a int object"


def test_disposable_types_work_in_with(managed: Any, voxlar: Any) -> None:
    state = voxlar.render.RenderState()
    with state as same:
        assert same is state
    assert len(managed.calls_of("Dispose")) == 1


def test_wrapped_exceptions_are_no_exceptions(managed: Any, voxlar: Any) -> None:
    with pytest.raises(TypeError):
        raise voxlar.ExportException("x")  # type: ignore[misc]


# Casts


def test_casts(managed: Any, voxlar: Any) -> None:
    node = voxlar.Node()
    assert not voxlar.Node._cast_to(5) and not voxlar.Node._cast_as(None) and not node._cast_from(5)
    assert voxlar.Node._is_assignable(None) is False and voxlar.Node._is_assignable(5) is False
    seen = []

    def cast_to(value: int, out: int) -> int:
        seen.append(managed.variant(value))
        managed.store(out, "Q", managed.new_handle())
        return 1

    managed.answer("Node", "btp_CastTo", cast_to)
    succeeded, value = voxlar.Node._cast_to(node)
    assert succeeded and type(value) is voxlar.Node
    voxlar.Node._cast_to(None)
    assert seen[1] == (0, 0)
    with pytest.raises(TypeError) as caught:
        voxlar.utilities.Vector3()._cast_from(5)
    assert text(caught) == "_cast_from() expects a .Net Type argument, got a int object"
