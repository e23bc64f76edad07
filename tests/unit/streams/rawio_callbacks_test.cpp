#include "streams/rawio_callbacks.h"

#include "streams/buffer_view.h"
#include "support/python_namespace.h"

#include <cstring>

namespace {

constexpr char ClosedFailure[] = "TypeError: An error occurred while checking if the stream is closed";
constexpr char LengthFailure[] = "TypeError: While calculating the length of the stream, an error occurred.";

class RawIo : public ::testing::Test {
protected:
    RawIo() {
        PyType_Ready(&wrpPye_tyds_ShlBufferView);
        // A stream whose every method gives, or raises, what the test put in its place.
        python.run(
            "import io, sys\n"
            "class Stream:\n"
            "    closed = False\n"
            "    def __init__(self, **answers):\n"
            "        self.calls = []\n"
            "        self.__dict__.update((k, v) for k, v in answers.items() if k == 'closed')\n"
            "        self.answers = answers\n"
            "    def __getattr__(self, name):\n"
            "        if name not in self.__dict__['answers']: raise AttributeError(name)\n"
            "        def method(*args):\n"
            "            self.calls.append((name,) + args)\n"
            "            answer = self.answers[name]\n"
            "            if isinstance(answer, list): answer = answer.pop(0)\n"
            "            if isinstance(answer, Exception): raise answer\n"
            "            return answer\n"
            "        return method\n");
    }

    void TearDown() override { EXPECT_EQ(take_error(), ""); }

    // A stream from an expression, borrowed from the namespace.
    PyObject* stream(const char* expression) {
        python.name("stream", python.eval(expression).release());
        return python.named("stream");
    }

