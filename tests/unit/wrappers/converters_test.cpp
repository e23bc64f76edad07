#include "wrappers/converters.h"

#include "support/managed_side.h"

namespace {

int assignable = 0;

struct ClassHost {
    static ClassHost get_instance() { return {}; }
    static int btp_IsAssignable(void*) {
        ManagedSide::instance().record("IsAssignable");
        return assignable;
    }
};

struct RecordHost {
    static RecordHost get_instance() { return {}; }
    static int btp_IsAssignable(const VariantArg* record) {
        ManagedSide::instance().record("IsAssignable:" + std::to_string(record->kind));
        return assignable;
    }
};

class Converters : public ManagedTest {
protected:
    Converters() {
        assignable = 0;
        python.name("thing", make_wrapper(ThingType));
        python.name("special", make_wrapper(SpecialThingType));
        python.name("point", make_wrapper(PointType));
        python.name("named", make_wrapper(NamedType));
        python.name("foreign", make_wrapper(ForeignThingType));
        python.name("foreign_point", make_wrapper(ForeignPointType));
        managed.calls();
    }

    // "" for a null handle, the name of the wrapper whose handle was taken, or the error.
    std::string owner_of(void* handle) {
        for (const char* name : {"thing", "special", "point", "named", "foreign", "foreign_point"}) {
            if (handle != nullptr && fn_wrapper_handle(python.named(name)) == handle) {
                return name;
            }
        }
        return handle == nullptr ? "null" : "unknown";
    }

    std::string to_class(const char* value) {
        const PyRef object = python.eval(value);
        void* handle = this;
        const ReferenceCount references(object.get());
        const int done = fn_conv_py_to_clr_class<ClassHost>(object.get(), &handle,
                                                            {&ThingType, "Thing", invalidate_types});
        EXPECT_EQ(references.grown(), 0);
        return done == 1 ? owner_of(handle) : take_error();
    }

    template <typename Convert>
    std::string to_record(const char* value, Convert convert) {
        const PyRef object = python.eval(value);
        VariantArg record{.kind = 77, .payload = this};
        return convert(object.get(), &record) == 1
                   ? owner_of(record.payload) + ":" + std::to_string(record.kind)
                   : take_error();
    }

    std::string to_struct(const char* value) {
        return to_record(value, [](PyObject* object, VariantArg* record) {
            return fn_conv_py_to_clr_struct<RecordHost>(object, record,
                                                        {&PointType, "Point", invalidate_types});
        });
    }

    std::string to_interface(const char* value) {
        return to_record(value, [](PyObject* object, VariantArg* record) {
            return fn_conv_py_to_clr_interface<RecordHost>(object, record,
                                                           {&NamedType, "INamed", invalidate_types});
        });
    }
};

TEST_F(Converters, of_a_class_take_none_the_type_and_its_subtypes) {
    EXPECT_EQ(to_class("None"), "null");
    EXPECT_EQ(to_class("thing"), "thing");
    EXPECT_EQ(to_class("special"), "special");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Converters, of_a_class_ask_about_other_wrappers_of_references) {
    EXPECT_EQ(to_class("foreign"), "TypeError: can't build Thing value from 'other.Thing'");
    EXPECT_EQ(managed.calls(), "IsAssignable");
    assignable = 1;
    EXPECT_EQ(to_class("foreign"), "foreign");
    EXPECT_EQ(to_class("named"), "named");
    EXPECT_EQ(managed.calls(), "IsAssignable IsAssignable");
    EXPECT_EQ(to_class("point"), "TypeError: can't build Thing value from 'test.Point'");
    EXPECT_EQ(to_class("5"), "TypeError: can't build Thing value from 'int'");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Converters, do_not_ask_an_unusable_host) {
    types_are_invalid = true;
    assignable = 1;
    EXPECT_EQ(to_class("foreign"), "TypeError: host is not bound");
    EXPECT_EQ(to_struct("foreign_point"), "TypeError: host is not bound");
    EXPECT_EQ(to_interface("foreign"), "TypeError: host is not bound");
    EXPECT_EQ(to_class("thing"), "thing");
    EXPECT_EQ(to_class("5"), "TypeError: can't build Thing value from 'int'");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Converters, of_a_struct_refuse_none) {
    EXPECT_EQ(to_struct("point"), "point:1");
    EXPECT_EQ(to_struct("None"), "TypeError: can't build Point value from 'NoneType'");
    EXPECT_EQ(to_struct("5"), "TypeError: can't build Point value from 'int'");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Converters, of_a_struct_ask_about_every_other_wrapper) {
    EXPECT_EQ(to_struct("thing"), "TypeError: can't build Point value from 'test.Thing'");
    assignable = 1;
    EXPECT_EQ(to_struct("thing"), "thing:0");
    EXPECT_EQ(to_struct("foreign_point"), "foreign_point:1");
    EXPECT_EQ(managed.calls(), "IsAssignable:0 IsAssignable:0 IsAssignable:1");
}

TEST_F(Converters, of_an_interface_take_what_lists_it_without_a_call) {
    EXPECT_EQ(to_interface("None"), "null:0");
    EXPECT_EQ(to_interface("named"), "named:0");
    EXPECT_EQ(to_interface("special"), "special:0");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Converters, of_an_interface_ask_about_what_does_not) {
    EXPECT_EQ(to_interface("thing"), "TypeError: can't build INamed value from 'test.Thing'");
    assignable = 1;
    EXPECT_EQ(to_interface("thing"), "thing:0");
    EXPECT_EQ(to_interface("point"), "point:1");
    // It lists the interface, but its slots are those of another module.
    EXPECT_EQ(to_interface("foreign"), "foreign:0");
    EXPECT_EQ(managed.calls(), "IsAssignable:0 IsAssignable:0 IsAssignable:1 IsAssignable:0");
    EXPECT_EQ(to_interface("[]"), "TypeError: can't build INamed value from 'list'");
}

class Enums : public ManagedTest {
protected:
    Enums() {
        python.run(
            "import enum\n"
            "Axis = enum.IntEnum('Axis', (('X', 0), ('Y', 1), ('Z', 2)))\n"
            "Other = enum.IntEnum('Other', (('X', 0),))\n"
            "Bits = enum.IntFlag('Bits', (('A', 1), ('B', 2), ('C', 128)))");
        axis = reinterpret_cast<PyTypeObject*>(python.named("Axis"));
        bits = reinterpret_cast<PyTypeObject*>(python.named("Bits"));
    }

