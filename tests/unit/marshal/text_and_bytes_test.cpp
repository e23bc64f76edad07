#include "marshal/bytes.h"
#include "marshal/strings.h"

#include "python_fixture.h"

#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace {

// Strings -------------------------------------------------------------------------------------------------

TEST(Strings, PointIntoTheText) {
    run("class Text(str):\n    pass\n");
    struct Row {
        const char* expression;
        int length, char_size;
    };
    for (const Row& row :
         {Row{"''", 0, 1}, Row{"'abc'", 3, 1}, Row{"'caf\\xe9'", 4, 1}, Row{"'\\u20acx'", 2, 2},
          Row{"'\\U0001F600'", 1, 4}, Row{"Text('abc')", 3, 1}, Row{"Text('\\u20ac')", 1, 2}}) {
        const PyRef value = eval(row.expression);
        const SameReferences same(value.get());
        PyStringArg arg;
        ASSERT_EQ(fn_conv_py_string_to_clr_string(value.get(), &arg), 1) << row.expression;
        EXPECT_EQ(arg.length, row.length);
        EXPECT_EQ(arg.char_size, row.char_size);
        EXPECT_EQ(arg.chars, PyUnicode_DATA(value.get()));
        PyStringArg read;
        EXPECT_EQ(fn_read_py_string(value.get(), &read), 1);
        EXPECT_EQ(read.chars, arg.chars);
    }
}

TEST(Strings, NoneIsANullString) {
    PyStringArg arg;
    arg.length = 5;
    PyObject* volatile none = Py_None;  // else the compiler looks at it as the text that it is not
    EXPECT_EQ(fn_conv_py_string_to_clr_string(none, &arg), 1);
    EXPECT_EQ(arg.length, -1);
    EXPECT_EQ(arg.char_size, 0);
    EXPECT_EQ(arg.chars, nullptr);
}

TEST(Strings, AnythingElseIsRefused) {
    PyStringArg arg;
    for (const auto& [expression, name] : {std::pair{"b'x'", "bytes"}, {"1", "int"}, {"['x']", "list"}}) {
        EXPECT_EQ(fn_conv_py_string_to_clr_string(eval(expression).get(), &arg), 0);
        EXPECT_EQ(take_error(), "TypeError: can't build String from '" + std::string(name) + "'");
    }
}

TEST(Strings, FileNames) {
    run("import pathlib");
    const PyRef text = eval("'a text'");
    {
        const SameReferences same(text.get());
        PyEphStrArgBuilder builder;
        EXPECT_EQ(builder.get_info()->text.length, 0);
        EXPECT_EQ(fn_conv_py_strorpath_to_clr_string(text.get(), builder.get_info()), 1);
        EXPECT_EQ(builder.get_info()->owner, nullptr);
        EXPECT_EQ(builder.get_info()->text.chars, PyUnicode_DATA(text.get()));
    }
    for (const char* expression : {"b'a/b'", "pathlib.Path('a/b')"}) {
        PyEphStrArgBuilder builder;
        const PyRef value = eval(expression);
        EXPECT_EQ(fn_conv_py_strorpath_to_clr_string(value.get(), builder.get_info()), 1);
        PyObject* owner = builder.get_info()->owner;
        ASSERT_NE(owner, nullptr);
        EXPECT_EQ(text_of(owner), "a/b");
        EXPECT_EQ(builder.get_info()->text.chars, PyUnicode_DATA(owner));
        EXPECT_EQ(builder.get_info()->text.length, 3);
    }
    PyEphStrArgBuilder builder;
    EXPECT_EQ(fn_conv_py_strorpath_to_clr_string(Py_None, builder.get_info()), 1);
    EXPECT_EQ(builder.get_info()->text.length, -1);
    EXPECT_EQ(fn_conv_py_strorpath_to_clr_string(eval("1").get(), builder.get_info()), 0);
    EXPECT_EQ(take_error(), "TypeError: expected str, bytes or os.PathLike object, not int");
    EXPECT_EQ(builder.get_info()->owner, nullptr);
}

