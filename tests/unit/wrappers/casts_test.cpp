#include "wrappers/casts.h"

#include "support/managed_side.h"

namespace {

// What the managed side of a type host answers, and what it was asked.
struct HostScript {
    int status = 1;
    std::string out_type = "";  // empty: a null out handle
    bool fails = false;         // leaves an error pending
    int assignable = 1;
};

HostScript script;

int answer(const char* name, void** out) {
    ManagedSide::instance().record(name);
    if (script.fails) {
        PyErr_SetString(PyExc_RuntimeError, "managed");
    }
    if (!script.out_type.empty() && script.status != 0) {
        *out = ManagedSide::instance().make({.type = script.out_type});
    }
    return script.status;
}

std::string described(const VariantArg* record) {
    return std::string(record->payload == nullptr ? "null:" : "kind:") + std::to_string(record->kind);
}

void record_call(const std::string& call) {
    ManagedSide::instance().record(call);
}

// A host whose "btp_CastAs" and "btp_IsAssignable" take a bare handle, and one where they take a record.
struct HostBase {
    static int btp_TypeOf(void** out) { return answer("TypeOf", out); }
    static int btp_CastTo(const VariantArg* object, void** out) {
        record_call(described(object));
        return answer("CastTo", out);
    }
    static int btp_ReInterpretObj(void*, void** out) { return answer("ReInterpretObj", out); }
    static int btp_CastFrom(void*, void*, void** out) { return answer("CastFrom", out); }
};

struct ClassHost : HostBase {
    static ClassHost get_instance() { return {}; }
    static int btp_CastAs(void*, void** out) { return answer("CastAs", out); }
    static int btp_IsAssignable(void*) {
        record_call("IsAssignable");
        return script.assignable;
    }
};

struct RecordHost : HostBase {
    static RecordHost get_instance() { return {}; }
    static int btp_CastAs(const VariantArg* object, void** out) {
        record_call(described(object));
        return answer("CastAs", out);
    }
    static int btp_IsAssignable(const VariantArg* object) {
        record_call(described(object));
        record_call("IsAssignable");
        return script.assignable;
    }
};

// The out value of an enum host is a number, of which a byte enum writes one byte.
int enum_value = 0;

template <typename Number>
struct EnumHost {
    static EnumHost get_instance() { return {}; }
    static int btp_TypeOf(void** out) { return answer("TypeOf", out); }
    static int btp_CastTo(const VariantArg*, Number* out) { return give("CastTo", out); }
    static int btp_CastAs(void*, Number* out) { return give("CastAs", out); }
    static int btp_ReInterpretObj(void*, Number* out) { return give("ReInterpretObj", out); }
    static int btp_IsAssignable(void*) { return script.assignable; }
    static int btp_AsUniEnum(Number value, void** out) {
        record_call("value:" + std::to_string(value));
        return answer("AsUniEnum", out);
    }
    static int btp_GetType(Number value, void** out) {
        record_call("value:" + std::to_string(value));
        return answer("GetType", out);
    }

private:
    static int give(const char* name, Number* out) {
        *out = static_cast<Number>(enum_value);
        return answer(name, nullptr);
    }
};

template <typename Number>
PyObject* wrap_number(Number number) {
    if (number == 99) {
        PyErr_SetString(PyExc_ValueError, "no such member");
        return nullptr;
    }
    return PyLong_FromLong(number);
}

using Class = ClassCasts<ClassHost, ThingType, invalidate_types>;
using Struct = StructCasts<RecordHost, PointType, invalidate_types>;
using Convertible = ConvertibleStructCasts<RecordHost, PointType, invalidate_types>;
using Interface = InterfaceCasts<RecordHost, NamedType, invalidate_types>;
using Interop = InteropCasts<RecordHost, ThingType, invalidate_types>;
using InteropInterface = InteropInterfaceCasts<RecordHost, NamedType, invalidate_types>;
using StaticClass = StaticClassCasts<ClassHost, ThingType, invalidate_types>;
using Enum = EnumCasts<EnumHost<int>, int, wrap_number<int>, invalidate_types>;
using Flags = EnumCasts<EnumHost<unsigned char>, unsigned char, wrap_number<unsigned char>, invalidate_types>;

class Casts : public ManagedTest {
protected:
    Casts() {
        script = {};
        enum_value = 0;
    }

    // The repr of a result, "Class: text" of an error.
    static std::string shown(PyObject* result) {
        const PyRef owned = PyRef::steal(result);
        return owned ? repr_of(owned.get()) : take_error();
    }

    std::string shown(PyCFunction cast, const char* argument) {
        const PyRef value = python.eval(argument);
        return shown(cast(nullptr, value.get()));
    }

