#include "marshal/byref.h"
#include "marshal/guid.h"
#include "marshal/nullable.h"
#include "marshal/numbers.h"
#include "marshal/version_tuple.h"

#include "python_fixture.h"

#include <array>

namespace {

using Bytes16 = std::array<std::uint8_t, 16>;

constexpr Bytes16 SomeBytes{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

// Guid ----------------------------------------------------------------------------------------------------

TEST(Guid, ThereAndBackInMemoryOrder) {
    run("import uuid");
    const PyRef value = PyRef::steal(fn_write_py_guid(SomeBytes.data()));
    EXPECT_EQ(repr_of(value.get()), "UUID('03020100-0504-0706-0809-0a0b0c0d0e0f')");
    const SameReferences same(value.get());
    Bytes16 bytes{}, read{};
    EXPECT_EQ(fn_conv_py_uuid_to_clr_guid(value.get(), bytes.data()), 1);
    EXPECT_EQ(bytes, SomeBytes);
    fn_read_py_guid(value.get(), read.data());
    EXPECT_EQ(read, SomeBytes);
}

TEST(Guid, Refusals) {
    Bytes16 bytes{};
    EXPECT_EQ(fn_conv_py_uuid_to_clr_guid(eval("'text'").get(), bytes.data()), 0);
    EXPECT_EQ(take_error(), "TypeError: can't build Guid from 'str'");
    run("import sys, uuid\n"
        "class Short(uuid.UUID):\n    bytes_le = b'short'\n"
        "class Other(uuid.UUID):\n    bytes_le = 5\n");
    fn_read_py_guid(eval("Short(int=0)").get(), bytes.data());
    EXPECT_EQ(take_error(), "ValueError: bytes_le of a UUID must be 16 bytes, not 5");
    fn_read_py_guid(eval("Other(int=0)").get(), bytes.data());
    EXPECT_EQ(take_error(), "TypeError: expected bytes, int found");
    run("sys.modules['uuid'] = None");
    EXPECT_EQ(fn_write_py_guid(SomeBytes.data()), nullptr);
    EXPECT_EQ(take_error(),
              "ImportError: Unable to import the specified module uuid. The module not found or errors "
              "occurred while "
              "initializing it.");
    run("sys.modules['uuid'] = uuid");
}

// Version -------------------------------------------------------------------------------------------------

std::string convert_version(const char* expression) {
    const PyRef value = eval(expression);
    const SameReferences same(value.get());
    PySysVersionArg arg;
    arg.count = 99;
    if (fn_conv_py_tuple_to_clr_version(value.get(), &arg) == 0) {
        return take_error();
    }
    std::string text = std::to_string(arg.count) + ":";
    for (int i = 0; i < arg.count; ++i) {
        text += " " + std::to_string(arg.parts[i]);
    }
    return text;
}

TEST(Version, FromTuples) {
    run("class Version(tuple):\n    pass\n");
    EXPECT_EQ(convert_version("(1, 2)"), "2: 1 2");
    EXPECT_EQ(convert_version("(1, 2, 3, 4)"), "4: 1 2 3 4");
    EXPECT_EQ(convert_version("(1, True)"), "2: 1 1");
    EXPECT_EQ(convert_version("Version((7, 0, 1))"), "3: 7 0 1");
    EXPECT_EQ(convert_version("(1, 2 ** 32 + 5)"), "2: 1 5");
    EXPECT_EQ(convert_version("None"), "-1:");
    EXPECT_EQ(convert_version("[1, 2]"), "TypeError: a tuple or None is required, not 'list'");
    EXPECT_EQ(convert_version("(1,)"),
              "ValueError: a version number tuple must contains at least 2 and at most 4 elements (1 given)");
    EXPECT_EQ(convert_version("(1, 2, 3, 4, 5)"),
              "ValueError: a version number tuple must contains at least 2 and at most 4 elements (5 given)");
    EXPECT_EQ(convert_version("(1, '2')"),
              "ValueError: an element of a version number tuple must be integer, not str");
    EXPECT_EQ(convert_version("(1, -1)"),
              "ValueError: an element of a version number tuple must be greater or equal zero, not -1");
    EXPECT_EQ(convert_version("(1, 2 ** 64)"), "OverflowError: Python int too large to convert to C long");
}

TEST(Version, ToTuples) {
    const auto shown = [](const PySysVersionArg& arg) {
        PyObject* tuple = fn_conv_clr_version_to_py_tuple(arg);
        return tuple == nullptr ? take_error() : repr_of(PyRef::steal(tuple).get());
    };
    EXPECT_EQ(shown({}), "None");
    EXPECT_EQ(shown({0, {}}), "()");
    EXPECT_EQ(shown({2, {7, 4, 9, 9}}), "(7, 4)");
    EXPECT_EQ(shown({4, {1, 2, 3, -4}}), "(1, 2, 3, -4)");
    EXPECT_EQ(shown({6, {1, 2, 3, 4}}), "(1, 2, 3, 4, 0, 0)");
    EXPECT_NE(shown({-2, {}}), "");
}

// Nullable ------------------------------------------------------------------------------------------------

TEST(Nullable, ValueOrNone) {
    std::int32_t target = 5;
    PyNullableArg arg = PyNullableArg::to(fn_conv_py_long_to_clr_int32, &target);
    EXPECT_EQ(fn_conv_py_nullable_to_clr_nullable(Py_None, &arg), 1);
    EXPECT_EQ(arg.has_value, 0);
    EXPECT_EQ(target, 5);
    EXPECT_EQ(fn_conv_py_nullable_to_clr_nullable(eval("'x'").get(), &arg), 0);
    EXPECT_EQ(take_error(), "TypeError: can't build 'Int32' from 'str'");
    EXPECT_EQ(arg.has_value, 0);
    EXPECT_EQ(fn_conv_py_nullable_to_clr_nullable(eval("7").get(), &arg), 1);
    EXPECT_EQ(arg.has_value, 1);
    EXPECT_EQ(target, 7);
    EXPECT_EQ(PyRef::steal(fn_py_return_none()).get(), Py_None);
}

// By reference --------------------------------------------------------------------------------------------

TEST(ByRef, WhatGoesIn) {
    run("class Items(list):\n    pass\n");
    struct Row {
        const char* list;
        int result;
        std::int32_t target;
        const char* error;
    };
    for (const Row& row : {
             Row{"[]", 1, 5, ""},
             Row{"[None]", 1, 5, ""},
             Row{"[3, 4]", 1, 3, ""},
             Row{"['x']", 0, 5, "TypeError: can't build 'Int32' from 'str'"},
             Row{"(3,)", 0, 5,
                 "TypeError: argument should be empty list or list contains default value, not 'tuple'"},
             Row{"Items([3])", 0, 5,
                 "TypeError: argument should be empty list or list contains default value, not 'Items'"},
             Row{"None", 0, 5,
                 "TypeError: argument should be empty list or list contains default value, not 'NoneType'"},
         }) {
        const PyRef list = eval(row.list);
        const SameReferences same(list.get());
        std::int32_t target = 5;
        PyParamByRef arg = PyParamByRef::to(fn_conv_py_long_to_clr_int32, &target);
        EXPECT_EQ(fn_conv_py_parbyref_to_clr_parbyref(list.get(), &arg), row.result) << row.list;
        EXPECT_EQ(take_error(), row.error);
        EXPECT_EQ(target, row.target);
        if (row.result == 1) {
            EXPECT_EQ(arg.list, list.get());
        }
    }
}

TEST(ByRef, WhatComesOut) {
    for (const auto& [before, after] :
         {std::pair{"[]", "['out']"}, {"[None]", "['out']"}, {"[3, 4]", "['out', 4]"}}) {
        const PyRef list = eval(before);
        const PyRef value = eval("'o' + 'ut'");
        const Py_ssize_t references = Py_REFCNT(value.get());
        EXPECT_EQ(fn_push_parbyref_outvalue(list.get(), fn_new_ref(value.get())), 0);
        EXPECT_EQ(repr_of(list.get()), after);
        EXPECT_EQ(Py_REFCNT(value.get()), references + 1);
    }
}

}  // namespace