TEST(Strings, ManagedTextIsDecoded) {
    const auto decoded = [](std::u16string_view text) {
        return repr_of(
            PyRef::steal(fn_conv_clr_string_to_py_string(text.data(), static_cast<int>(text.size()))).get());
    };
    EXPECT_EQ(decoded(u""), "''");
    EXPECT_EQ(decoded(u"abc"), "'abc'");
    EXPECT_EQ(decoded(u"a longer text of plain characters"), "'a longer text of plain characters'");
    EXPECT_EQ(decoded(u"plain but for the la\u0161t"), "'plain but for the la\u0161t'");
    EXPECT_EQ(decoded(u"\u007f~~~"), "'\\x7f~~~'");
    EXPECT_EQ(decoded(u"abcd\u0080"), "'abcd\\x80'");
    EXPECT_EQ(decoded(u"caf\u00e9 \u20ac"), "'caf\u00e9 \u20ac'");
    EXPECT_EQ(decoded(u"\U0001F600"), "'\U0001F600'");
    EXPECT_EQ(decoded(u"\uFEFFx"), "'\\ufeffx'");
    EXPECT_EQ(decoded(std::u16string_view(u"a\0b", 3)), "'a\\x00b'");
    EXPECT_EQ(PyRef::steal(fn_conv_clr_string_to_py_string(nullptr, -1)).get(), Py_None);
}

TEST(Strings, UnpairedSurrogatesAreErrors) {
    const char16_t high_alone[] = {'a', 0xD800, 'b'};
    const char16_t low_alone[] = {0xDC00};
    EXPECT_EQ(fn_conv_clr_string_to_py_string(high_alone, 3), nullptr);
    EXPECT_EQ(take_error(), "LookupError: unknown error handler name ''");
    EXPECT_EQ(fn_conv_clr_string_to_py_string(low_alone, 1), nullptr);
    EXPECT_EQ(take_error(), "LookupError: unknown error handler name ''");
}

TEST(Strings, NativeCopyOfATypeName) {
    void** holder = fn_create_u16_buffer(u"System.Object and more", 13);
    EXPECT_EQ(std::u16string_view(static_cast<const char16_t*>(*holder)), u"System.Object");
    std::free(holder);
    holder = fn_create_u16_buffer(nullptr, 0);
    EXPECT_EQ(std::u16string_view(static_cast<const char16_t*>(*holder)), u"");
    std::free(holder);
    EXPECT_THROW(fn_create_u16_buffer(nullptr, 1), std::logic_error);
    EXPECT_THROW(fn_create_u16_buffer(u"x", -1), std::length_error);
}

// Bytes ---------------------------------------------------------------------------------------------------

TEST(Bytes, PointIntoTheBuffer) {
    for (const char* expression :
         {"b'some bytes'", "bytearray(b'some bytes')", "memoryview(b'some bytes')"}) {
        const PyRef value = eval(expression);
        const SameReferences same(value.get());
        PyBytesArgBuilder builder;
        ASSERT_EQ(fn_conv_py_bytes_to_clr_bytes(value.get(), &builder), 1);
        EXPECT_EQ(builder.get_info()->buffer_held, 1);
        EXPECT_EQ(std::string_view(static_cast<const char*>(builder.get_info()->bytes), 10), "some bytes");
        EXPECT_EQ(builder.get_info()->length, 10);
    }
    const PyRef value = eval("b'some bytes'");
    PyBytesArgBuilder builder;
    ASSERT_EQ(fn_conv_py_bytes_to_clr_bytes(value.get(), &builder), 1);
    EXPECT_EQ(builder.get_info()->bytes, PyBytes_AS_STRING(value.get()));
}

TEST(Bytes, ExportLastsAsLongAsTheBuilder) {
    run("data = bytearray(b'abc')");
    {
        PyBytesArgBuilder builder;
        ASSERT_EQ(fn_conv_py_bytes_to_clr_bytes(eval("data").get(), &builder), 1);
        run("try:\n    data.append(1)\n    assert False\nexcept BufferError:\n    pass\n");
    }
    run("data.append(1)");
}

