#include "wrappers/variant.h"

#include "support/managed_side.h"

namespace {

constexpr int Refused = -1;

class Variant : public ManagedTest {
protected:
    Variant() {
        python.run(
            "import decimal, uuid, datetime, enum, array, collections, types, sys\n"
            "class Int(int): pass\n"
            "class Float(float): pass\n"
            "class Str(str): pass\n"
            "class Bytes(bytes): pass\n"
            "class ByteArray(bytearray): pass\n"
            "class List(list): pass\n"
            "class Tuple(tuple): pass\n"
            "class Dec(decimal.Decimal): pass\n"
            "class DecTuple(decimal.DecimalTuple): pass\n"
            "class Uid(uuid.UUID): pass\n"
            "class Date(datetime.date): pass\n"
            "class DateTime(datetime.datetime): pass\n"
            "class Time(datetime.time): pass\n"
            "class Delta(datetime.timedelta): pass\n"
            "class Color(enum.IntEnum): RED = 1\n"
            "class Flag(enum.IntFlag): A = 1\n"
            "class Plain(enum.Enum): A = 1\n"
            "Named = collections.namedtuple('Named', 'a b')\n"
            "class Index:\n    def __index__(self): return 1\n");
    }

    int kind_of(PyObject* value) {
        VariantArg record{.kind = 99};
        const ReferenceCount references(value);
        const int done = fn_conv_py_variant_to_clr_variant(value, &record);
        EXPECT_EQ(references.grown(), 0);
        if (done == 0) {
            return Refused;
        }
        EXPECT_EQ(record.payload, value);
        return record.kind;
    }
};

TEST_F(Variant, classifies_every_python_value) {
    const struct {
        const char* value;
        int kind;
    } cases[] = {
        {"None", 0},
        {"'text'", 3},
        {"''", 3},
        {"'\\U0001F600'", 3},
        {"Str('sub')", 3},
        {"b'bytes'", 4},
        {"b''", 4},
        {"Bytes(b'sub')", 4},
        {"bytearray(b'x')", 4},
        {"ByteArray(b'sub')", 4},
        {"memoryview(b'x')", 4},
        {"memoryview(b'xyz')[::2]", 4},
        {"True", 5},
        {"False", 5},
        {"0", 6},
        {"1", 6},
        {"-1", 6},
        {"2**31", 6},
        {"2**63", 6},
        {"2**64", 6},
        {"-2**200", 6},
        {"0.0", 7},
        {"1.0", 7},
        {"float('nan')", 7},
        {"float('-inf')", 7},
        {"Float(2.5)", 7},
        {"decimal.Decimal(1)", 8},
        {"decimal.Decimal('1.50')", 8},
        {"decimal.Decimal('NaN')", 8},
        {"Dec(1)", 8},
        {"decimal.Decimal(1).as_tuple()", 9},
        {"decimal.DecimalTuple(0, (1,), 0)", 9},
        {"DecTuple(0, (1,), 0)", 9},
        {"datetime.datetime(2020, 1, 2)", 10},
        {"datetime.datetime(2020, 1, 2, tzinfo=datetime.timezone.utc)", 10},
        {"DateTime(2020, 1, 2)", 10},
        {"datetime.date(2020, 1, 2)", 11},
        {"Date(2020, 1, 2)", 11},
        {"datetime.time(1, 2)", 12},
        {"Time(1, 2)", 12},
        {"datetime.timedelta(1)", 13},
        {"Delta(1)", 13},
        {"uuid.UUID(int=5)", 14},
        {"Uid(int=5)", 14},
        {"[]", 15},
        {"[1, 'a']", 15},
        {"()", 16},
        {"(1,)", 16},
        {"Int(1)", Refused},
        {"Color.RED", Refused},
        {"Flag.A", Refused},
        {"Plain.A", Refused},
        {"List()", Refused},
        {"Tuple()", Refused},
        {"Named(1, 2)", Refused},
        {"{}", Refused},
        {"set()", Refused},
        {"frozenset()", Refused},
        {"range(3)", Refused},
        {"iter([])", Refused},
        {"(x for x in ())", Refused},
        {"array.array('B', b'x')", Refused},
        {"1j", Refused},
        {"object()", Refused},
        {"Index()", Refused},
        {"int", Refused},
        {"len", Refused},
        {"lambda: 0", Refused},
        {"sys", Refused},
        {"Ellipsis", Refused},
        {"NotImplemented", Refused},
        {"types.SimpleNamespace()", Refused},
        {"datetime.timezone.utc", Refused},
        {"slice(1)", Refused},
        {"ValueError('x')", Refused},
        {"'abc'.encode", Refused},
    };
    static_assert(sizeof cases / sizeof *cases >= 60);
    for (const auto& [value, kind] : cases) {
        const PyRef object = python.eval(value);
        ASSERT_TRUE(object) << value << take_error();
        EXPECT_EQ(kind_of(object.get()), kind) << value;
        EXPECT_EQ(take_error(), kind == Refused ? "TypeError: unknown variant type" : "") << value;
    }
}

TEST_F(Variant, of_none_points_at_none) {
    VariantArg record{};
    EXPECT_EQ(fn_conv_py_variant_to_clr_variant(Py_None, &record), 1);
    EXPECT_EQ(record.kind, 0);
    EXPECT_EQ(record.payload, Py_None);
}

TEST_F(Variant, of_a_wrapper_is_its_handle) {
    const struct {
        PyTypeObject* type;
        int kind;
    } cases[] = {{&ThingType, 1},
                 {&SpecialThingType, 1},
                 {&PointType, 2},
                 {&ForeignThingType, 1},
                 {&ForeignPointType, 2}};
    for (const auto& [type, kind] : cases) {
        const PyRef wrapper = PyRef::steal(make_wrapper(*type));
        VariantArg record{};
        EXPECT_EQ(fn_conv_py_variant_to_clr_variant(wrapper.get(), &record), 1);
        EXPECT_EQ(record.kind, kind);
        EXPECT_EQ(record.payload, fn_wrapper_handle(wrapper.get()));
    }
}

TEST_F(Variant, of_a_wrapper_without_a_handle_is_refused) {
    const PyRef wrapper = PyRef::steal(ThingType.tp_new(&ThingType, nullptr, nullptr));
    VariantArg record{};
    EXPECT_EQ(fn_conv_py_variant_to_clr_variant(wrapper.get(), &record), 0);
    EXPECT_EQ(take_error(), "TypeError: unknown variant type");
}

TEST_F(Variant, fails_when_a_class_cannot_be_imported) {
    const struct {
        const char* setup;
        const char* error;
    } cases[] = {
        {"saved = sys.modules['decimal']; sys.modules['decimal'] = None",
         "ImportError: Unable to import the specified module decimal. The module not found or errors "
         "occurred while "
         "initializing it."},
        {"saved = sys.modules['decimal']; sys.modules['decimal'] = types.ModuleType('decimal')",
         "ImportError: Unable to import the specified type DecimalTuple from the module decimal. The type "
         "not found or "
         "errors occurred while initializing it."},
        {"saved = sys.modules['decimal']; sys.modules['decimal'] = types.SimpleNamespace(DecimalTuple=int)",
         "ImportError: Unable to import the specified type Decimal from the module decimal. The type not "
         "found or "
         "errors occurred while initializing it."},
    };
    for (const auto& [setup, error] : cases) {
        python.run(setup);
        const PyRef text = python.eval("'text'");
        EXPECT_EQ(kind_of(text.get()), Refused);
        EXPECT_EQ(take_error(), error);
        // What is decided before the import is not touched by it.
        EXPECT_EQ(kind_of(python.eval("1.5").get()), 7);
        python.run("sys.modules['decimal'] = saved");
    }
    python.run("saved = sys.modules['uuid']; sys.modules['uuid'] = None");
    EXPECT_EQ(kind_of(python.eval("'text'").get()), Refused);
    EXPECT_EQ(take_error(),
              "ImportError: Unable to import the specified module uuid. The module not found or errors "
              "occurred while "
              "initializing it.");
    EXPECT_EQ(kind_of(python.eval("decimal.Decimal(1)").get()), 8);
    python.run("sys.modules['uuid'] = saved");
}

TEST_F(Variant, takes_a_failing_instance_test_for_a_hit) {
    python.run(
        "class Liar:\n"
        "    @property\n"
        "    def __class__(self): raise ValueError('no class')\n"
        "liar = Liar()");
    VariantArg record{};
    EXPECT_EQ(fn_conv_py_variant_to_clr_variant(python.named("liar"), &record), 1);
    EXPECT_EQ(record.kind, 9);
    EXPECT_EQ(take_error(), "ValueError: no class");
}

TEST_F(Variant, takes_a_failing_integer_test_for_a_hit) {
    python.run("saved = sys.modules['enum']; sys.modules['enum'] = None");
    const PyRef value = python.eval("Int(1)");
    EXPECT_EQ(kind_of(value.get()), 6);
    EXPECT_EQ(take_error().substr(0, 45), "ImportError: Unable to import the specified m");
    python.run("sys.modules['enum'] = saved");
}

}  // namespace
