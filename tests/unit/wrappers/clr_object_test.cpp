#include "wrappers/clr_object.h"

#include "support/managed_side.h"
#include "wrappers/results.h"

#include <limits>

namespace {

class ClrObject : public ManagedTest {};

TEST_F(ClrObject, has_a_header_and_a_handle_and_nothing_else) {
    EXPECT_EQ(sizeof(PyClrObject), 24u);
    EXPECT_EQ(ThingType.tp_basicsize, 24);
    EXPECT_EQ(ThingType.tp_itemsize, 0);
    EXPECT_EQ(ThingType.tp_dictoffset, 0);
    EXPECT_EQ(ThingType.tp_weaklistoffset, 0);
    EXPECT_FALSE(PyType_HasFeature(&ThingType, Py_TPFLAGS_BASETYPE));
    EXPECT_FALSE(PyType_HasFeature(&ThingType, Py_TPFLAGS_HAVE_GC));
    python.name("w", make_wrapper(ThingType));
    // Late versions of Python say more behind this.
    EXPECT_EQ(
        python.show("setattr(w, 'x', 1)").find("AttributeError: 'test.Thing' object has no attribute 'x'"),
        0u);
    EXPECT_EQ(python.show("__import__('weakref').ref(w)"),
              "TypeError: cannot create weak reference to 'test.Thing' object");
    EXPECT_EQ(python.show("type('Sub', (type(w),), {})"),
              "TypeError: type 'test.Thing' is not an acceptable base type");
}

TEST_F(ClrObject, frees_its_handle_once_when_it_ends) {
    for (PyTypeObject* type : {&ThingType, &PointType}) {
        PyObject* wrapper = make_wrapper(*type);
        EXPECT_EQ(managed.living(), 1u);
        managed.calls();
        Py_DECREF(wrapper);
        EXPECT_EQ(managed.living(), 0u);
        EXPECT_EQ(managed.calls(), "FreeInstance");
    }
}

TEST_F(ClrObject, with_a_null_handle_frees_nothing) {
    for (PyTypeObject* type : {&ThingType, &PointType}) {
        PyObject* wrapper = type->tp_new(type, nullptr, nullptr);
        ASSERT_NE(wrapper, nullptr);
        EXPECT_EQ(fn_wrapper_handle(wrapper), nullptr);
        Py_DECREF(wrapper);
        EXPECT_EQ(managed.calls(), "");
    }
}

TEST_F(ClrObject, leaves_a_pending_error_alone_when_it_ends) {
    PyObject* wrapper = make_wrapper(ThingType);
    PyErr_SetString(PyExc_ValueError, "earlier");
    Py_DECREF(wrapper);
    EXPECT_EQ(take_error(), "ValueError: earlier");
}

TEST_F(ClrObject, without_a_constructor_refuses_to_be_made) {
    python.name("Thing", fn_new_ref(reinterpret_cast<PyObject*>(&ThingType)));
    EXPECT_EQ(python.show("Thing()"), "TypeError: type has no available constructor");
    EXPECT_EQ(python.show("Thing(1, x=2)"), "TypeError: type has no available constructor");
    EXPECT_EQ(managed.calls(), "");
    EXPECT_EQ(python.show("type(Thing.__new__(Thing)).__name__"), "'Thing'");
}

TEST_F(ClrObject, of_an_unusable_type_is_not_made) {
    types_are_invalid = true;
    EXPECT_EQ(ThingType.tp_new(&ThingType, nullptr, nullptr), nullptr);
    EXPECT_EQ(take_error(), "TypeError: host is not bound");
}

TEST_F(ClrObject, hashes_as_the_managed_object_does) {
    const struct {
        std::int32_t managed;
        Py_hash_t python;
    } cases[] = {{7, 7},
                 {0, 0},
                 {-1, -2},
                 {-2, -2},
                 {-3, -3},
                 {std::numeric_limits<std::int32_t>::min(), -2147483648},
                 {std::numeric_limits<std::int32_t>::max(), 2147483647}};
    for (PyTypeObject* type : {&ThingType, &PointType}) {
        for (const auto& [managed_hash, python_hash] : cases) {
            const PyRef wrapper = PyRef::steal(make_wrapper(*type, {.hash = managed_hash}));
            EXPECT_EQ(PyObject_Hash(wrapper.get()), python_hash);
        }
    }
    managed.calls();
    {
        const PyRef thing = PyRef::steal(make_wrapper(ThingType));
        const PyRef point = PyRef::steal(make_wrapper(PointType));
        PyObject_Hash(thing.get());
        PyObject_Hash(point.get());
    }
    EXPECT_EQ(managed.calls(), "GetHashOfObj GetHashOfStc FreeInstance FreeInstance");
}

TEST_F(ClrObject, passes_on_an_error_of_the_managed_hash) {
    managed.failing = {"GetHashOfObj", "GetHashOfStc"};
    for (PyTypeObject* type : {&ThingType, &PointType}) {
        const PyRef wrapper = PyRef::steal(make_wrapper(*type));
        EXPECT_EQ(PyObject_Hash(wrapper.get()), -1);
        EXPECT_EQ(take_error(), "RuntimeError: managed");
    }
}

TEST_F(ClrObject, shows_the_managed_text_as_str_and_repr) {
    python.name("w", make_wrapper(ThingType, {.text = "a thing"}));
    python.name("p", make_wrapper(PointType, {.text = "(1, 2)"}));
    managed.calls();
    EXPECT_EQ(python.show("str(w), repr(w), str(p), repr(p)"), "('a thing', 'a thing', '(1, 2)', '(1, 2)')");
    EXPECT_EQ(managed.calls(), "ToStringOfObj ToStringOfObj ToStringOfStc ToStringOfStc");
}

TEST_F(ClrObject, without_a_managed_text_shows_its_address) {
    managed.without_text = true;
    for (PyTypeObject* type : {&ThingType, &PointType}) {
        const PyRef wrapper = PyRef::steal(make_wrapper(*type));
        char expected[64];
        std::snprintf(expected, sizeof expected, "<%s object at %p>", type->tp_name,
                      static_cast<void*>(wrapper.get()));
        EXPECT_EQ(repr_of(wrapper.get()), expected);
    }
}

TEST_F(ClrObject, passes_on_an_error_of_the_managed_text) {
    managed.failing = {"ToStringOfObj", "ToStringOfStc"};
    for (PyTypeObject* type : {&ThingType, &PointType}) {
        const PyRef wrapper = PyRef::steal(make_wrapper(*type));
        EXPECT_EQ(PyObject_Repr(wrapper.get()), nullptr);
        EXPECT_EQ(take_error(), "RuntimeError: managed");
    }
}

TEST_F(ClrObject, shown_while_an_error_is_pending_leaves_that_error) {
    for (PyTypeObject* type : {&ThingType, &PointType}) {
        const PyRef wrapper = PyRef::steal(make_wrapper(*type, {.text = "kept"}));
        PyErr_SetString(PyExc_ValueError, "earlier");
        const PyRef text = PyRef::steal(type->tp_repr(wrapper.get()));
        ASSERT_TRUE(text);
        EXPECT_STREQ(PyUnicode_AsUTF8(text.get()), "kept");
        EXPECT_EQ(take_error(), "ValueError: earlier");
    }
}

TEST_F(ClrObject, shown_while_an_error_is_pending_reports_its_own_as_unraisable) {
    python.run(
        "import sys\nseen = []\nsys.unraisablehook = lambda u: seen.append((str(u.exc_value), u.object))");
    managed.failing = {"ToStringOfObj", "ToStringOfStc"};
    for (PyTypeObject* type : {&ThingType, &PointType}) {
        const PyRef wrapper = PyRef::steal(make_wrapper(*type));
        PyErr_SetString(PyExc_ValueError, "earlier");
        EXPECT_EQ(type->tp_repr(wrapper.get()), nullptr);
        EXPECT_EQ(take_error(), "ValueError: earlier");
        EXPECT_EQ(python.show("seen"), "[('managed', 'FormatCallbackException')]");
        python.run("seen.clear()");
    }
    python.run("sys.unraisablehook = sys.__unraisablehook__");
}

TEST_F(ClrObject, compared_with_itself_never_asks_the_managed_side) {
    python.name("w", ThingType.tp_new(&ThingType, nullptr, nullptr));
    python.name("p", PointType.tp_new(&PointType, nullptr, nullptr));
    EXPECT_EQ(python.show("w == w, w != w, p == p, p != p"), "(True, False, True, False)");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(ClrObject, is_equal_when_the_managed_side_says_so) {
    python.name("a", make_wrapper(ThingType, {.value = 1}));
    python.name("b", make_wrapper(ThingType, {.value = 1}));
    python.name("c", make_wrapper(ThingType, {.value = 2}));
    python.name("p", make_wrapper(PointType, {.value = 1}));
    managed.calls();
    EXPECT_EQ(python.show("a == b, a != b, a == c, a != c"), "(True, False, False, True)");
    EXPECT_EQ(managed.calls(),
              "IsEqualsOfObj kind:0 IsEqualsOfObj kind:0 IsEqualsOfObj kind:0 IsEqualsOfObj kind:0");
    EXPECT_EQ(python.show("a == p, p == a"), "(True, True)");
    EXPECT_EQ(managed.calls(), "IsEqualsOfObj kind:1 IsEqualsOfStc kind:0");
}

TEST_F(ClrObject, compared_with_none_asks_the_managed_side) {
    python.name("w", make_wrapper(ThingType));
    python.name("p", make_wrapper(PointType));
    managed.calls();
    EXPECT_EQ(python.show("w == None, w != None, p == None"), "(False, True, False)");
    EXPECT_EQ(managed.calls(), "IsEqualsOfObj null:0 IsEqualsOfObj null:0 IsEqualsOfStc null:0");
}

TEST_F(ClrObject, compared_with_what_is_no_wrapper_leaves_the_answer_to_python) {
    python.name("w", make_wrapper(ThingType));
    managed.calls();
    EXPECT_EQ(python.show("w == 5, w != 5, w == type(w), w.__eq__(5)"),
              "(False, True, False, NotImplemented)");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(ClrObject, is_never_ordered) {
    python.name("w", make_wrapper(ThingType));
    python.name("v", make_wrapper(ThingType));
    managed.calls();
    EXPECT_EQ(python.show("w < v"),
              "TypeError: '<' not supported between instances of 'test.Thing' and 'test.Thing'");
    EXPECT_EQ(python.show("w >= w"),
              "TypeError: '>=' not supported between instances of 'test.Thing' and 'test.Thing'");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(ClrObject, passes_on_an_error_of_the_managed_equality) {
    managed.failing = {"IsEqualsOfObj", "IsEqualsOfStc"};
    python.name("w", make_wrapper(ThingType));
    python.name("p", make_wrapper(PointType));
    EXPECT_EQ(python.show("w == p"), "RuntimeError: managed");
    EXPECT_EQ(python.show("p != w"), "RuntimeError: managed");
}

TEST_F(ClrObject, gives_its_managed_type) {
    for (PyTypeObject* type : {&ThingType, &PointType}) {
        const auto get_type = type == &ThingType ? wrapClrObject_get_type : wrapClrStruct_get_type;
        const PyRef wrapper = PyRef::steal(make_wrapper(*type));
        const PyRef managed_type = PyRef::steal(get_type(wrapper.get(), nullptr));
        EXPECT_EQ(repr_of(managed_type.get()), "('Type',)");
        managed.failing = {"GetObjType", "GetStcType"};
        EXPECT_EQ(get_type(wrapper.get(), nullptr), nullptr);
        EXPECT_EQ(take_error(), "RuntimeError: managed");
        managed.failing.clear();
    }
}

}  // namespace
