#include "wrappers/results.h"

#include "support/managed_side.h"
#include "wrappers/types_map.h"

namespace {

// A type key that no other test uses: the map never forgets.
std::uint64_t new_key() {
    static std::uint64_t last = 1000;
    return ++last;
}

class Results : public ManagedTest {
protected:
    Results() {
        PyWrpTypesMap& types = PyWrpTypesMap::get_instance();
        types.add(u"Test.Thing", &ThingType);
        types.add(u"Test.SpecialThing", &SpecialThingType);
        types.add(u"Test.Point", &PointType);
    }

    void* special() { return managed.make({.type = "Test.SpecialThing"}); }
    void* point() { return managed.make({.type = "Test.Point"}); }
    void* unknown() { return managed.make({.type = "Test.Unknown"}); }

    static std::string type_of(const PyRef& object) {
        return object ? Py_TYPE(object.get())->tp_name : "(null)";
    }
};

TEST_F(Results, null_is_none_from_every_conversion) {
    const PyCollectionArg collection{.kind = 2};
    const PyObjectOutArg object{};
    const VariantArg variant{};
    const ReferenceCount none(Py_None);
    EXPECT_EQ(fn_conv_clr_clsobj_to_py_clsobj(nullptr, &ThingType), Py_None);
    EXPECT_EQ(fn_conv_clr_btpobj_to_py_btpobj(collection, &ThingType), Py_None);
    EXPECT_EQ(fn_conv_clr_absobj_to_py_absobj(collection, &ThingType), Py_None);
    EXPECT_EQ(fn_conv_clr_ifcimpl_to_py_ifcimpl(object, &ThingType), Py_None);
    EXPECT_EQ(fn_conv_clr_ifcimpl_to_py_ifcimpl_wps(collection, &ThingType), Py_None);
    EXPECT_EQ(fn_conv_clr_vlarr_to_py_vlarr(variant, &ThingType, &PointType), Py_None);
    EXPECT_EQ(fn_py_return_none(), Py_None);
    for (int i = 0; i < 7; ++i) {
        Py_DECREF(Py_None);
    }
    EXPECT_EQ(none.grown(), 0);
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Results, of_a_class_get_exactly_the_declared_type) {
    const PyRef object = PyRef::steal(fn_conv_clr_clsobj_to_py_clsobj(special(), &ThingType));
    EXPECT_EQ(type_of(object), "test.Thing");
    EXPECT_EQ(Py_REFCNT(object.get()), 1);
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Results, free_the_handle_when_the_type_cannot_be_used) {
    types_are_invalid = true;
    EXPECT_EQ(fn_py_clr_type_generic_new(special(), &ThingType), nullptr);
    EXPECT_EQ(take_error(), "TypeError: host is not bound");
    EXPECT_EQ(managed.calls(), "FreeInstance");
    EXPECT_EQ(fn_conv_clr_ifcimpl_to_py_ifcimpl({.handle = special(), .type_key = new_key()}, &NamedType),
              nullptr);
    EXPECT_EQ(take_error(), "TypeError: host is not bound");
    EXPECT_EQ(managed.living(), 0u);
}

TEST_F(Results, of_a_concrete_collection_are_looked_up_for_kind_1_alone) {
    const std::uint64_t key = new_key();
    const PyRef plain = PyRef::steal(
        fn_conv_clr_btpobj_to_py_btpobj({.kind = 0, .handle = special(), .type_key = key}, &ThingType));
    EXPECT_EQ(type_of(plain), "test.Thing");
    EXPECT_EQ(managed.calls(), "");
    const PyRef found = PyRef::steal(
        fn_conv_clr_btpobj_to_py_btpobj({.kind = 1, .handle = special(), .type_key = key}, &ThingType));
    EXPECT_EQ(type_of(found), "test.SpecialThing");
    EXPECT_EQ(managed.calls(), "GetTypeName");
}

TEST_F(Results, are_looked_up_by_name_once_a_key) {
    const std::uint64_t hit = new_key();
    const std::uint64_t miss = new_key();
    for (const char* calls : {"GetTypeName GetTypeName", ""}) {
        managed.calls();
        const PyRef found = PyRef::steal(
            fn_conv_clr_absobj_to_py_absobj({.kind = 0, .handle = special(), .type_key = hit}, &ThingType));
        const PyRef declared = PyRef::steal(
            fn_conv_clr_absobj_to_py_absobj({.kind = 1, .handle = unknown(), .type_key = miss}, &ThingType));
        EXPECT_EQ(type_of(found), "test.SpecialThing");
        EXPECT_EQ(type_of(declared), "test.Thing");
        EXPECT_EQ(managed.calls(), calls);
    }
}

TEST_F(Results, of_an_interface_take_the_class_that_lists_it_as_implicit) {
    const std::uint64_t implicit = new_key();
    const std::uint64_t other = new_key();
    const PyRef special_object = PyRef::steal(
        fn_conv_clr_ifcimpl_to_py_ifcimpl({.handle = special(), .type_key = implicit}, &NamedType));
    EXPECT_EQ(type_of(special_object), "test.SpecialThing");
    // Registered, but it does not list the interface.
    const PyRef thing = PyRef::steal(
        fn_conv_clr_ifcimpl_to_py_ifcimpl({.handle = managed.make(), .type_key = other}, &NamedType));
    EXPECT_EQ(type_of(thing), "test.INamed");
}

TEST_F(Results, give_back_the_caller_s_own_object) {
    const PyRef list = PyRef::steal(PyList_New(0));
    const PyCollectionArg result{.kind = 2, .handle = list.get()};
    for (const auto convert : {fn_conv_clr_absobj_to_py_absobj, fn_conv_clr_ifcimpl_to_py_ifcimpl_wps}) {
        const PyRef back = PyRef::steal(convert(result, &ThingType));
        EXPECT_EQ(back.get(), list.get());
        EXPECT_EQ(Py_REFCNT(list.get()), 2);
    }
    EXPECT_EQ(Py_REFCNT(list.get()), 1);
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Results, of_an_interface_box_a_struct_that_does_not_stand_in_for_it) {
    const PyRef named = PyRef::steal(fn_conv_clr_ifcimpl_to_py_ifcimpl_wps(
        {.kind = 1, .handle = point(), .type_key = new_key()}, &NamedType));
    EXPECT_EQ(type_of(named), "test.INamed");
    // The struct's own handle ends with the boxing.
    EXPECT_EQ(managed.calls(), "GetTypeName BoxStcTarget FreeInstance");
    EXPECT_EQ(managed.living(), 1u);
}

TEST_F(Results, of_an_interface_keep_a_struct_that_stands_in_for_it) {
    python.name("interfaces", PySet_New(nullptr));
    PySet_Add(python.named("interfaces"), reinterpret_cast<PyObject*>(&NamedType));
    PyDict_SetItemString(PointType.tp_dict, "_implicit_interfaces", python.named("interfaces"));
    const PyRef found = PyRef::steal(fn_conv_clr_ifcimpl_to_py_ifcimpl_wps(
        {.kind = 1, .handle = point(), .type_key = new_key()}, &NamedType));
    PyDict_DelItemString(PointType.tp_dict, "_implicit_interfaces");
    EXPECT_EQ(type_of(found), "test.Point");
    EXPECT_EQ(managed.calls(), "GetTypeName");
}

TEST_F(Results, of_an_interface_with_a_failing_box_are_that_error) {
    managed.failing = {"BoxStcTarget"};
    EXPECT_EQ(fn_conv_clr_ifcimpl_to_py_ifcimpl_wps({.kind = 1, .handle = point(), .type_key = new_key()},
                                                    &NamedType),
              nullptr);
    EXPECT_EQ(take_error(), "RuntimeError: managed");
    EXPECT_EQ(managed.living(), 0u);
}

TEST_F(Results, without_a_managed_name_fall_back_to_the_declared_type) {
    managed.failing = {"GetTypeName"};
    const PyRef object = PyRef::steal(
        fn_conv_clr_ifcimpl_to_py_ifcimpl({.handle = special(), .type_key = new_key()}, &NamedType));
    EXPECT_EQ(type_of(object), "test.INamed");
    EXPECT_EQ(PyErr_Occurred(), nullptr);
}

TEST_F(Results, of_two_kinds_choose_by_the_kind) {
    const PyRef first = PyRef::steal(
        fn_conv_clr_vlarr_to_py_vlarr({.kind = 0, .payload = managed.make()}, &ThingType, &PointType));
    const PyRef second = PyRef::steal(
        fn_conv_clr_vlarr_to_py_vlarr({.kind = 5, .payload = managed.make()}, &ThingType, &PointType));
    EXPECT_EQ(type_of(first), "test.Thing");
    EXPECT_EQ(type_of(second), "test.Point");
}

TEST_F(Results, of_open_type_are_found_by_key_then_by_name) {
    const auto key = static_cast<std::int64_t>(new_key());
    for (const char* calls : {"GetTypeName", ""}) {
        managed.calls();
        const PyRef object = PyRef::steal(fn_write_py_tpo(special(), key));
        EXPECT_EQ(type_of(object), "test.SpecialThing");
        EXPECT_EQ(managed.calls(), calls);
    }
}

TEST_F(Results, of_an_unknown_open_type_are_refused_and_not_remembered) {
    const auto key = static_cast<std::int64_t>(new_key());
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(fn_write_py_tpo(unknown(), key), nullptr);
        EXPECT_EQ(take_error(), "TypeError: unknown wrapper type");
        EXPECT_EQ(managed.calls(), "GetTypeName FreeInstance");
        PyObject* out = nullptr;
        EXPECT_EQ(fn_try_write_py_tpo(unknown(), key, &out), 0);
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(managed.calls(), "GetTypeName FreeInstance");
    }
}

