#include "wrappers/descriptors.h"

#include "support/python_namespace.h"

#include <cstdio>

namespace {

PyObject* get_constant(PyObject* self, void* closure) {
    return Py_BuildValue("(OO)", self == nullptr ? Py_None : self, static_cast<PyObject*>(closure));
}

// What a method was called with: (self, second, third), None for a null.
PyObject* reveal(PyObject* self, PyObject* args, PyObject* kwargs) {
    const auto shown = [](PyObject* object) { return object == nullptr ? Py_None : object; };
    return Py_BuildValue("(OOO)", shown(self), shown(args), shown(kwargs));
}

PyObject* reveal_one(PyObject* self, PyObject* argument) {
    return Py_BuildValue("(OO)", self == nullptr ? Py_None : self, argument);
}

PyObject* reveal_other(PyObject* self, PyObject* args, PyObject* kwargs) {
    return reveal(self, args, kwargs);
}

PyGetSetDef constant{"CONST", get_constant, nullptr, "a constant", nullptr};
PyGetSetDef constant_without_doc{"BARE", get_constant, nullptr, "", nullptr};
PyMethodDef no_args{"plain", fn_as_cfunction(reveal), METH_NOARGS, "takes nothing"};
PyMethodDef one_arg{"one", reveal_one, METH_O, nullptr};
PyMethodDef any_args{"any", fn_as_cfunction(reveal), METH_VARARGS | METH_KEYWORDS, nullptr};
PyMethodDef other_args{"other", fn_as_cfunction(reveal_other), METH_VARARGS | METH_KEYWORDS, nullptr};
PyMethodDef static_no_args{"s_plain", fn_as_cfunction(reveal), METH_NOARGS | METH_STATIC, nullptr};
PyMethodDef static_one_arg{"s_one", reveal_one, METH_O | METH_STATIC, ""};
PyMethodDef static_any_args{"s_any", fn_as_cfunction(reveal), METH_VARARGS | METH_KEYWORDS | METH_STATIC,
                            nullptr};
PyMethodDef mixed_static{"both", fn_as_cfunction(reveal), METH_VARARGS | METH_KEYWORDS | METH_STATIC,
                         nullptr};

class Descriptors : public ::testing::Test {
protected:
    Descriptors() {
        PyType_Ready(&wrpPye_tyds_FFFFFFFF_FieldDescr);
        PyType_Ready(&wrpPye_tyds_FFFFFFFF_MixMethodDescr);
        python.run(
            "import enum\n"
            "class Some(enum.IntEnum):\n    A = 1\n    B = 2\n"
            "class Base: pass\nclass Sub(Base): pass\n");
        constant.closure = PyUnicode_InternFromString("closure");
        constant_without_doc.closure = constant.closure;
        for (const char* name : {"Some", "Base"}) {
            fill(reinterpret_cast<PyTypeObject*>(python.named(name)));
        }
    }

    void TearDown() override { EXPECT_EQ(take_error(), ""); }

    void put(PyTypeObject* type, const char* name, PyObject* descriptor) {
        ASSERT_NE(descriptor, nullptr) << take_error();
        PyDict_SetItemString(type->tp_dict, name, descriptor);
        Py_DECREF(descriptor);
        PyType_Modified(type);
    }

    void fill(PyTypeObject* type) {
        put(type, "CONST", PyShDescr_NewStaticField(type, &constant));
        put(type, "BARE", PyShDescr_NewStaticField(type, &constant_without_doc));
        for (PyMethodDef* def : {&no_args, &one_arg, &any_args, &other_args}) {
            put(type, def->ml_name, PyShDescr_NewInstanceMethod(type, def));
        }
        for (PyMethodDef* def : {&static_no_args, &static_one_arg, &static_any_args}) {
            put(type, def->ml_name, PyShDescr_NewStaticMethod(type, def));
        }
        put(type, "both", PyShDescr_NewMixedMethod(type, &mixed_static, &any_args));
    }

    std::string describe(const char* format, const char* expression) {
        const PyRef object = python.eval(expression);
        char text[200];
        std::snprintf(text, sizeof text, format, static_cast<void*>(object.get()));
        return text;
    }