TEST(Bytes, NoneIsANullArray) {
    PyBytesArgBuilder builder;
    EXPECT_EQ(fn_conv_py_bytes_to_clr_bytes(Py_None, &builder), 1);
    EXPECT_EQ(builder.get_info()->buffer_held, 0);
    EXPECT_EQ(builder.get_info()->length, -1);
    EXPECT_EQ(builder.get_info()->bytes, nullptr);
}

TEST(Bytes, WhatExportsNoBufferIsRefused) {
    PyBytesArgBuilder builder;
    EXPECT_EQ(fn_conv_py_bytes_to_clr_bytes(eval("[1, 2]").get(), &builder), 0);
    EXPECT_EQ(take_error(), "TypeError: can't build byte[] from 'list'");
    EXPECT_EQ(fn_conv_py_bytes_to_clr_bytes(eval("memoryview(b'abcdef')[::2]").get(), &builder), 0);
    EXPECT_EQ(take_error(), "BufferError: can't get internal buffer");
    EXPECT_EQ(builder.get_info()->buffer_held, 0);
}

/// An exporter that grants a plain request over whatever it is told to.
struct Exporter {
    PyObject_HEAD Py_ssize_t length;
    Py_ssize_t stride;
    int exports;
};

int get_buffer(PyObject* self, Py_buffer* view, int) {
    static char data[16];
    static Py_ssize_t shape[1], strides[1];
    auto* exporter = reinterpret_cast<Exporter*>(self);
    shape[0] = exporter->length;
    strides[0] = exporter->stride;
    *view = {data, fn_new_ref(self), exporter->length, 1, 1, 1, nullptr, shape, strides, nullptr, nullptr};
    ++exporter->exports;
    return 0;
}

void release_buffer(PyObject* self, Py_buffer*) {
    --reinterpret_cast<Exporter*>(self)->exports;
}

PyTypeObject* exporter_type() {
    static PyBufferProcs procs{get_buffer, release_buffer};
    static PyTypeObject type = [] {
        PyTypeObject made{};
        made.ob_base = {PyObject_HEAD_INIT(nullptr) 0};
        made.tp_name = "Exporter";
        made.tp_basicsize = sizeof(Exporter);
        made.tp_as_buffer = &procs;
        return made;
    }();
    EXPECT_EQ(PyType_Ready(&type), 0);
    return &type;
}

TEST(Bytes, BufferThatIsRefusedAfterItWasAcquiredIsReleased) {
    struct Row {
        Py_ssize_t length, stride;
        const char* error;
    };
    for (const Row& row : {Row{4, 2, "BufferError: buffer is not contiguous"},
                           Row{Py_ssize_t{1} << 31, 1, "BufferError: buffer is too long"}}) {
        const PyRef value = PyRef::steal(PyType_GenericNew(exporter_type(), nullptr, nullptr));
        auto* exporter = reinterpret_cast<Exporter*>(value.get());
        exporter->length = row.length;
        exporter->stride = row.stride;
        {
            PyBytesArgBuilder builder;
            EXPECT_EQ(fn_conv_py_bytes_to_clr_bytes(value.get(), &builder), 0);
            EXPECT_EQ(take_error(), row.error);
            EXPECT_EQ(builder.get_info()->buffer_held, 1);
            EXPECT_EQ(exporter->exports, 1);
        }
        EXPECT_EQ(exporter->exports, 0);
        EXPECT_EQ(Py_REFCNT(value.get()), 1);
    }
}

TEST(Bytes, ManagedBytesAreABytearray) {
    const std::uint8_t bytes[] = {1, 0, 255};
    EXPECT_EQ(repr_of(PyRef::steal(fn_conv_clr_bytes_to_py_bytes(bytes, 3)).get()),
              "bytearray(b'\\x01\\x00\\xff')");
    EXPECT_EQ(repr_of(PyRef::steal(fn_conv_clr_bytes_to_py_bytes(nullptr, 0)).get()), "bytearray(b'')");
    EXPECT_EQ(PyRef::steal(fn_conv_clr_bytes_to_py_bytes(nullptr, -1)).get(), Py_None);
}

}  // namespace
