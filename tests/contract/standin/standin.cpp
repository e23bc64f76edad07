// A stand-in for the managed side, scripted from Python. One shared object plays two parts: it exports the
// symbols of the wrap library, and it is the Python module `standin` by which a test says what each managed
// method does.
//
// Every entry point that the module under test binds becomes a libffi closure with the native signature that
// the script gives. The closure hands its arguments to a Python callable and its result back. When the
// callable raises, the exception stays pending and the entry point returns zero, or what the exception's
// attribute `result` says: that is how a managed failure looks to native code.

#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <ffi.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

PyObject* g_resolver = nullptr;  // owned; called with (assembly, class, method)
std::vector<std::string>* g_wrap_calls = new std::vector<std::string>;  // lives with the process

/// The C types of a signature: how libffi passes them and how the script sees them.
enum class Form {
    nothing,
    int8,
    uint8,
    int16,
    uint16,
    int32,
    uint32,
    int64,
    uint64,
    real,
    single,
    pointer,
    object
};

struct NamedForm {
    Form form;
    ffi_type* type;
};

const std::map<std::string, NamedForm>& forms() {
    static const std::map<std::string, NamedForm> table = {
        {"void", {Form::nothing, &ffi_type_void}},
        {"bool", {Form::uint8, &ffi_type_uint8}},
        {"unsigned char", {Form::uint8, &ffi_type_uint8}},
        {"uint8_t", {Form::uint8, &ffi_type_uint8}},
        {"int16_t", {Form::int16, &ffi_type_sint16}},
        {"short", {Form::int16, &ffi_type_sint16}},
        {"uint16_t", {Form::uint16, &ffi_type_uint16}},
        {"unsigned short", {Form::uint16, &ffi_type_uint16}},
        {"int", {Form::int32, &ffi_type_sint32}},
        {"int32_t", {Form::int32, &ffi_type_sint32}},
        {"unsigned int", {Form::uint32, &ffi_type_uint32}},
        {"uint32_t", {Form::uint32, &ffi_type_uint32}},
        {"int64_t", {Form::int64, &ffi_type_sint64}},
        {"long", {Form::int64, &ffi_type_sint64}},
        {"Py_ssize_t", {Form::int64, &ffi_type_sint64}},
        {"size_t", {Form::uint64, &ffi_type_uint64}},
        {"uint64_t", {Form::uint64, &ffi_type_uint64}},
        {"double", {Form::real, &ffi_type_double}},
        {"float", {Form::single, &ffi_type_float}},
        {"PyObject*", {Form::object, &ffi_type_pointer}},
    };
    return table;
}

/// Any other pointer crosses as its address.
bool find_form(const std::string& name, NamedForm* out) {
    const auto found = forms().find(name);
    if (found != forms().end()) {
        *out = found->second;
        return true;
    }
    if (!name.empty() && name.back() == '*') {
        *out = {Form::pointer, &ffi_type_pointer};
        return true;
    }
    PyErr_Format(PyExc_ValueError, "unknown C type '%s' in a signature", name.c_str());
    return false;
}

PyObject* to_python(Form form, const void* value) {
    switch (form) {
        case Form::nothing:
            Py_RETURN_NONE;
        case Form::int8:
            return PyLong_FromLong(*static_cast<const int8_t*>(value));
        case Form::uint8:
            return PyLong_FromLong(*static_cast<const uint8_t*>(value));
        case Form::int16:
            return PyLong_FromLong(*static_cast<const int16_t*>(value));
        case Form::uint16:
            return PyLong_FromLong(*static_cast<const uint16_t*>(value));
        case Form::int32:
            return PyLong_FromLong(*static_cast<const int32_t*>(value));
        case Form::uint32:
            return PyLong_FromUnsignedLong(*static_cast<const uint32_t*>(value));
        case Form::int64:
            return PyLong_FromLongLong(*static_cast<const int64_t*>(value));
        case Form::uint64:
            return PyLong_FromUnsignedLongLong(*static_cast<const uint64_t*>(value));
        case Form::real:
            return PyFloat_FromDouble(*static_cast<const double*>(value));
        case Form::single:
            return PyFloat_FromDouble(static_cast<double>(*static_cast<const float*>(value)));
        case Form::pointer:
            return PyLong_FromVoidPtr(*static_cast<void* const*>(value));
        case Form::object: {
            PyObject* object = *static_cast<PyObject* const*>(value);
            if (object == nullptr) {
                Py_RETURN_NONE;
            }
            Py_INCREF(object);
            return object;
        }
    }
    return nullptr;
}