    PythonNamespace python;
};

TEST_F(Descriptors, have_types_of_their_own) {
    EXPECT_EQ(python.show("[type(Base.__dict__[n]) for n in ('CONST', 'plain', 's_plain', 'both')]"),
              "[<class 'velbor.voxlar._FieldDescrType'>, <class 'velbor.voxlar._InstanceMethodDescrType'>, "
              "<class 'velbor.voxlar._StaticMethodDescrType'>, <class 'velbor.voxlar._MixMethodDescrType'>]");
    EXPECT_EQ(python.show("type(Base.s_plain)"), "<class 'velbor.voxlar._MethodObjectType'>");
    EXPECT_EQ(python.show("type(Base.s_plain)()"),
              "TypeError: cannot create 'velbor.voxlar._MethodObjectType' instances");
}

TEST_F(Descriptors, of_a_field_read_the_same_from_class_and_instance) {
    EXPECT_EQ(python.show("Base.CONST"), "(None, 'closure')");
    EXPECT_EQ(python.show("Base().CONST == Sub.CONST == Some.A.CONST == Some.CONST == (None, 'closure')"),
              "True");
    EXPECT_EQ(python.show("Base.CONST is Base.CONST"), "False");
}

TEST_F(Descriptors, of_a_field_can_be_replaced_where_the_class_allows_it) {
    python.run("Base.CONST = 5\nb = Base()\nb.BARE = 6");
    EXPECT_EQ(python.show("Base.CONST, Sub().CONST, b.BARE, Base.BARE"), "(5, 5, 6, (None, 'closure'))");
}

TEST_F(Descriptors, show_their_name_and_owner) {
    EXPECT_EQ(python.show("Base.__dict__['CONST']"), "<attribute 'CONST' of 'Base' objects>");
    EXPECT_EQ(python.show("Base.__dict__['plain']"), "<method 'plain' of 'Base' objects>");
    EXPECT_EQ(python.show("Base.__dict__['s_plain']"), "<method 's_plain' of 'Base' objects>");
    EXPECT_EQ(python.show("Base.__dict__['both']"), "<method 'any' of 'Base' objects>");
}

TEST_F(Descriptors, show_a_bound_method_with_its_object_and_any_other_with_itself) {
    python.run(
        "b = Base()\nbound = b.plain\nunbound = Base.plain\nstatic = Base.s_plain\nsub = Sub()\ns = "
        "sub.plain");
    EXPECT_EQ(python.show("bound"), describe("<extension method plain of Base object at %p>", "b"));
    EXPECT_EQ(python.show("s"), describe("<extension method plain of Sub object at %p>", "sub"));
    EXPECT_EQ(python.show("unbound"), describe("<extension method plain of Base object at %p>", "unbound"));
    EXPECT_EQ(python.show("static"), describe("<extension method s_plain of Base object at %p>", "static"));
}

TEST_F(Descriptors, have_the_record_s_doc_or_none) {
    EXPECT_EQ(
        python.show("[Base.__dict__[n].__doc__ for n in ('CONST', 'BARE', 'plain', 'one', 's_one', 'both')]"),
        "['a constant', None, 'takes nothing', None, None, None]");
    EXPECT_EQ(
        python.show("Base().plain.__doc__, Some._type_of.__doc__ if hasattr(Some, '_type_of') else None, "
                    "Base.s_one.__doc__"),
        "('takes nothing', None, None)");
}

TEST_F(Descriptors, test_the_second_argument_of_get) {
    for (const char* name : {"CONST", "plain", "s_plain", "both"}) {
        const std::string shown_name = std::string(name) == "both" ? "any" : name;
        const std::string expression = "Base.__dict__['" + std::string(name) + "'].__get__(None, 5)";
        EXPECT_EQ(python.show(expression.c_str()),
                  "TypeError: descriptor '" + shown_name + "' needs a type, not 'int', as arg 2");
    }
    // Python hands a null for a missing type.
    EXPECT_EQ(python.show("Base.__dict__['CONST'].__get__(Base())"),
              "TypeError: descriptor 'CONST' needs a type, not 'NoneType', as arg 2");
    EXPECT_EQ(python.show("Base.__dict__['s_plain'].__get__(Base())"),
              "TypeError: descriptor 's_plain' needs a type, not 'NoneType', as arg 2");
    EXPECT_EQ(python.show("Base.__dict__['CONST'].__get__(3, int)"), "(None, 'closure')");
}

TEST_F(Descriptors, of_instance_methods_test_the_object) {
    EXPECT_EQ(python.show("Base.__dict__['plain'].__get__(5, int)"),
              "TypeError: descriptor 'plain' for 'Base' objects doesn't apply to a 'int' object");
    EXPECT_EQ(python.show("Base.__dict__['both'].__get__(5, int)"),
              "TypeError: descriptor 'any' for 'Base' objects doesn't apply to a 'int' object");
    EXPECT_EQ(python.show("Base.__dict__['plain'].__get__(Sub(), 5)()[1:]"), "((), None)");
}

TEST_F(Descriptors, of_static_methods_give_one_callable) {
    EXPECT_EQ(python.show("Some.s_plain is Some.s_plain, Some.s_plain is Some.A.s_plain"), "(True, True)");
    EXPECT_EQ(python.show("Some.s_plain()"), "(None, (), None)");
    EXPECT_EQ(python.show("Some.s_one(7)"), "(None, 7)");
    EXPECT_EQ(python.show("Some.s_any(7, a=1)"), "(None, (7,), {'a': 1})");
}

TEST_F(Descriptors, of_mixed_methods_choose_by_how_they_are_reached) {
    python.run("b = Base()");
    EXPECT_EQ(python.show("Base.both(1)"), "(None, (1,), None)");
    EXPECT_EQ(python.show("b.both(1)[0] is b"), "True");
    EXPECT_EQ(python.show("Base.both is Base.both, b.both is b.both"), "(True, False)");
}

TEST_F(Descriptors, bind_a_new_and_equal_method_at_each_access) {
    EXPECT_EQ(python.show("Some.A.plain is Some.A.plain, Some.A.plain == Some.A.plain, "
                          "hash(Some.A.plain) == hash(Some.A.plain)"),
              "(False, True, True)");
    EXPECT_EQ(python.show("Some.A.plain == Some.B.plain, Some.A.plain != Some.B.plain"), "(False, True)");
    // The record is not compared, the function is.
    EXPECT_EQ(python.show("Some.A.plain == Some.A.any, Some.A.plain == Some.A.other"), "(True, False)");
    EXPECT_EQ(python.show("Some.A.plain == 5, Some.A.plain.__eq__(5)"), "(False, NotImplemented)");
    EXPECT_EQ(python.show("Some.A.plain < Some.A.plain").substr(0, 10), "TypeError:");
}

TEST_F(Descriptors, hash_by_object_and_function) {
    const PyRef bound = python.eval("Some.A.plain");
    const auto rotated = [](const void* pointer) {
        const auto address = reinterpret_cast<std::uintptr_t>(pointer);
        return address >> 4 | address << 60;
    };
    const PyRef member = python.eval("Some.A");
    const auto expected = static_cast<Py_hash_t>(rotated(member.get()) ^
                                                 rotated(reinterpret_cast<const void*>(no_args.ml_meth)));
    EXPECT_EQ(PyObject_Hash(bound.get()), expected);
}

TEST_F(Descriptors, call_a_bound_method) {
    EXPECT_EQ(python.show("Some.A.plain()"), "(<Some.A: 1>, (), None)");
    EXPECT_EQ(python.show("Some.A.plain(**{})[1]"), "()");
    EXPECT_EQ(python.show("Some.A.plain(1, 2)"), "TypeError: plain() takes no arguments (2 given)");
    EXPECT_EQ(python.show("Some.A.plain(a=1)"), "TypeError: plain() takes no keyword arguments");
    EXPECT_EQ(python.show("Some.A.plain(1, a=1)"), "TypeError: plain() takes no arguments (1 given)");
    EXPECT_EQ(python.show("Some.A.one(5)"), "(<Some.A: 1>, 5)");
    EXPECT_EQ(python.show("Some.A.one()"), "TypeError: one() takes exactly one argument (0 given)");
    EXPECT_EQ(python.show("Some.A.one(1, 2)"), "TypeError: one() takes exactly one argument (2 given)");
    EXPECT_EQ(python.show("Some.A.one(1, a=1)"), "TypeError: one() takes no keyword arguments");
    EXPECT_EQ(python.show("Some.A.any(1, 2, a=3)"), "(<Some.A: 1>, (1, 2), {'a': 3})");
}

TEST_F(Descriptors, call_an_unbound_method) {
    EXPECT_EQ(python.show("Some.plain(Some.B)"), "(<Some.B: 2>, None, None)");
    for (const char* name : {"plain", "one", "any"}) {
        const std::string call = "Some." + std::string(name);
        EXPECT_EQ(python.show((call + "()").c_str()),
                  "TypeError: unbound method " + std::string(name) + "() needs a 'self' argument");
        EXPECT_EQ(python.show((call + "(5)").c_str()),
                  "TypeError: descriptor '" + std::string(name) +
                      "' for 'Some' objects doesn't apply to a 'int' object");
    }
    EXPECT_EQ(python.show("Some.plain(Some.B, 1)"), "TypeError: plain() takes no arguments (1 given)");
    EXPECT_EQ(python.show("Some.plain(Some.B, a=1)"), "TypeError: plain() takes no keyword arguments");
    EXPECT_EQ(python.show("Some.one(Some.B, 7)"), "(<Some.B: 2>, 7)");
    EXPECT_EQ(python.show("Some.one(Some.B)"), "TypeError: one() takes exactly one argument (0 given)");
    EXPECT_EQ(python.show("Some.one(Some.B, 1, 2)"), "TypeError: one() takes exactly one argument (2 given)");
    EXPECT_EQ(python.show("Some.one(Some.B, 1, a=1)"), "TypeError: one() takes no keyword arguments");
    EXPECT_EQ(python.show("Base.plain(Sub())[1:]"), "(None, None)");
}

TEST_F(Descriptors, call_an_unbound_general_method_without_its_last_argument) {
    EXPECT_EQ(python.show("Some.any(Some.B)"), "(<Some.B: 2>, (), None)");
    EXPECT_EQ(python.show("Some.any(Some.B, 1)"), "(<Some.B: 2>, (), None)");
    EXPECT_EQ(python.show("Some.any(Some.B, 1, 2, 3, k=4)"), "(<Some.B: 2>, (1, 2), {'k': 4})");
}

TEST_F(Descriptors, let_their_methods_be_referred_to_weakly) {
    python.run("import weakref\nm = Some.A.plain\nended = []\nr = weakref.ref(m, ended.append)");
    EXPECT_EQ(python.show("r() is m"), "True");
    python.run("del m");
    EXPECT_EQ(python.show("r(), len(ended)"), "(None, 1)");
}

TEST_F(Descriptors, leave_no_references_behind) {
    auto* type = reinterpret_cast<PyTypeObject*>(python.named("Base"));
    python.run("b = Base()");
    PyObject* object = python.named("b");
    const ReferenceCount of_type(python.named("Base"));
    const ReferenceCount of_object(object);
    for (int i = 0; i < 10; ++i) {
        Py_DECREF(PyShDescr_NewStaticField(type, &constant));
        Py_DECREF(PyShDescr_NewInstanceMethod(type, &no_args));
        Py_DECREF(PyShDescr_NewStaticMethod(type, &static_no_args));
        Py_DECREF(PyShDescr_NewMixedMethod(type, &mixed_static, &any_args));
        Py_DECREF(PyShCMethod_New(type, &no_args, object));
        Py_DECREF(PyShCMethod_New(type, &no_args, nullptr));
        EXPECT_EQ(python.show("b.one(Base.s_any())[0] is b, b.both(), b.any(1), b.CONST").substr(0, 5),
                  "(True");
    }
    EXPECT_EQ(of_type.grown(), 0);
    EXPECT_EQ(of_object.grown(), 0);
}

TEST_F(Descriptors, are_collected_with_their_class) {
    python.run("import gc, weakref\nclass Doomed: pass\nr = weakref.ref(Doomed)");
    fill(reinterpret_cast<PyTypeObject*>(python.named("Doomed")));
    python.run("i = Doomed()\ni.kept = i.plain\ndel i, Doomed\ngc.collect()");
    EXPECT_EQ(python.show("r()"), "None");
}

}  // namespace
