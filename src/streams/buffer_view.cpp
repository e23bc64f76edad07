#include "streams/buffer_view.h"

#include "marshal/bytes.h"

#include <cstring>

namespace {

int wrpPye_blpt_shl_buffer_getbuffer(PyObject* self, Py_buffer* view, int flags) {
    const auto* memory = reinterpret_cast<PyShlBufferView*>(self);
    return PyBuffer_FillInfo(view, self, memory->buf, memory->len, memory->readonly, flags);
}

PyBufferProcs buffer_procs{wrpPye_blpt_shl_buffer_getbuffer, nullptr};

constexpr PyTypeObject make_type() {
    PyTypeObject type{};
    type.ob_base.ob_base.ob_refcnt = 1;
    type.tp_name = "velbor.voxlar._wrpgen._interop._ShlBufferView";
    type.tp_basicsize = sizeof(PyShlBufferView);
    type.tp_as_buffer = &buffer_procs;
    return type;
}

}  // namespace

constinit PyTypeObject wrpPye_tyds_ShlBufferView = make_type();

PyObject* fn_create_shlbuffer_view(void* buf, long len, int readonly) {
    PyObject* view = PyType_GenericNew(&wrpPye_tyds_ShlBufferView, nullptr, nullptr);
    if (view == nullptr) {
        return nullptr;
    }
    auto* memory = reinterpret_cast<PyShlBufferView*>(view);
    memory->buf = buf;
    memory->len = len;
    memory->readonly = readonly;
    return view;
}

std::size_t fn_get_sizeof_py_byffer() {
    static_assert(sizeof(Py_buffer) == 80);
    return sizeof(Py_buffer);
}

void fn_create_py_byffer(Py_buffer* storage) {
    std::memset(storage, 0, sizeof *storage);
}

int fn_read_py_buffer_view(PyObject* object, Py_buffer* storage, PyBytesArg* out) {
    return fn_read_py_buffer(object, storage, out);
}

void fn_release_py_buffer(Py_buffer* storage) {
    PyBuffer_Release(storage);
}