    void name_wrappers() {
        python.name("thing", make_wrapper(ThingType));
        python.name("point", make_wrapper(PointType));
        python.name("foreign", make_wrapper(ForeignThingType));
        managed.calls();
    }
};

TEST_F(Casts, type_of_gives_the_managed_type) {
    script.out_type = "System.Type";
    for (const PyCFunction type_of :
         {Class::type_of, Struct::type_of, Convertible::type_of, Interface::type_of, Interop::type_of,
          InteropInterface::type_of, StaticClass::type_of, Enum::type_of, Flags::type_of}) {
        EXPECT_EQ(shown(type_of(nullptr, nullptr)), "('Type',)");
        EXPECT_EQ(managed.calls(), "TypeOf");
    }
    script = {.status = 0, .fails = true};
    EXPECT_EQ(shown(Class::type_of(nullptr, nullptr)), "RuntimeError: managed");
}

TEST_F(Casts, run_the_validity_check_first) {
    types_are_invalid = true;
    const PyCFunction checked[] = {
        Class::type_of,
        Class::cast_to,
        Class::cast_as,
        Class::is_assignable,
        Class::reinterpret_obj,
        Struct::type_of,
        Struct::cast_to,
        Struct::cast_as,
        Struct::is_assignable,
        Struct::reinterpret_obj,
        Interface::type_of,
        Interface::cast_to,
        Interface::cast_as,
        Interface::is_assignable,
        Interop::type_of,
        Interop::cast_to,
        Interop::cast_as,
        Interop::is_assignable,
        Interop::reinterpret_obj,
        Enum::type_of,
        Enum::cast_to,
        Enum::cast_as,
        Enum::is_assignable,
        Enum::reinterpret_obj,
        Enum::as_uni_enum,
        Enum::get_type,
        StaticClass::type_of,
    };
    for (const PyCFunction cast : checked) {
        EXPECT_EQ(shown(cast, "5"), "TypeError: host is not bound");
    }
    EXPECT_EQ(shown(Class::cast_from, "5"), "(0,)");
    EXPECT_EQ(shown(StaticClass::cast_to, "5"), "(0,)");
    EXPECT_EQ(shown(StaticClass::is_assignable, "5"), "False");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Casts, to_a_type_wrap_the_result_as_exactly_that_type) {
    name_wrappers();
    script = {.status = 3, .out_type = "Test.SpecialThing"};
    const PyRef result = PyRef::steal(Class::cast_to(nullptr, python.named("foreign")));
    ASSERT_TRUE(result);
    PyObject* wrapper = PyTuple_GET_ITEM(result.get(), 1);
    EXPECT_EQ(PyLong_AsLong(PyTuple_GET_ITEM(result.get(), 0)), 3);
    EXPECT_EQ(Py_TYPE(wrapper), &ThingType);
    EXPECT_EQ(Py_REFCNT(wrapper), 1);
    EXPECT_EQ(managed.calls(), "kind:0 CastTo");
    EXPECT_EQ(shown(Class::cast_to, "point").substr(0, 4), "(3, ");
    EXPECT_EQ(managed.calls().substr(0, 13), "kind:1 CastTo");
}

TEST_F(Casts, to_a_type_hand_none_to_the_managed_side) {
    EXPECT_EQ(shown(Class::cast_to, "None"), "(1, None)");
    EXPECT_EQ(managed.calls(), "null:0 CastTo");
    script.status = 0;
    EXPECT_EQ(shown(Interface::cast_to, "None"), "(0,)");
    EXPECT_EQ(managed.calls(), "null:0 CastTo");
}

TEST_F(Casts, of_what_is_no_wrapper_fail_without_an_error) {
    for (const PyCFunction cast :
         {Class::cast_to, Class::cast_as, Struct::cast_to, Struct::cast_as, Interface::cast_to,
          Interface::cast_as, Interop::cast_to, Interop::cast_as, Enum::cast_to, Enum::cast_as}) {
        EXPECT_EQ(shown(cast, "5"), "(0,)");
    }
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Casts, that_the_managed_side_refuses_have_status_0) {
    name_wrappers();
    script.status = 0;
    EXPECT_EQ(shown(Class::cast_to, "thing"), "(0,)");
    EXPECT_EQ(shown(Class::cast_as, "thing"), "(0,)");
    EXPECT_EQ(shown(Struct::cast_as, "point"), "(0,)");
}

TEST_F(Casts, that_the_managed_side_throws_out_of_are_that_error) {
    name_wrappers();
    script = {.status = -1, .fails = true};
    EXPECT_EQ(shown(Class::cast_to, "thing"), "RuntimeError: managed");
    EXPECT_EQ(shown(Interop::cast_as, "thing"), "RuntimeError: managed");
    // A status of -1 without an error is a success with that code.
    script = {.status = -1};
    EXPECT_EQ(shown(Class::cast_to, "thing"), "(-1, None)");
}

TEST_F(Casts, whose_wrapper_fails_are_that_error) {
    name_wrappers();
    enum_value = 99;
    EXPECT_EQ(shown(Enum::cast_to, "thing"), "ValueError: no such member");
    EXPECT_EQ(shown(Enum::cast_as, "thing"), "ValueError: no such member");
    EXPECT_EQ(shown(Enum::reinterpret_obj, "('Object',)"), "ValueError: no such member");
}

TEST_F(Casts, as_a_type_take_what_their_family_takes) {
    name_wrappers();
    const struct {
        PyCFunction cast;
        const char* argument;
        const char* result;
        const char* calls;
    } cases[] = {
        {Class::cast_as, "thing", "(1, None)", "CastAs"},
        {Class::cast_as, "foreign", "(1, None)", "CastAs"},
        {Class::cast_as, "point", "(0,)", ""},
        {Class::cast_as, "None", "(0,)", ""},
        {Enum::cast_as, "thing", "(1, 0)", "CastAs"},
        {Enum::cast_as, "point", "(0,)", ""},
        {Struct::cast_as, "thing", "(1, None)", "kind:0 CastAs"},
        {Struct::cast_as, "point", "(1, None)", "kind:1 CastAs"},
        {Struct::cast_as, "None", "(0,)", ""},
        {Interface::cast_as, "point", "(1, None)", "kind:1 CastAs"},
        {Interface::cast_as, "None", "(0,)", ""},
        {Interop::cast_as, "thing", "(1, None)", "kind:0 CastAs"},
        {Interop::cast_as, "None", "(1, None)", "null:0 CastAs"},
        {InteropInterface::cast_as, "None", "(1, None)", "null:0 CastAs"},
    };
    for (const auto& [cast, argument, result, calls] : cases) {
        EXPECT_EQ(shown(cast, argument), result) << argument << " " << calls;
        EXPECT_EQ(managed.calls(), calls) << argument;
    }
}

TEST_F(Casts, tell_whether_a_handle_may_be_assigned) {
    name_wrappers();
    const struct {
        PyCFunction test;
        const char* argument;
        const char* result;
        const char* calls;
    } cases[] = {
        {Class::is_assignable, "thing", "True", "IsAssignable"},
        {Class::is_assignable, "point", "False", ""},
        {Class::is_assignable, "None", "False", ""},
        {Class::is_assignable, "5", "False", ""},
        {Struct::is_assignable, "point", "True", "kind:1 IsAssignable"},
        {Interface::is_assignable, "point", "True", "kind:1 IsAssignable"},
        {Interface::is_assignable, "None", "False", ""},
        {Interop::is_assignable, "foreign", "True", "kind:0 IsAssignable"},
        {Interop::is_assignable, "None", "False", ""},
        {StaticClass::is_assignable, "thing", "False", ""},
    };
    for (const auto& [test, argument, result, calls] : cases) {
        EXPECT_EQ(shown(test, argument), result) << argument;
        EXPECT_EQ(managed.calls(), calls) << argument;
    }
    script.assignable = 0;
    EXPECT_EQ(shown(Class::is_assignable, "thing"), "False");
}

TEST_F(Casts, from_anything_but_some_structs_fail_whatever_the_argument_is) {
    for (const PyCFunction cast_from :
         {Class::cast_from, Struct::cast_from, Interface::cast_from, Interop::cast_from,
          InteropInterface::cast_from, StaticClass::cast_from, Enum::cast_from}) {
        for (const char* argument : {"5", "None", "int", "('Type',)"}) {
            EXPECT_EQ(shown(cast_from, argument), "(0,)") << argument;
        }
    }
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Casts, from_a_convertible_struct_ask_the_managed_side) {
    name_wrappers();
    const PyRef type = python.eval("('Type',)");
    const PyRef five = python.eval("5");
    PyObject* point = python.named("point");
    EXPECT_EQ(shown(Convertible::cast_from(point, five.get())),
              "TypeError: _cast_from() expects a .Net Type argument, got a int object");
    EXPECT_EQ(managed.calls(), "");
    script = {.status = 2, .out_type = "System.Object"};
    EXPECT_EQ(shown(Convertible::cast_from(point, type.get())), "(2, ('Object',))");
    EXPECT_EQ(managed.calls(), "CastFrom");
    script = {.status = 0};
    EXPECT_EQ(shown(Convertible::cast_from(point, type.get())), "(0,)");
    script = {.status = -1, .fails = true};
    EXPECT_EQ(shown(Convertible::cast_from(point, type.get())), "RuntimeError: managed");
}

TEST_F(Casts, reinterpret_an_object_of_the_reflection_module) {
    script.out_type = "Test.Thing";
    for (const PyCFunction reinterpret_obj :
         {Class::reinterpret_obj, Struct::reinterpret_obj, Interop::reinterpret_obj}) {
        EXPECT_EQ(shown(reinterpret_obj, "('Object',)"), "thing");
        EXPECT_EQ(shown(reinterpret_obj, "5"),
                  "TypeError: _reinterpret_obj() expects a .Net Object argument, got a int object");
    }
    script = {.status = 0, .fails = true};
    EXPECT_EQ(shown(Class::reinterpret_obj, "('Object',)"), "RuntimeError: managed");
    script = {.status = 0};
    EXPECT_EQ(shown(Class::reinterpret_obj, "('Object',)"), "None");
    EXPECT_EQ(shown(Enum::reinterpret_obj, "('Object',)"), "0");
}

TEST_F(Casts, reinterpret_nothing_as_an_interface) {
    for (const PyCFunction reinterpret_obj :
         {Interface::reinterpret_obj, InteropInterface::reinterpret_obj}) {
        EXPECT_EQ(shown(reinterpret_obj, "5"), "TypeError: cannot convert from  'int' to 'test.INamed'");
        EXPECT_EQ(shown(reinterpret_obj, "('Object',)"),
                  "TypeError: cannot convert from  'tuple' to 'test.INamed'");
    }
    EXPECT_EQ(shown(StaticClass::reinterpret_obj, "None"),
              "TypeError: cannot convert from  'NoneType' to 'test.Thing'");
    types_are_invalid = true;
    EXPECT_EQ(shown(Interface::reinterpret_obj, "5"),
              "TypeError: cannot convert from  'int' to 'test.INamed'");
}

TEST_F(Casts, give_an_enum_a_number) {
    name_wrappers();
    enum_value = -3;
    EXPECT_EQ(shown(Enum::cast_to, "thing"), "(1, -3)");
    enum_value = 200;
    EXPECT_EQ(shown(Flags::cast_to, "thing"), "(1, 200)");
    EXPECT_EQ(shown(Flags::cast_as, "thing"), "(1, 200)");
    EXPECT_EQ(shown(Flags::reinterpret_obj, "('Object',)"), "200");
}

TEST_F(Casts, turn_a_member_into_a_managed_enum_and_its_type) {
    script.out_type = "System.Enum";
    const PyRef five = python.eval("5");
    const PyRef text = python.eval("'x'");
    EXPECT_EQ(shown(Enum::as_uni_enum(five.get(), nullptr)), "('Enum',)");
    EXPECT_EQ(managed.calls(), "value:5 AsUniEnum");
    EXPECT_EQ(shown(Flags::get_type(five.get(), nullptr)), "('Type',)");
    EXPECT_EQ(managed.calls(), "value:5 GetType");
    EXPECT_EQ(shown(Enum::as_uni_enum(text.get(), nullptr)).substr(0, 10), "TypeError:");
    EXPECT_EQ(shown(Enum::get_type(text.get(), nullptr)).substr(0, 10), "TypeError:");
    EXPECT_EQ(managed.calls(), "");
    script = {.status = 0, .fails = true};
    EXPECT_EQ(shown(Enum::as_uni_enum(five.get(), nullptr)), "RuntimeError: managed");
    EXPECT_EQ(shown(Enum::get_type(five.get(), nullptr)), "RuntimeError: managed");
}

TEST_F(Casts, have_their_rows_in_the_order_of_the_family) {
    const PyMethodDef class_rows[] = {VELBOR_CLASS_CAST_ROWS(Class)};
    const PyMethodDef interop_rows[] = {VELBOR_INTEROP_CAST_ROWS(Interop)};
    const char* class_names[] = {"_type_of",         "_cast_to", "_cast_from",
                                 "_reinterpret_obj", "_cast_as", "_is_assignable"};
    const char* interop_names[] = {"_type_of",       "_cast_to",         "_cast_from",
                                   "_is_assignable", "_reinterpret_obj", "_cast_as"};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_STREQ(class_rows[i].ml_name, class_names[i]);
        EXPECT_STREQ(interop_rows[i].ml_name, interop_names[i]);
        EXPECT_EQ((class_rows[i].ml_flags & METH_STATIC) != 0, std::string(class_names[i]) != "_cast_from");
    }
}

}  // namespace