    std::string to_axis(const char* value) {
        const PyRef object = python.eval(value);
        int out = 77;
        return fn_conv_py_to_clr_enum(object.get(), &out, axis, "Axis") == 1 ? std::to_string(out)
                                                                             : take_error();
    }

    std::string to_bits(const char* value) {
        const PyRef object = python.eval(value);
        unsigned char out = 77;
        return fn_conv_py_to_clr_flags(object.get(), &out, bits, "Bits") == 1 ? std::to_string(out)
                                                                              : take_error();
    }

    static std::string shown(PyObject* result) {
        const PyRef owned = PyRef::steal(result);
        return owned ? repr_of(owned.get()) : take_error();
    }

    PyTypeObject* axis;
    PyTypeObject* bits;
};

TEST_F(Enums, take_their_members_alone) {
    EXPECT_EQ(to_axis("Axis.Z"), "2");
    EXPECT_EQ(to_axis("0"), "TypeError: can't build Axis value from 'int'");
    EXPECT_EQ(to_axis("True"), "TypeError: can't build Axis value from 'bool'");
    EXPECT_EQ(to_axis("Other.X"), "TypeError: can't build Axis value from 'Other'");
    EXPECT_EQ(to_axis("None"), "TypeError: can't build Axis value from 'NoneType'");
    EXPECT_EQ(to_bits("Bits.A | Bits.C"), "129");
    EXPECT_EQ(to_bits("1"), "TypeError: can't build Bits value from 'int'");
}

TEST_F(Enums, give_their_members) {
    const PyRef expected = python.eval("Axis.Y");
    const ReferenceCount references(expected.get());
    const PyRef member = PyRef::steal(fn_conv_clr_enum_to_py(1, axis));
    EXPECT_EQ(member.get(), expected.get());
    EXPECT_EQ(references.grown(), 1);
    EXPECT_EQ(shown(fn_conv_clr_enum_to_py(7, axis)), "ValueError: 7 is not a valid Axis");
    EXPECT_EQ(PyRef::steal(fn_conv_clr_flags_to_py(128, bits)).get(), python.eval("Bits.C").get());
}

TEST_F(Enums, give_composites_of_flags) {
    const PyRef both = PyRef::steal(fn_conv_clr_flags_to_py(3, bits));
    ASSERT_TRUE(both);
    EXPECT_EQ(Py_TYPE(both.get()), bits);
    EXPECT_EQ(PyLong_AsLong(both.get()), 3);
}

}  // namespace