/// Writes a Python value as a C value of at least eight bytes of room. A `PyObject*` gets a reference of its
/// own; None stands for a null pointer only where `none_is_null` says so.
bool from_python(Form form, PyObject* value, void* out, bool none_is_null) {
    switch (form) {
        case Form::nothing:
            return true;
        case Form::real:
            *static_cast<double*>(out) = PyFloat_AsDouble(value);
            break;
        case Form::single:
            *static_cast<float*>(out) = static_cast<float>(PyFloat_AsDouble(value));
            break;
        case Form::object:
            if (none_is_null && value == Py_None) {
                *static_cast<PyObject**>(out) = nullptr;
            } else {
                Py_INCREF(value);
                *static_cast<PyObject**>(out) = value;
            }
            break;
        case Form::pointer:
            *static_cast<void**>(out) = value == Py_None ? nullptr : PyLong_AsVoidPtr(value);
            break;
        case Form::uint64:
            *static_cast<uint64_t*>(out) = PyLong_AsUnsignedLongLongMask(value);
            break;
        default:
            // libffi widens every integer result to a register; the low bytes hold the value in any width.
            *static_cast<int64_t*>(out) = value == Py_None ? 0 : PyLong_AsLongLong(value);
            break;
    }
    return PyErr_Occurred() == nullptr;
}

struct Signature {
    NamedForm result{};
    std::vector<NamedForm> arguments;
    std::vector<ffi_type*> types;
    ffi_cif cif{};

    bool prepare(const std::string& result_name, PyObject* argument_names) {
        if (!find_form(result_name, &result)) {
            return false;
        }
        const Py_ssize_t count = PySequence_Size(argument_names);
        for (Py_ssize_t i = 0; i < count; ++i) {
            PyObject* name = PySequence_GetItem(argument_names, i);
            const char* text = name == nullptr ? nullptr : PyUnicode_AsUTF8(name);
            NamedForm form{};
            const bool known = text != nullptr && find_form(text, &form);
            Py_XDECREF(name);
            if (!known) {
                return false;
            }
            arguments.push_back(form);
            types.push_back(form.type);
        }
        return ffi_prep_cif(&cif, FFI_DEFAULT_ABI, static_cast<unsigned>(types.size()), result.type,
                            types.data()) == FFI_OK;
    }
};

/// One entry point that the script answers. Lives with the process, as a bound managed method does.
struct Entry {
    Signature signature;
    PyObject* callable = nullptr;  // owned
    void* code = nullptr;
};

void fail_result(const Entry& entry, void* out) {
    std::memset(out, 0, sizeof(ffi_arg));
    PyObject *type = nullptr, *value = nullptr, *traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    PyObject* result = value == nullptr ? nullptr : PyObject_GetAttrString(value, "result");
    if (result == nullptr) {
        PyErr_Clear();
    } else {
        from_python(entry.signature.result.form, result, out, true);
        PyErr_Clear();
        Py_DECREF(result);
    }
    PyErr_Restore(type, value, traceback);
}

void run_entry(ffi_cif*, void* out, void** arguments, void* data) {
    const auto& entry = *static_cast<Entry*>(data);
    PyObject* tuple = PyTuple_New(static_cast<Py_ssize_t>(entry.signature.arguments.size()));
    for (std::size_t i = 0; i < entry.signature.arguments.size(); ++i) {
        PyTuple_SET_ITEM(tuple, static_cast<Py_ssize_t>(i),
                         to_python(entry.signature.arguments[i].form, arguments[i]));
    }
    // An entry point may run while an exception is pending (a deallocation, a text made for a report).
    PyObject *type = nullptr, *value = nullptr, *traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyObject* result = PyObject_Call(entry.callable, tuple, nullptr);
    Py_DECREF(tuple);
    if (result == nullptr || !from_python(entry.signature.result.form, result, out, true)) {
        fail_result(entry, out);
        Py_XDECREF(type);
        Py_XDECREF(value);
        Py_XDECREF(traceback);
    } else {
        PyErr_Restore(type, value, traceback);
    }
    Py_XDECREF(result);
}

