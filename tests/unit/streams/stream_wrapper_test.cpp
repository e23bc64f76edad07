#include "streams/stream_wrapper.h"

#include "streams_fixture.h"

namespace {

constexpr char Closed[] = "ValueError: I/O operation on closed stream";

class Stream : public StreamTest {};

TEST_F(Stream, has_a_record_of_its_own_size) {
    open("");
    EXPECT_EQ(wrpPye_tyds_StreamWrapper.tp_basicsize, 32);
    EXPECT_FALSE(PyType_HasFeature(&wrpPye_tyds_StreamWrapper, Py_TPFLAGS_BASETYPE));
    EXPECT_STREQ(wrpPye_tyds_StreamWrapper.tp_name, "velbor.voxlar._wrpgen._interop._StreamWrapper");
    EXPECT_EQ(wrpPye_tyds_StreamWrapper.tp_doc, nullptr);
    EXPECT_EQ(python.show("type(s)()"), "TypeError: type has no available constructor");
    EXPECT_EQ(python.show("type(s)(1)"), "TypeError: type has no available constructor");
    EXPECT_EQ(python.show("repr(s)[:53]"), "'<velbor.voxlar._wrpgen._interop._StreamWrapper object'");
    EXPECT_EQ(python.show("s.closed"), "False");
    EXPECT_EQ(python.show("setattr(s, 'closed', True)").substr(0, 15), "AttributeError:");
}

TEST_F(Stream, has_its_methods_in_order) {
    const char* names[] = {
        "close",    "flush",      "readable",       "seekable",         "writable",  "tell",     "seek",
        "truncate", "write",      "writelines",     "readline",         "readlines", "readinto", "read",
        "readall",  "fileno",     "isatty",         "get_type",         "__enter__", "__exit__", "_type_of",
        "_cast_to", "_cast_from", "_is_assignable", "_reinterpret_obj", "_cast_as"};
    const PyMethodDef* row = wrpPye_tyds_StreamWrapper.tp_methods;
    for (const char* name : names) {
        ASSERT_NE(row->ml_name, nullptr);
        EXPECT_STREQ(row->ml_name, name);
        ++row;
    }
    EXPECT_EQ(row->ml_name, nullptr);
}

TEST_F(Stream, asks_the_managed_stream_what_it_can_do) {
    open("");
    managed_stream.can_seek = false;
    EXPECT_EQ(python.show("s.readable(), s.seekable(), s.writable(), s.isatty()"),
              "(True, False, True, False)");
    EXPECT_EQ(managed.calls(), "CanRead CanSeek CanWrite");
    managed_stream.position = 5;
    EXPECT_EQ(python.show("s.tell(), s.flush()"), "(5, None)");
    EXPECT_EQ(managed.calls(), "Position Flush");
}

TEST_F(Stream, passes_on_managed_errors) {
    open("abc\n");
    managed.failing = {"CanRead", "CanSeek", "CanWrite",  "Position", "Flush",
                       "Read",    "Seek",    "SetLength", "Write"};
    for (const char* call : {"s.readable()", "s.seekable()", "s.writable()", "s.tell()", "s.flush()",
                             "s.read()", "s.read(2)", "s.readall()", "s.readinto(bytearray(4))", "s.seek(0)",
                             "s.truncate()", "s.write(b'x')", "s.writelines([b'x'])", "next(s)"}) {
        EXPECT_EQ(python.show(call), "RuntimeError: managed") << call;
    }
}

TEST_F(Stream, has_no_file_number) {
    open("");
    EXPECT_EQ(python.show("s.fileno()"), "ValueError: fileno method is not supported");
    python.run("s.close()");
    EXPECT_EQ(python.show("s.fileno()"), "ValueError: fileno method is not supported");
}

TEST_F(Stream, closes_once) {
    open("");
    EXPECT_EQ(python.show("s.close(), s.closed, s.close(), s.closed"), "(None, True, None, True)");
    EXPECT_EQ(managed.calls(), "Close");
}

TEST_F(Stream, is_closed_after_a_failing_close) {
    open("");
    managed.failing = {"Close"};
    EXPECT_EQ(python.show("s.close()"), "RuntimeError: managed");
    EXPECT_EQ(python.show("s.closed, s.close()"), "(True, None)");
    EXPECT_EQ(managed.calls(), "Close");
}

TEST_F(Stream, that_is_closed_refuses_to_work) {
    open("abc");
    python.run("s.close()");
    managed.calls();
    for (const char* call :
         {"s.flush()", "s.readable()", "s.seekable()", "s.writable()", "s.tell()", "s.seek(0)",
          "s.truncate()", "s.write(b'')", "s.write(5)", "s.writelines(5)", "s.readline()", "s.readlines()",
          "s.readinto(5)", "s.read()", "s.read(1)", "s.readall()", "s.isatty()", "iter(s)"}) {
        EXPECT_EQ(python.show(call), Closed) << call;
    }
    EXPECT_EQ(managed.calls(), "");
    // These ask nothing about it.
    EXPECT_EQ(python.show("s.__enter__() is s, s.get_type(), next(s)"), "(True, ('Type',), b'abc')");
}

TEST_F(Stream, tests_arguments_before_the_closed_state) {
    open("");
    python.run("s.close()");
    EXPECT_EQ(python.show("s.seek(-1)"), "ValueError: negative seek value -1");
    EXPECT_EQ(python.show("s.seek(0, 3)"), "ValueError: invalid whence (3, should be 0, 1 or 2)");
    EXPECT_EQ(python.show("s.truncate('x')"), "TypeError: argument should be integer or None, not 'str'");
    EXPECT_EQ(python.show("s.truncate(1, 2)"), "TypeError: truncate() takes at most 1 argument (2 given)");
    EXPECT_EQ(python.show("s.read('x')"), "TypeError: argument should be integer or None, not 'str'");
    EXPECT_EQ(python.show("s.readline(1.5)"), "TypeError: argument should be integer or None, not 'float'");
    EXPECT_EQ(python.show("s.readlines(1, 2)"), "TypeError: readlines() takes at most 1 argument (2 given)");
}

TEST_F(Stream, is_a_context_that_disposes) {
    open("");
    python.run("with s as t: pass");
    EXPECT_EQ(managed.calls(), "Dispose");
    EXPECT_EQ(python.show("t is s, s.closed, s.close()"), "(True, True, None)");
    EXPECT_EQ(managed.calls(), "");
    EXPECT_EQ(python.show("s.__exit__(), s.__exit__(1, 2, 3, 4)"), "(None, None)");
    managed.failing = {"Dispose"};
    open("");
    EXPECT_EQ(python.show("s.__exit__(None, None, None)"), "RuntimeError: managed");
    EXPECT_EQ(python.show("s.closed"), "True");
}

TEST_F(Stream, seeks) {
    open("0123456789");
    EXPECT_EQ(python.show("s.seek(3), s.seek(2, 1), s.seek(-1, 2), s.seek(-1, 1), s.seek(0, 0)"),
              "(3, 5, 9, 8, 0)");
    EXPECT_EQ(managed.calls(), "Seek 3/0 Seek 2/1 Seek -1/2 Seek -1/1 Seek 0/0");
    EXPECT_EQ(python.show("s.seek(0, 3)"), "ValueError: invalid whence (3, should be 0, 1 or 2)");
    EXPECT_EQ(python.show("s.seek(0, -1)"), "ValueError: invalid whence (-1, should be 0, 1 or 2)");
    EXPECT_EQ(python.show("s.seek(-5)"), "ValueError: negative seek value -5");
    EXPECT_EQ(python.show("s.seek()").substr(0, 10), "TypeError:");
    EXPECT_EQ(python.show("s.seek('x')").substr(0, 10), "TypeError:");
    EXPECT_EQ(managed.calls(), "");
    EXPECT_EQ(python.show("s.seek(2**40)"), "1099511627776");
}

TEST_F(Stream, truncates) {
    open("0123456789");
    managed_stream.position = 6;
    EXPECT_EQ(python.show("s.truncate(), s.truncate(None), s.truncate(2)"), "(6, 6, 2)");
    EXPECT_EQ(managed.calls(), "SetLength 1/0 SetLength 1/0 SetLength 0/2");
    python.run("class I:\n    def __index__(self): return 1\n");
    EXPECT_EQ(python.show("s.truncate(I())"), "1");
    EXPECT_EQ(python.show("s.truncate(2**70)").substr(0, 14), "OverflowError:");
}

TEST_F(Stream, writes) {
    open("");
    EXPECT_EQ(python.show("s.write(b'ab'), s.write(bytearray(b'c')), s.write(memoryview(b'de'))"),
              "(2, 1, 2)");
    EXPECT_EQ(managed_stream.data, "abcde");
    EXPECT_EQ(managed.calls(), "Write 2 Write 1 Write 2");
    EXPECT_EQ(python.show("s.write(b'')"), "0");
    EXPECT_EQ(managed.calls(), "Write 0");
    EXPECT_EQ(python.show("s.write('x')"), "TypeError: write argument must be bytes-like object, not 'str'");
    EXPECT_EQ(python.show("s.write(None)"),
              "TypeError: write argument must be bytes-like object, not 'None'");
    EXPECT_EQ(python.show("s.write(memoryview(b'abc')[::2])"),
              "TypeError: write argument must be bytes-like object, not 'memoryview'");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(Stream, releases_what_it_wrote_and_read_into) {
    open("abc");
    python.run("b = bytearray(b'xyz')\ns.write(b)\ns.readinto(b)\nb.append(1)");
    managed.failing = {"Write", "Read"};
    EXPECT_EQ(python.show("s.write(b)"), "RuntimeError: managed");
    EXPECT_EQ(python.show("s.readinto(b)"), "RuntimeError: managed");
    python.run("b.append(2)");
}

TEST_F(Stream, writes_lines) {
    open("");
    EXPECT_EQ(python.show("s.writelines([b'a\\n', b'', b'b'])"), "None");
    EXPECT_EQ(managed.calls(), "Write 2 Write 0 Write 1");
    EXPECT_EQ(managed_stream.data, "a\nb");
    EXPECT_EQ(python.show("s.writelines(5)"), "TypeError: 'int' object is not iterable");
    EXPECT_EQ(python.show("s.writelines([b'c', 'd', b'e'])"),
              "TypeError: write argument must be bytes-like object, not 'str'");
    EXPECT_EQ(managed_stream.data, "a\nbc");
    python.run("def lines():\n    yield b'f'\n    raise ValueError('stop')");
    EXPECT_EQ(python.show("s.writelines(lines())"), "ValueError: stop");
}

TEST_F(Stream, reads_to_the_end) {
    open("abc");
    EXPECT_EQ(python.show("s.read()"), "b'abc'");
    EXPECT_EQ(managed.calls(), "Read 1024 Read 1021");
    EXPECT_EQ(python.show("s.read(), s.readall(), s.read(None), s.read(-1), s.read(-5)"),
              "(b'', b'', b'', b'', b'')");
    EXPECT_EQ(managed.calls(), "Read 1024 Read 1024 Read 1024 Read 1024 Read 1024");
}

TEST_F(Stream, reads_once_for_a_given_size) {
    open("abcdef");
    managed_stream.most = 2;
    EXPECT_EQ(python.show("s.read(3), s.read(1), s.read(0), s.read(100), s.read(100), s.read(100)"),
              "(b'ab', b'c', b'', b'de', b'f', b'')");
    EXPECT_EQ(managed.calls(), "Read 3 Read 1 Read 0 Read 100 Read 100 Read 100");
    EXPECT_EQ(python.show("s.read(1, 2)"), "TypeError: read() takes at most 1 argument (2 given)");
}

TEST_F(Stream, grows_its_buffer_in_told_steps) {
    open(std::string(900000, 'x'));
    EXPECT_EQ(python.show("s.read() == b'x' * 900000"), "True");
    // 1024, by 4096 up to 8192 filled, threefold up to 65536, then the larger of an eighth and 65536.
    EXPECT_EQ(
        managed.calls(),
        "Read 1024 Read 4096 Read 4096 Read 18432 Read 55296 Read 65536 Read 65536 Read 65536 Read 65536 "
        "Read 65536 Read 65536 Read 65536 Read 67712 Read 76176 Read 85698 Read 96410 Read 108461 Read "
        "76153");
}

TEST_F(Stream, reads_into_a_buffer) {
    open("abcdef");
    python.run("b = bytearray(4)");
    EXPECT_EQ(python.show("s.readinto(b), b"), "(4, bytearray(b'abcd'))");
    EXPECT_EQ(managed.calls(), "Read 4");
    EXPECT_EQ(python.show("s.readinto(b), b"), "(2, bytearray(b'efcd'))");
    EXPECT_EQ(python.show("s.readinto(b), s.readinto(bytearray())"), "(0, 0)");
    EXPECT_EQ(managed.calls(), "Read 4 Read 4 Read 0");
    managed_stream = {.data = "abcdef", .most = 2};
    EXPECT_EQ(python.show("s.readinto(b)"), "2");
    EXPECT_EQ(python.show("s.readinto(b'ro')"),
              "TypeError: readinto argument must be read-write bytes-like object, not 'bytes'");
    EXPECT_EQ(python.show("s.readinto(None)"),
              "TypeError: readinto argument must be read-write bytes-like object, not 'None'");
    EXPECT_EQ(python.show("s.readinto(memoryview(b)[::2])"),
              "TypeError: readinto argument must be read-write bytes-like object, not 'memoryview'");
}

TEST_F(Stream, reads_lines_and_seeks_back) {
    open("ab\ncd");
    EXPECT_EQ(python.show("s.readline(5), s.tell()"), "(b'ab\\n', 3)");
    EXPECT_EQ(managed.calls(), "CanSeek Read 5 Seek -2/1 Position");
    EXPECT_EQ(python.show("s.readline(), s.readline(), s.tell()"), "(b'cd', b'', 5)");
    EXPECT_EQ(managed.calls(), "CanSeek Read 1024 Read 1022 CanSeek Read 1024 Position");
}

TEST_F(Stream, limits_a_line) {
    open("abcdef\ngh\n");
    EXPECT_EQ(python.show("s.readline(0), s.readline(2), s.readline(5), s.readline(3), s.readline(None)"),
              "(b'', b'ab', b'cdef\\n', b'gh\\n', b'')");
    EXPECT_EQ(python.show("s.readline(1, 2)"), "TypeError: readline() takes at most 1 argument (2 given)");
    // A line feed that ends the buffer costs no seek.
    open("ab\n");
    python.run("s.readline(3)");
    EXPECT_EQ(managed.calls(), "CanSeek Read 3");
}

TEST_F(Stream, reads_lines_longer_than_its_buffer) {
    open(std::string(20000, 'a') + "\n" + std::string(3000, 'b') + "\nc");
    EXPECT_EQ(python.show("[len(l) for l in (s.readline(), s.readline(2000), s.readline(), s.readline())]"),
              "[20001, 2000, 1001, 1]");
    EXPECT_EQ(python.show("s.readline(9223372036854775807)"), "b''");
    managed_stream.position = 0;
    managed_stream.most = 700;
    EXPECT_EQ(python.show("[len(l) for l in s]"), "[20001, 3001, 1]");
}

TEST_F(Stream, reads_lines_in_short_reads) {
    open("ab\ncd\n\nxyz");
    managed_stream.most = 1;
    EXPECT_EQ(python.show("list(s)"), "[b'ab\\n', b'cd\\n', b'\\n', b'xyz']");
}

TEST_F(Stream, that_cannot_seek_reads_no_lines) {
    open("ab\ncd");
    managed_stream.can_seek = false;
    const char refusal[] =
        "TypeError: the operation supported only for seekable inner streams. the inner stream is not "
        "seekable";
    EXPECT_EQ(python.show("s.readline()"), refusal);
    EXPECT_EQ(python.show("s.readlines()"), refusal);
    EXPECT_EQ(python.show("iter(s)"), refusal);
    EXPECT_EQ(python.show("next(s)"), "b'ab\\n'");
}

TEST_F(Stream, chains_an_error_of_the_seekable_test) {
    open("");
    managed.failing = {"CanSeek"};
    for (const char* call : {"s.readline()", "s.readlines()", "iter(s)"}) {
        EXPECT_FALSE(python.eval(call));
        EXPECT_EQ(
            take_error_chain(),
            "TypeError: the operation supported only for seekable inner streams. an exception was thrown "
            "during 'CanSeek' check from RuntimeError: managed");
    }
}

TEST_F(Stream, passes_on_an_error_of_the_seek_back) {
    open("ab\ncd");
    managed.failing = {"Seek"};
    EXPECT_EQ(python.show("s.readline()"), "RuntimeError: managed");
}

TEST_F(Stream, iterates_over_itself) {
    open("a\nb\n");
    EXPECT_EQ(python.show("iter(s) is s, next(s), list(s), next(s, 'end')"),
              "(True, b'a\\n', [b'b\\n'], 'end')");
}

TEST_F(Stream, reads_lines_up_to_a_hint) {
    const char data[] = "aa\nbb\ncc\n";
    open(data);
    EXPECT_EQ(python.show("s.readlines()"), "[b'aa\\n', b'bb\\n', b'cc\\n']");
    const struct {
        const char* call;
        const char* lines;
    } cases[] = {{"s.readlines(1)", "[b'aa\\n']"},
                 {"s.readlines(3)", "[b'aa\\n']"},
                 {"s.readlines(4)", "[b'aa\\n', b'bb\\n']"},
                 {"s.readlines(6)", "[b'aa\\n', b'bb\\n']"},
                 {"s.readlines(7)", "[b'aa\\n', b'bb\\n', b'cc\\n']"},
                 {"s.readlines(100)", "[b'aa\\n', b'bb\\n', b'cc\\n']"},
                 {"s.readlines(0)", "[b'aa\\n', b'bb\\n', b'cc\\n']"},
                 {"s.readlines(None)", "[b'aa\\n', b'bb\\n', b'cc\\n']"}};
    for (const auto& [call, lines] : cases) {
        managed_stream.position = 0;
        EXPECT_EQ(python.show(call), lines) << call;
    }
    managed_stream.position = 0;
    managed.failing = {"Read"};
    EXPECT_EQ(python.show("s.readlines()"), "RuntimeError: managed");
    EXPECT_EQ(python.show("s.readlines(5)"), "RuntimeError: managed");
}

TEST_F(Stream, casts) {
    open("");
    python.name("thing", make_wrapper(ThingType));
    python.name("point", make_wrapper(PointType));
    managed.calls();
    EXPECT_EQ(python.show("type(s)._type_of()"), "('Type',)");
    EXPECT_EQ(python.show("type(s)._cast_to(5), type(s)._cast_as(5), s._cast_from(5)"), "((0,), (0,), (0,))");
    EXPECT_EQ(managed.calls(), "TypeOf");
    EXPECT_EQ(python.show("type(s)._cast_to(None), type(s)._cast_as(None)"), "((1, None), (1, None))");
    EXPECT_EQ(managed.calls(), "CastTo:null0 CastAs CastTo:null0");
    EXPECT_EQ(python.show("type(type(s)._cast_to(thing)[1]) is type(s)"), "True");
    EXPECT_EQ(python.show("type(type(s)._reinterpret_obj(('Object',))) is type(s)"), "True");
    EXPECT_EQ(python.show("type(s)._reinterpret_obj(5)"),
              "TypeError: _reinterpret_obj() expects a .Net Object argument, got a int object");
    managed.calls();
    EXPECT_EQ(python.show("type(s)._is_assignable(None), type(s)._is_assignable(5)"), "(False, False)");
    EXPECT_EQ(managed.calls(), "");
    stream_entries::assignable = 1;
    EXPECT_EQ(python.show("type(s)._is_assignable(thing), type(s)._is_assignable(point)"), "(True, True)");
    EXPECT_EQ(managed.calls(), "IsAssignable IsAssignable");
}

class StreamArgument : public StreamTest {
protected:
    StreamArgument() {
        open("");
        python.name("thing", make_wrapper(ThingType));
        python.name("point", make_wrapper(PointType));
        python.run(
            "import io, os, sys, types\n"
            "class BytesAsStream: pass\n"
            "sys.modules['velbor'] = types.ModuleType('velbor')\n"
            "core = sys.modules['velbor.pycore'] = types.ModuleType('velbor.pycore')\n"
            "core.BytesAsStream = BytesAsStream\n"
            "class Raw(io.RawIOBase): pass\n"
            "class Duck:\n    def read(self): pass\n    def write(self): pass\n");
        managed.calls();
    }

    ~StreamArgument() override {
        python.run("import sys\nfor m in ('velbor', 'velbor.pycore'): sys.modules.pop(m, None)");
    }

    std::string convert(const char* value) {
        const PyRef object = python.eval(value);
        VariantArg record{.kind = 77, .payload = this};
        const ReferenceCount references(object.get());
        const int done = wrpPye_conv_py_to_clr_stream(object.get(), &record);
        EXPECT_EQ(references.grown(), 0);
        if (done == 0) {
            return take_error();
        }
        const char* payload = record.payload == nullptr                           ? "null"
                              : record.payload == object.get()                    ? "object"
                              : record.payload == fn_wrapper_handle(object.get()) ? "handle"
                                                                                  : "unknown";
        return std::string(payload) + ":" + std::to_string(record.kind);
    }
};

TEST_F(StreamArgument, may_be_none_or_a_managed_stream) {
    EXPECT_EQ(convert("None"), "null:0");
    EXPECT_EQ(convert("s"), "handle:0");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(StreamArgument, may_be_what_the_managed_side_calls_a_stream) {
    EXPECT_EQ(convert("thing"), "TypeError: can't build Stream from 'test.Thing'");
    stream_entries::assignable = 1;
    EXPECT_EQ(convert("thing"), "handle:0");
    EXPECT_EQ(managed.calls(), "IsAssignable IsAssignable");
    EXPECT_EQ(convert("point"), "TypeError: can't build Stream from 'test.Point'");
    EXPECT_EQ(managed.calls(), "");
}

TEST_F(StreamArgument, may_be_a_binary_file_object) {
    for (const char* value :
         {"io.BytesIO()", "Raw()", "open(os.devnull, 'rb')", "open(os.devnull, 'rb', buffering=0)",
          "io.BufferedReader(io.BytesIO())", "BytesAsStream()"}) {
        EXPECT_EQ(convert(value), "object:2") << value;
    }
}

TEST_F(StreamArgument, is_refused_by_its_class) {
    EXPECT_EQ(convert("io.StringIO()"), "TypeError: can't build Stream from '_io.StringIO'");
    EXPECT_EQ(convert("Duck()"), "TypeError: can't build Stream from 'Duck'");
    EXPECT_EQ(convert("b'bytes'"), "TypeError: can't build Stream from 'bytes'");
    EXPECT_EQ(convert("io.BytesIO"), "TypeError: can't build Stream from 'type'");
}

TEST_F(StreamArgument, fails_when_a_class_cannot_be_imported) {
    python.run("sys.modules['velbor.pycore'] = None");
    EXPECT_EQ(convert("io.BytesIO()"), "object:2");
    EXPECT_EQ(convert("Duck()"),
              "ImportError: Unable to import the specified module velbor.pycore. The module not found or "
              "errors occurred "
              "while initializing it.");
    python.run("sys.modules['velbor.pycore'] = types.ModuleType('velbor.pycore')");
    EXPECT_EQ(convert("Duck()"),
              "ImportError: Unable to import the specified type BytesAsStream from the module velbor.pycore. "
              "The type "
              "not found or errors occurred while initializing it.");
}

TEST_F(StreamArgument, fails_when_the_test_fails) {
    python.run(
        "class Liar:\n"
        "    @property\n"
        "    def __class__(self): raise ValueError('no class')\n");
    const PyRef liar = python.eval("Liar()");
    VariantArg record{};
    EXPECT_EQ(wrpPye_conv_py_to_clr_stream(liar.get(), &record), 0);
    EXPECT_EQ(take_error(), "ValueError: no class");
}

}  // namespace
