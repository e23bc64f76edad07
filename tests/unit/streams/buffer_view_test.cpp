#include "streams/buffer_view.h"

#include "support/python_namespace.h"

#include <algorithm>
#include <cstring>

namespace {

class BufferView : public ::testing::Test {
protected:
    BufferView() { PyType_Ready(&wrpPye_tyds_ShlBufferView); }
    void TearDown() override { EXPECT_EQ(take_error(), ""); }

    PythonNamespace python;
};

TEST_F(BufferView, shows_the_memory) {
    char memory[] = "abcdef";
    python.name("view", fn_create_shlbuffer_view(memory, 3, 1));
    EXPECT_EQ(python.show("bytes(view), memoryview(view).readonly, len(memoryview(view))"),
              "(b'abc', True, 3)");
    memory[0] = 'X';
    EXPECT_EQ(python.show("bytes(view)"), "b'Xbc'");
}

TEST_F(BufferView, can_be_written_unless_it_is_read_only) {
    char memory[] = "abcdef";
    python.name("view", fn_create_shlbuffer_view(memory, 3, 0));
    python.name("locked", fn_create_shlbuffer_view(memory, 3, 1));
    python.run("import io\nn = io.BytesIO(b'xyz').readinto(view)");
    EXPECT_EQ(python.show("n, memoryview(view).readonly"), "(3, False)");
    EXPECT_STREQ(memory, "xyzdef");
    EXPECT_EQ(python.show("io.BytesIO(b'123').readinto(locked)"),
              "TypeError: readinto() argument must be read-write bytes-like object, not "
              "velbor.voxlar._wrpgen._interop._ShlBufferView");
    PyObject* locked = python.named("locked");
    Py_buffer view;
    EXPECT_EQ(PyObject_GetBuffer(locked, &view, PyBUF_WRITABLE), -1);
    EXPECT_EQ(take_error(), "BufferError: Object is not writable.");
}

TEST_F(BufferView, may_be_empty) {
    python.name("view", fn_create_shlbuffer_view(nullptr, 0, 1));
    EXPECT_EQ(python.show("bytes(view), len(memoryview(view))"), "(b'', 0)");
}

TEST_F(BufferView, cannot_be_made_in_python) {
    python.name("view", fn_create_shlbuffer_view(nullptr, 0, 1));
    EXPECT_EQ(python.show("type(view)()"),
              "TypeError: cannot create 'velbor.voxlar._wrpgen._interop._ShlBufferView' instances");
    EXPECT_FALSE(PyType_HasFeature(&wrpPye_tyds_ShlBufferView, Py_TPFLAGS_BASETYPE));
    EXPECT_EQ(sizeof(PyShlBufferView), 40u);
}

TEST_F(BufferView, lets_managed_code_borrow_bytes) {
    EXPECT_EQ(fn_get_sizeof_py_byffer(), 80u);
    alignas(Py_buffer) unsigned char memory[80];
    std::fill(std::begin(memory), std::end(memory), static_cast<unsigned char>(0xAA));
    auto* storage = reinterpret_cast<Py_buffer*>(memory);
    fn_create_py_byffer(storage);
    EXPECT_TRUE(
        std::all_of(std::begin(memory), std::end(memory), [](unsigned char byte) { return byte == 0; }));

    const PyRef bytes = python.eval("bytearray(b'abc')");
    const ReferenceCount references(bytes.get());
    PyBytesArg record;
    EXPECT_EQ(fn_read_py_buffer_view(bytes.get(), storage, &record), 1);
    EXPECT_EQ(record.buffer_held, 1);
    EXPECT_EQ(record.length, 3);
    EXPECT_EQ(std::memcmp(record.bytes, "abc", 3), 0);
    EXPECT_EQ(references.grown(), 1);
    fn_release_py_buffer(storage);
    EXPECT_EQ(references.grown(), 0);
}

TEST_F(BufferView, refuses_to_borrow_what_has_no_plain_buffer) {
    Py_buffer storage;
    fn_create_py_byffer(&storage);
    PyBytesArg record;
    EXPECT_EQ(fn_read_py_buffer_view(python.eval("memoryview(b'abc')[::2]").get(), &storage, &record), 0);
    EXPECT_EQ(take_error(), "BufferError: can't get internal buffer");
    EXPECT_EQ(record.buffer_held, 0);
}

}  // namespace