/// Makes the native function for (result, arguments, callable); null with an exception set.
void* make_entry(PyObject* answer) {
    const char* result = nullptr;
    PyObject *arguments = nullptr, *callable = nullptr;
    if (!PyArg_ParseTuple(answer, "sOO", &result, &arguments, &callable)) {
        return nullptr;
    }
    auto* entry = new Entry;
    if (!entry->signature.prepare(result, arguments)) {
        return nullptr;
    }
    Py_INCREF(callable);
    entry->callable = callable;
    auto* closure = static_cast<ffi_closure*>(ffi_closure_alloc(sizeof(ffi_closure), &entry->code));
    if (ffi_prep_closure_loc(closure, &entry->signature.cif, run_entry, entry, entry->code) != FFI_OK) {
        PyErr_SetString(PyExc_RuntimeError, "libffi refused a closure");
        return nullptr;
    }
    return entry->code;
}

PyObject* set_resolver(PyObject*, PyObject* resolver) {
    Py_INCREF(resolver);
    Py_XSETREF(g_resolver, resolver);
    Py_RETURN_NONE;
}

/// call(address, result, argument_types, arguments) -> (result, exception or None). Calls a native function
/// as managed code would; a pending exception is taken off the error state.
PyObject* call(PyObject*, PyObject* args) {
    PyObject *address = nullptr, *types = nullptr, *values = nullptr;
    const char* result_name = nullptr;
    if (!PyArg_ParseTuple(args, "OsOO", &address, &result_name, &types, &values)) {
        return nullptr;
    }
    Signature signature;
    if (!signature.prepare(result_name, types)) {
        return nullptr;
    }
    std::vector<std::uint64_t> room(signature.arguments.size() + 1);
    std::vector<void*> pointers(signature.arguments.size());
    for (std::size_t i = 0; i < signature.arguments.size(); ++i) {
        PyObject* value = PySequence_GetItem(values, static_cast<Py_ssize_t>(i));
        if (value == nullptr || !from_python(signature.arguments[i].form, value, &room[i], true)) {
            Py_XDECREF(value);
            return nullptr;
        }
        if (signature.arguments[i].form == Form::object) {
            // Borrowed by the callee: `values` keeps the object.
            Py_XDECREF(reinterpret_cast<PyObject*>(room[i]));
        }
        Py_DECREF(value);
        pointers[i] = &room[i];
    }
    std::uint64_t out = 0;
    ffi_call(&signature.cif, FFI_FN(PyLong_AsVoidPtr(address)), &out, pointers.data());
    PyObject *type = nullptr, *error = nullptr, *traceback = nullptr;
    PyErr_Fetch(&type, &error, &traceback);
    PyErr_NormalizeException(&type, &error, &traceback);
    PyObject* result = to_python(signature.result.form, &out);
    if (signature.result.form == Form::object) {
        Py_XDECREF(reinterpret_cast<PyObject*>(out));  // a new reference, which `result` shares
    }
    Py_XDECREF(type);
    Py_XDECREF(traceback);
    if (error == nullptr) {
        error = Py_None;
        Py_INCREF(error);
    }
    return Py_BuildValue("(NN)", result, error);
}

PyObject* peek(PyObject*, PyObject* args) {
    unsigned long long address = 0;
    Py_ssize_t size = 0;
    if (!PyArg_ParseTuple(args, "Kn", &address, &size)) {
        return nullptr;
    }
    return PyBytes_FromStringAndSize(reinterpret_cast<const char*>(address), size);
}