TEST_F(Results, of_open_type_tell_how_the_wrapper_came_out) {
    const auto key = static_cast<std::int64_t>(new_key());
    PyObject* out = nullptr;
    EXPECT_EQ(fn_try_write_py_tpo(special(), key, &out), 1);
    const PyRef object = PyRef::steal(out);
    EXPECT_EQ(type_of(object), "test.SpecialThing");
    types_are_invalid = true;
    EXPECT_EQ(fn_try_write_py_tpo(special(), key, &out), -1);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(take_error(), "TypeError: host is not bound");
}

TEST(TypesMap, keeps_names_keys_and_weak_keys_apart) {
    PyWrpTypesMap types;
    PyTypeObject* found = &ThingType;
    EXPECT_FALSE(types.find(u"A.B", found));
    EXPECT_FALSE(types.find(std::uint64_t{5}, found));
    EXPECT_FALSE(types.find_weak(5, found));
    EXPECT_EQ(found, &ThingType);

    types.add(u"A.B", &PointType);
    types.add(std::uint64_t{5}, &NamedType);
    types.add_weak(5, nullptr);
    EXPECT_TRUE(types.find(u"A.B", found));
    EXPECT_EQ(found, &PointType);
    EXPECT_FALSE(types.find(u"A.B+C", found));
    EXPECT_TRUE(types.find(std::uint64_t{5}, found));
    EXPECT_EQ(found, &NamedType);
    EXPECT_TRUE(types.find_weak(5, found));
    EXPECT_EQ(found, nullptr);

    types.add(u"A.B", &ThingType);
    types.add_weak(5, &PointType);
    types.reserve(1000);
    EXPECT_TRUE(types.find(u"A.B", found));
    EXPECT_EQ(found, &ThingType);
    EXPECT_TRUE(types.find_weak(5, found));
    EXPECT_EQ(found, &PointType);
}

}  // namespace