    PythonNamespace python;
};

TEST_F(RawIo, writes_through_a_read_only_view) {
    python.run(
        "class Sink:\n"
        "    def write(self, view):\n"
        "        self.seen = (bytes(view), memoryview(view).readonly, type(view).__name__)\n"
        "        return len(bytes(view))\n");
    PyObject* sink = stream("Sink()");
    EXPECT_EQ(fn_clbk_rawio_write(sink, "abc", 3), 3);
    EXPECT_EQ(python.show("stream.seen"), "(b'abc', True, '_ShlBufferView')");
    EXPECT_EQ(fn_clbk_rawio_write_byte(sink, 0x1FF), 1);
    EXPECT_EQ(python.show("stream.seen[0]"), "b'\\xff'");
    EXPECT_EQ(fn_clbk_rawio_write(sink, nullptr, 0), 0);
}

TEST_F(RawIo, writes_into_python_s_own_streams) {
    PyObject* bytes = stream("io.BytesIO()");
    EXPECT_EQ(fn_clbk_rawio_write(bytes, "hello", 5), 5);
    EXPECT_EQ(fn_clbk_rawio_write_byte(bytes, '!'), 1);
    EXPECT_EQ(python.show("stream.getvalue()"), "b'hello!'");
}

TEST_F(RawIo, tells_how_a_write_ended) {
    EXPECT_EQ(fn_clbk_rawio_write(stream("Stream(write=None)"), "abc", 3), 0);
    EXPECT_EQ(fn_clbk_rawio_write(stream("Stream(write=2)"), "abc", 3), 2);
    EXPECT_EQ(fn_clbk_rawio_write(stream("Stream(write=ValueError('full'))"), "abc", 3), -1);
    EXPECT_EQ(take_error(), "ValueError: full");
    EXPECT_EQ(fn_clbk_rawio_write(stream("Stream(write='x')"), "abc", 3), -1);
    EXPECT_EQ(take_error(), "TypeError: can't build 'Int32' from 'str'");
    EXPECT_EQ(fn_clbk_rawio_write(stream("Stream()"), "abc", 3), -1);
    EXPECT_EQ(take_error(), "AttributeError: write");
    EXPECT_EQ(fn_clbk_rawio_write_byte(stream("Stream(write=None)"), 1), 0);
}

TEST_F(RawIo, reads_into_the_caller_s_memory) {
    char memory[8] = "-------";
    PyObject* source = stream("io.BytesIO(b'abc')");
    EXPECT_EQ(fn_clbk_rawio_read(source, memory, 2), 2);
    EXPECT_EQ(fn_clbk_rawio_read(source, memory + 2, 5), 1);
    EXPECT_STREQ(memory, "abc----");
    EXPECT_EQ(fn_clbk_rawio_read(source, memory, 5), 0);
    EXPECT_EQ(fn_clbk_rawio_read(stream("Stream(readinto=None)"), memory, 5), 0);
    EXPECT_EQ(fn_clbk_rawio_read(stream("Stream(readinto=OSError('gone'))"), memory, 5), -1);
    EXPECT_EQ(take_error(), "OSError: gone");
    EXPECT_EQ(fn_clbk_rawio_read(stream("Stream(readinto=True)"), memory, 5), -1);
    EXPECT_EQ(take_error(), "TypeError: can't build 'Int32' from 'bool'");
}

TEST_F(RawIo, reads_a_byte) {
    PyObject* source = stream("io.BytesIO(b'\\x00\\xff')");
    EXPECT_EQ(fn_clbk_rawio_readbyte(source), 0);
    EXPECT_EQ(fn_clbk_rawio_readbyte(source), 255);
    EXPECT_EQ(fn_clbk_rawio_readbyte(source), -1);
    EXPECT_EQ(PyErr_Occurred(), nullptr);
    EXPECT_EQ(fn_clbk_rawio_readbyte(stream("Stream(readinto=None)")), -2);
    EXPECT_EQ(take_error(), "OSError: no bytes are available for reading");
    EXPECT_EQ(fn_clbk_rawio_readbyte(stream("Stream(readinto=ValueError('x'))")), -2);
    EXPECT_EQ(take_error(), "ValueError: x");
    EXPECT_EQ(fn_clbk_rawio_readbyte(stream("Stream(readinto=1.0)")), -2);
    EXPECT_EQ(take_error(), "TypeError: can't build 'Int32' from 'float'");
}

TEST_F(RawIo, seeks_and_tells) {
    EXPECT_EQ(fn_clbk_rawio_seek(stream("Stream(seek=2**40)"), -5, 2), 1LL << 40);
    EXPECT_EQ(python.show("stream.calls"), "[('seek', -5, 2)]");
    EXPECT_EQ(fn_clbk_rawio_tell(stream("Stream(tell=7)")), 7);
    EXPECT_EQ(fn_clbk_rawio_seek(stream("Stream(seek=ValueError('no'))"), 0, 0), -1);
    EXPECT_EQ(take_error(), "ValueError: no");
    EXPECT_EQ(fn_clbk_rawio_seek(stream("Stream(seek=None)"), 0, 0), -1);
    EXPECT_EQ(take_error(), "TypeError: can't build 'Int64' from 'NoneType'");
    EXPECT_EQ(fn_clbk_rawio_tell(stream("Stream(tell='x')")), -1);
    EXPECT_EQ(take_error(), "TypeError: can't build 'Int64' from 'str'");
}

TEST_F(RawIo, flushes) {
    EXPECT_EQ(fn_clbk_rawio_flush(stream("Stream(flush=5)")), 0);
    EXPECT_EQ(fn_clbk_rawio_flush(stream("Stream(flush=ValueError('no'))")), -1);
    EXPECT_EQ(take_error(), "ValueError: no");
}

TEST_F(RawIo, closes_without_disturbing_a_pending_error) {
    python.run(
        "seen = []\nsys.unraisablehook = lambda u: seen.append((str(u.exc_value), u.object is stream))");
    fn_clbk_rawio_close(stream("Stream(close=None)"));
    EXPECT_EQ(python.show("stream.calls, seen"), "([('close',)], [])");
    PyErr_SetString(PyExc_KeyError, "earlier");
    fn_clbk_rawio_close(python.named("stream"));
    EXPECT_EQ(take_error(), "KeyError: 'earlier'");
    PyErr_SetString(PyExc_ValueError, "earlier");
    PyErr_Clear();
    fn_clbk_rawio_close(stream("Stream(close=ValueError('late'))"));
    EXPECT_EQ(PyErr_Occurred(), nullptr);
    EXPECT_EQ(python.show("seen"), "[('late', True)]");
    PyErr_SetString(PyExc_KeyError, "earlier");
    fn_clbk_rawio_close(python.named("stream"));
    EXPECT_EQ(take_error(), "KeyError: 'earlier'");
    EXPECT_EQ(python.show("len(seen)"), "2");
    python.run("sys.unraisablehook = sys.__unraisablehook__");
}

TEST_F(RawIo, asks_what_an_open_stream_can_do) {
    const struct {
        int (*ask)(PyObject*);
        const char* name;
    } questions[] = {{fn_clbk_rawio_readable, "readable"},
                     {fn_clbk_rawio_writable, "writable"},
                     {fn_clbk_rawio_seekable, "seekable"}};
    for (const auto& [ask, name] : questions) {
        const auto made = [&](const std::string& answer) {
            return stream(("Stream(" + std::string(name) + "=" + answer + ")").c_str());
        };
        EXPECT_EQ(ask(made("True")), 1);
        EXPECT_EQ(ask(made("False")), 0);
        EXPECT_EQ(ask(made("True, closed=True")), 0);
        EXPECT_EQ(python.show("stream.calls"), "[]");
        EXPECT_EQ(ask(made("ValueError('x')")), -1);
        EXPECT_EQ(take_error_chain(), "ValueError: x");
        EXPECT_EQ(ask(made("1")), -1);
        EXPECT_EQ(take_error_chain(), "TypeError: can't build bool from 'int'");
        EXPECT_EQ(ask(made("True, closed=1")), -1);
        EXPECT_EQ(take_error_chain(),
                  std::string(ClosedFailure) + " from TypeError: can't build bool from 'int'");
        EXPECT_EQ(ask(stream("object()")), -1);
        EXPECT_EQ(take_error_chain(), std::string(ClosedFailure) +
                                          " from AttributeError: 'object' object has no attribute 'closed'");
    }
}

TEST_F(RawIo, measures_a_stream_and_leaves_its_position) {
    PyObject* bytes = stream("io.BytesIO(b'0123456789')");
    python.run("stream.seek(4)");
    EXPECT_EQ(fn_clbk_rawio_length(bytes), 10);
    EXPECT_EQ(python.show("stream.tell()"), "4");
    EXPECT_EQ(fn_clbk_rawio_length(stream("Stream(seekable=True, seek=[3, 50, 'ignored'])")), 50);
    EXPECT_EQ(python.show("stream.calls"), "[('seekable',), ('seek', 0, 1), ('seek', 0, 2), ('seek', 3)]");
}

TEST_F(RawIo, does_not_measure_what_is_closed_or_cannot_seek) {
    EXPECT_EQ(fn_clbk_rawio_length(stream("Stream(closed=True, seekable=ValueError('asked'))")), -3);
    EXPECT_EQ(python.show("stream.calls"), "[]");
    EXPECT_EQ(fn_clbk_rawio_length(stream("Stream(seekable=False)")), -2);
    EXPECT_EQ(python.show("stream.calls"), "[('seekable',)]");
    EXPECT_EQ(fn_clbk_rawio_length(stream("Stream(closed=0)")), -1);
    EXPECT_EQ(take_error_chain(),
              std::string(ClosedFailure) + " from TypeError: can't build bool from 'int'");
}

TEST_F(RawIo, chains_an_error_of_measuring) {
    const struct {
        const char* stream;
        const char* cause;
    } cases[] = {
        {"Stream(seekable=ValueError('x'))", "ValueError: x"},
        {"Stream(seekable=None)", "TypeError: can't build bool from 'NoneType'"},
        {"Stream(seekable=True, seek=[ValueError('1')])", "ValueError: 1"},
        {"Stream(seekable=True, seek=[1, ValueError('2')])", "ValueError: 2"},
        {"Stream(seekable=True, seek=[1, 2, ValueError('3')])", "ValueError: 3"},
        {"Stream(seekable=True, seek=[1, 'x', 3])", "TypeError: can't build 'Int64' from 'str'"},
    };
    for (const auto& [expression, cause] : cases) {
        EXPECT_EQ(fn_clbk_rawio_length(stream(expression)), -1) << expression;
        EXPECT_EQ(take_error_chain(), std::string(LengthFailure) + " from " + cause);
    }
}

TEST_F(RawIo, keeps_no_reference_to_the_stream) {
    python.run("class Sink:\n    def write(self, view): return len(bytes(view))\n");
    PyObject* sink = stream("Sink()");
    const ReferenceCount references(sink);
    for (int i = 0; i < 10; ++i) {
        fn_clbk_rawio_write(sink, "abc", 3);
        fn_clbk_rawio_flush(sink);
        fn_clbk_rawio_length(sink);
        PyErr_Clear();
    }
    EXPECT_EQ(references.grown(), 0);
}

}  // namespace