PyObject* poke(PyObject*, PyObject* args) {
    unsigned long long address = 0;
    Py_buffer bytes;
    if (!PyArg_ParseTuple(args, "Ky*", &address, &bytes)) {
        return nullptr;
    }
    std::memcpy(reinterpret_cast<void*>(address), bytes.buf, static_cast<std::size_t>(bytes.len));
    PyBuffer_Release(&bytes);
    Py_RETURN_NONE;
}

PyObject* object_at(PyObject*, PyObject* address) {
    auto* object = static_cast<PyObject*>(PyLong_AsVoidPtr(address));
    if (object == nullptr) {
        return PyErr_Occurred() != nullptr ? nullptr : (Py_INCREF(Py_None), Py_None);
    }
    Py_INCREF(object);
    return object;
}

/// The address of an object with one more reference, for an out pointer that takes it over.
PyObject* give(PyObject*, PyObject* object) {
    Py_INCREF(object);
    return PyLong_FromVoidPtr(object);
}

PyObject* wrap_calls(PyObject*, PyObject*) {
    PyObject* list = PyList_New(0);
    for (const std::string& name : *g_wrap_calls) {
        PyObject* text = PyUnicode_FromString(name.c_str());
        PyList_Append(list, text);
        Py_XDECREF(text);
    }
    return list;
}

PyMethodDef methods[] = {
    {"set_resolver", set_resolver, METH_O,
     "set_resolver(callable): callable(assembly, class, method) gives an int status, or (result, argument "
     "types, "
     "callable)."},
    {"call", call, METH_VARARGS, "call(address, result, argument types, arguments) -> (result, exception)."},
    {"peek", peek, METH_VARARGS, "peek(address, size) -> bytes."},
    {"poke", poke, METH_VARARGS, "poke(address, bytes)."},
    {"object_at", object_at, METH_O, "object_at(address) -> the Python object there."},
    {"give", give, METH_O, "give(object) -> its address, with a reference that the receiver takes over."},
    {"wrap_calls", wrap_calls, METH_NOARGS, "The names of the wrap library's functions called so far."},
    {nullptr, nullptr, 0, nullptr},
};

PyModuleDef definition = {
    PyModuleDef_HEAD_INIT, "standin", nullptr, -1, methods, nullptr, nullptr, nullptr, nullptr};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int32_t coreclr_wrap_load(const char*) {
    g_wrap_calls->emplace_back("coreclr_wrap_load");
    return 1;
}

__attribute__((visibility("default"))) int32_t coreclr_wrap_initialize(const char*, const char*, int,
                                                                       const char**, const char**) {
    g_wrap_calls->emplace_back("coreclr_wrap_initialize");
    return 0;
}

__attribute__((visibility("default"))) int32_t coreclr_wrap_create_delegate(const char* assembly,
                                                                            const char* type,
                                                                            const char* method,
                                                                            void** delegate) {
    constexpr int32_t missing = static_cast<int32_t>(0x80131513U);
    if (g_resolver == nullptr) {
        return missing;
    }
    PyObject *pending_type = nullptr, *pending = nullptr, *traceback = nullptr;
    PyErr_Fetch(&pending_type, &pending, &traceback);
    PyObject* answer = PyObject_CallFunction(g_resolver, "sss", assembly, type, method);
    int32_t status = missing;
    if (answer != nullptr && PyLong_Check(answer)) {
        status = static_cast<int32_t>(PyLong_AsLong(answer));
    } else if (answer != nullptr) {
        *delegate = make_entry(answer);
        status = *delegate != nullptr ? 0 : missing;
    }
    if (PyErr_Occurred() != nullptr) {
        PyErr_WriteUnraisable(g_resolver);  // a fault of the script itself
    }
    Py_XDECREF(answer);
    PyErr_Restore(pending_type, pending, traceback);
    return status;
}

__attribute__((visibility("default"))) int32_t coreclr_wrap_shutdown() {
    return 0;
}

__attribute__((visibility("default"))) int32_t coreclr_wrap_is_domain_initialized() {
    g_wrap_calls->emplace_back("coreclr_wrap_is_domain_initialized");
    return 1;
}

__attribute__((visibility("default"))) PyObject* PyInit_standin() {
    return PyModule_Create(&definition);
}

}  // extern "C"
