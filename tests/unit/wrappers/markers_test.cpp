#include "wrappers/markers.h"

#include "support/managed_side.h"

namespace {

class Markers : public ManagedTest {
protected:
    // An instance of a new Python class with `mark` as its host marker.
    PyObject* instance_with_mark(const char* mark) {
        const std::string code =
            "class Marked:\n    _velbor_clr_host = " + std::string(mark) + "\nmarked = Marked()";
        python.run(code.c_str());
        return python.named("marked");
    }
};

TEST_F(Markers, of_the_host_tell_a_reference_from_a_value) {
    const PyRef thing = PyRef::steal(make_wrapper(ThingType));
    const PyRef point = PyRef::steal(make_wrapper(PointType));
    int tag = -1;
    EXPECT_TRUE(fn_is_refobj_has_host_markattr(thing.get()));
    EXPECT_TRUE(fn_is_instance_has_host_markattr(thing.get(), &tag));
    EXPECT_EQ(tag, 0);
    EXPECT_FALSE(fn_is_refobj_has_host_markattr(point.get()));
    EXPECT_TRUE(fn_is_instance_has_host_markattr(point.get(), &tag));
    EXPECT_EQ(tag, 1);
}

TEST_F(Markers, with_a_third_value_make_no_wrapper) {
    int tag = -1;
    PyObject* marked = instance_with_mark("True");
    EXPECT_FALSE(fn_is_refobj_has_host_markattr(marked));
    EXPECT_FALSE(fn_is_instance_has_host_markattr(marked, &tag));
    EXPECT_EQ(tag, -1);
}

TEST_F(Markers, are_not_inherited) {
    instance_with_mark("None");
    python.run("class Sub(Marked): pass\nsub = Sub()");
    EXPECT_TRUE(fn_is_refobj_has_host_markattr(python.named("marked")));
    EXPECT_FALSE(fn_is_refobj_has_host_markattr(python.named("sub")));
}

TEST_F(Markers, are_looked_for_in_the_type_and_not_in_a_class_object) {
    int tag = -1;
    EXPECT_FALSE(fn_is_instance_has_host_markattr(reinterpret_cast<PyObject*>(&ThingType), &tag));
}

TEST_F(Markers, of_python_s_own_types_and_of_unready_types_are_not_there) {
    static PyTypeObject unready{};
    PyObject object{};
    object.ob_type = &unready;
    int tag = -1;
    EXPECT_FALSE(fn_is_instance_has_host_markattr(&object, &tag));
    EXPECT_FALSE(fn_contains_additional_ifc_markattr(&object, &NamedType));
    EXPECT_FALSE(fn_has_external_ancestor_markattr(&object, &NamedType));
    for (const char* value : {"5", "'text'", "[1]", "(1,)", "{}", "None", "1.5"}) {
        const PyRef plain = python.eval(value);
        EXPECT_FALSE(fn_is_instance_has_host_markattr(plain.get(), &tag)) << value;
        EXPECT_FALSE(fn_is_refobj_has_host_markattr(plain.get())) << value;
        EXPECT_FALSE(fn_contains_additional_ifc_markattr(plain.get(), &NamedType)) << value;
    }
}

TEST_F(Markers, stand_in_the_type_s_own_dictionary) {
    python.name("Thing", fn_new_ref(reinterpret_cast<PyObject*>(&ThingType)));
    python.name("Special", fn_new_ref(reinterpret_cast<PyObject*>(&SpecialThingType)));
    python.name("Point", fn_new_ref(reinterpret_cast<PyObject*>(&PointType)));
    EXPECT_EQ(python.show("Thing.__dict__['_velbor_clr_host'], Point.__dict__['_velbor_clr_host'], "
                          "Thing.__dict__['_velbor_clr_castable_obj']"),
              "(None, Ellipsis, None)");
    EXPECT_EQ(
        python.show("Special.__dict__['_additional_interfaces'], Special.__dict__['_implicit_interfaces']"),
        "({<class 'test.INamed'>}, {<class 'test.INamed'>})");
    EXPECT_EQ(python.show("'_additional_interfaces' in Thing.__dict__"), "False");
}

TEST_F(Markers, of_interfaces_are_asked_for_an_instance_and_for_a_type) {
    const PyRef special = PyRef::steal(make_wrapper(SpecialThingType));
    const PyRef thing = PyRef::steal(make_wrapper(ThingType));
    EXPECT_TRUE(fn_contains_additional_ifc_markattr(special.get(), &NamedType));
    EXPECT_FALSE(fn_contains_additional_ifc_markattr(special.get(), &PointType));
    EXPECT_FALSE(fn_contains_additional_ifc_markattr(thing.get(), &NamedType));
    EXPECT_TRUE(fn_contains_implicit_ifc_markattr(&SpecialThingType, &NamedType));
    EXPECT_FALSE(fn_contains_implicit_ifc_markattr(&ThingType, &NamedType));
}

TEST_F(Markers, of_interfaces_must_be_sets) {
    python.run(
        "class S(set): pass\n"
        "class A: _additional_interfaces = [1]\n"
        "class B: _additional_interfaces = frozenset()\n"
        "class C: _additional_interfaces = S()\n"
        "a, b, c = A(), B(), C()");
    EXPECT_FALSE(fn_contains_additional_ifc_markattr(python.named("a"), &NamedType));
    EXPECT_FALSE(fn_contains_additional_ifc_markattr(python.named("b"), &NamedType));
    EXPECT_FALSE(fn_contains_additional_ifc_markattr(python.named("c"), &NamedType));
    python.name("Named", fn_new_ref(reinterpret_cast<PyObject*>(&NamedType)));
    python.run("C.__dict__['_additional_interfaces'].add(Named)");
    EXPECT_TRUE(fn_contains_additional_ifc_markattr(python.named("c"), &NamedType));
}

TEST_F(Markers, of_interfaces_answer_no_when_the_test_fails) {
    python.run(
        "class M(type):\n    def __hash__(self): raise ValueError('no hash')\n"
        "class Unhashable(metaclass=M): pass\n"
        "class A: _additional_interfaces = {1}\n"
        "a = A()");
    EXPECT_FALSE(fn_contains_additional_ifc_markattr(
        python.named("a"), reinterpret_cast<PyTypeObject*>(python.named("Unhashable"))));
    EXPECT_EQ(PyErr_Occurred(), nullptr);
}

TEST_F(Markers, of_interfaces_are_not_set_with_what_cannot_be_hashed) {
    python.run(
        "class M(type):\n    def __hash__(self): raise ValueError('no hash')\n"
        "class Unhashable(metaclass=M): pass\nclass A: pass");
    EXPECT_FALSE(fn_set_additional_ifcs_markattr(reinterpret_cast<PyTypeObject*>(python.named("A")), 1,
                                                 python.named("Unhashable")));
    EXPECT_EQ(take_error(), "ValueError: no hash");
}

TEST_F(Markers, of_an_ancestor_compare_the_type_itself) {
    python.run("class A: pass\nclass B(A): pass\na, b = A(), B()");
    auto* type = reinterpret_cast<PyTypeObject*>(python.named("A"));
    EXPECT_TRUE(fn_set_external_ancestor_markattr(type, &ThingType));
    EXPECT_TRUE(fn_has_external_ancestor_markattr(python.named("a"), &ThingType));
    EXPECT_FALSE(fn_has_external_ancestor_markattr(python.named("a"), &SpecialThingType));
    EXPECT_FALSE(fn_has_external_ancestor_markattr(python.named("b"), &ThingType));
}

TEST_F(Markers, are_not_needed_to_know_this_module_s_wrappers) {
    const PyRef thing = PyRef::steal(make_wrapper(ThingType));
    const PyRef point = PyRef::steal(make_wrapper(PointType));
    const PyRef foreign = PyRef::steal(make_wrapper(ForeignThingType));
    int tag = -1;
    EXPECT_TRUE(fn_is_this_module_clr_object(thing.get()));
    EXPECT_FALSE(fn_is_this_module_clr_object(point.get()));
    EXPECT_TRUE(fn_is_this_module_clr_instance(thing.get(), &tag));
    EXPECT_EQ(tag, 0);
    EXPECT_TRUE(fn_is_this_module_clr_instance(point.get(), &tag));
    EXPECT_EQ(tag, 1);
    EXPECT_FALSE(fn_is_this_module_clr_object(foreign.get()));
    EXPECT_FALSE(fn_is_this_module_clr_instance(foreign.get(), &tag));
    EXPECT_TRUE(fn_is_instance_has_host_markattr(foreign.get(), &tag));
}

TEST_F(Markers, let_a_handle_be_taken) {
    const PyRef thing = PyRef::steal(make_wrapper(ThingType));
    const PyRef point = PyRef::steal(make_wrapper(PointType));
    VariantArg record{};
    EXPECT_EQ(fn_conv_py_obj_to_clr_gen_handle(thing.get(), &record), 1);
    EXPECT_EQ(record.kind, 0);
    EXPECT_EQ(record.payload, fn_wrapper_handle(thing.get()));
    EXPECT_EQ(fn_conv_py_obj_to_clr_gen_not_null_handle(point.get(), &record), 1);
    EXPECT_EQ(record.kind, 1);
    EXPECT_EQ(record.payload, fn_wrapper_handle(point.get()));
    void* handle = nullptr;
    EXPECT_EQ(fn_conv_py_obj_to_clr_refobj_not_null_handle(thing.get(), &handle), 1);
    EXPECT_EQ(handle, fn_wrapper_handle(thing.get()));
    handle = nullptr;
    EXPECT_EQ(fn_conv_py_obj_to_clr_refobj_not_null_handle(point.get(), &handle), 0);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(fn_py_unknown_to_clr_unknown(point.get(), &handle), 1);
    EXPECT_EQ(handle, fn_wrapper_handle(point.get()));
}

TEST_F(Markers, leave_the_tag_of_none_to_the_caller) {
    VariantArg record{.kind = 77, .payload = &record};
    EXPECT_EQ(fn_conv_py_obj_to_clr_gen_handle(Py_None, &record), 1);
    EXPECT_EQ(record.kind, 77);
    EXPECT_EQ(record.payload, nullptr);
    void* handle = nullptr;
    EXPECT_EQ(fn_conv_py_obj_to_clr_gen_not_null_handle(Py_None, &record), 0);
    EXPECT_EQ(fn_conv_py_obj_to_clr_refobj_not_null_handle(Py_None, &handle), 0);
}

TEST_F(Markers, refuse_what_is_no_wrapper_without_an_error) {
    VariantArg record{};
    void* handle = nullptr;
    for (const char* value : {"5", "'text'", "object()", "int"}) {
        const PyRef plain = python.eval(value);
        EXPECT_EQ(fn_conv_py_obj_to_clr_gen_handle(plain.get(), &record), 0) << value;
        EXPECT_EQ(fn_conv_py_obj_to_clr_gen_not_null_handle(plain.get(), &record), 0) << value;
        EXPECT_EQ(fn_conv_py_obj_to_clr_refobj_not_null_handle(plain.get(), &handle), 0) << value;
        EXPECT_EQ(PyErr_Occurred(), nullptr) << value;
    }
}

}  // namespace
