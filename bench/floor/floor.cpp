// The floor that the benchmarks compare with: a hand-written extension of the plainest kind, whose methods
// forward through a table of C functions to an object on the native heap and take their arguments with a
// format string.

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

struct Native {
    double x = 1.5;
    std::u16string name = u"a name of some length";
    std::vector<double> values = std::vector<double>(1000, 2.5);
};

// The table: what managed entry points are to the bridge.
struct Functions {
    void* (*create)();
    void (*free)(void*);
    double (*get_x)(void*);
    void (*set_x)(void*, double);
    PyObject* (*get_name)(void*);
    void (*set_name)(void*, const void*, Py_ssize_t, int);
    int (*take_text)(void*, const void*, Py_ssize_t, int);
    int (*take_object)(void*, void*);
    int (*length)(void*);
    int (*item)(void*, int, double*);
    int (*take_all)(void*, PyObject*);
    void (*fail)(void*);
};

void* create() {
    return new Native;
}
void free_native(void* self) {
    delete static_cast<Native*>(self);
}
double get_x(void* self) {
    return static_cast<Native*>(self)->x;
}
void set_x(void* self, double x) {
    static_cast<Native*>(self)->x = x;
}
PyObject* get_name(void* self) {
    const std::u16string& name = static_cast<Native*>(self)->name;
    int order = -1;
    return PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(name.data()),
                                 static_cast<Py_ssize_t>(name.size() * 2), "", &order);
}
void set_name(void* self, const void* characters, Py_ssize_t length, int size) {
    std::u16string& name = static_cast<Native*>(self)->name;
    name.resize(static_cast<std::size_t>(length));
    if (size == 1) {
        const auto* from = static_cast<const unsigned char*>(characters);
        for (std::size_t i = 0; i < name.size(); ++i) {
            name[i] = from[i];
        }
    }
}
int take_text(void*, const void*, Py_ssize_t length, int) {
    return static_cast<int>(length);
}
int take_object(void*, void* other) {
    return other != nullptr;
}
int length(void* self) {
    return static_cast<int>(static_cast<Native*>(self)->values.size());
}
int item(void* self, int index, double* out) {
    const std::vector<double>& values = static_cast<Native*>(self)->values;
    if (index < 0 || static_cast<std::size_t>(index) >= values.size()) {
        return 2;
    }
    *out = values[static_cast<std::size_t>(index)];
    return 0;
}
// Calls back into Python for each element.
int take_all(void* self, PyObject* iterable) {
    PyObject* iterator = PyObject_GetIter(iterable);
    if (iterator == nullptr) {
        return 0;
    }
    double sum = 0;
    while (PyObject* item = PyIter_Next(iterator)) {
        sum += static_cast<double>(Py_REFCNT(item));
        Py_DECREF(item);
    }
    Py_DECREF(iterator);
    static_cast<Native*>(self)->x = sum;
    return !PyErr_Occurred();
}
void fail(void*) {
    PyErr_SetString(PyExc_RuntimeError, "it failed");
}

// Volatile, so that the compiler cannot see through the pointers.
const Functions table = {create,    free_native, get_x,  set_x, get_name, set_name,
                         take_text, take_object, length, item,  take_all, fail};
const Functions* volatile functions = &table;

struct Floor {
    PyObject ob_base;
    void* handle;
};

void* handle_of(PyObject* self) {
    return reinterpret_cast<Floor*>(self)->handle;
}

PyTypeObject* floor_type = nullptr;

PyObject* floor_new(PyTypeObject* type, PyObject*, PyObject*) {
    PyObject* self = PyType_GenericNew(type, nullptr, nullptr);
    reinterpret_cast<Floor*>(self)->handle = nullptr;
    return self;
}

int floor_init(PyObject* self, PyObject* args, PyObject* kwargs) {
    static const char* names[] = {nullptr};
    if (!PyArg_ParseTupleAndKeywords(args, kwargs, "", const_cast<char**>(names))) {
        return -1;
    }
    reinterpret_cast<Floor*>(self)->handle = functions->create();
    return 0;
}

void floor_dealloc(PyObject* self) {
    if (handle_of(self) != nullptr) {
        functions->free(handle_of(self));
    }
    PyTypeObject* type = Py_TYPE(self);
    type->tp_free(self);
    Py_DECREF(type);
}

PyObject* floor_get_x(PyObject* self, void*) {
    return PyFloat_FromDouble(functions->get_x(handle_of(self)));
}

int floor_set_x(PyObject* self, PyObject* value, void*) {
    const double x = PyFloat_AsDouble(value);
    if (x == -1.0 && PyErr_Occurred()) {
        return -1;
    }
    functions->set_x(handle_of(self), x);
    return 0;
}

PyObject* floor_get_name(PyObject* self, void*) {
    return functions->get_name(handle_of(self));
}

int floor_set_name(PyObject* self, PyObject* value, void*) {
    if (!PyUnicode_Check(value)) {
        PyErr_SetString(PyExc_TypeError, "a str is needed");
        return -1;
    }
    functions->set_name(handle_of(self), PyUnicode_DATA(value), PyUnicode_GET_LENGTH(value),
                        static_cast<int>(PyUnicode_KIND(value)));
    return 0;
}

PyObject* floor_take_text(PyObject* self, PyObject* args, PyObject* kwargs) {
    static const char* names[] = {"text", nullptr};
    PyObject* text = nullptr;
    if (!PyArg_ParseTupleAndKeywords(args, kwargs, "U", const_cast<char**>(names), &text)) {
        return nullptr;
    }
    functions->take_text(handle_of(self), PyUnicode_DATA(text), PyUnicode_GET_LENGTH(text),
                         static_cast<int>(PyUnicode_KIND(text)));
    Py_RETURN_NONE;
}

PyObject* floor_take_object(PyObject* self, PyObject* args, PyObject* kwargs) {
    static const char* names[] = {"other", nullptr};
    PyObject* other = nullptr;
    if (!PyArg_ParseTupleAndKeywords(args, kwargs, "O!", const_cast<char**>(names), floor_type, &other)) {
        return nullptr;
    }
    functions->take_object(handle_of(self), handle_of(other));
    Py_RETURN_NONE;
}

PyObject* floor_take_all(PyObject* self, PyObject* iterable) {
    if (!functions->take_all(handle_of(self), iterable)) {
        return nullptr;
    }
    Py_RETURN_NONE;
}

PyObject* floor_child(PyObject* self, PyObject*) {
    static_cast<void>(self);
    PyObject* made = floor_new(floor_type, nullptr, nullptr);
    reinterpret_cast<Floor*>(made)->handle = nullptr;
    return made;
}

PyObject* floor_overload(PyObject* self, PyObject* args, PyObject* kwargs) {
    static const char* one[] = {"other", nullptr};
    static const char* two[] = {"other", "text", nullptr};
    static const char* three[] = {"text", nullptr};
    PyObject *other = nullptr, *text = nullptr;
    if (PyArg_ParseTupleAndKeywords(args, kwargs, "O!", const_cast<char**>(one), floor_type, &other)) {
        Py_RETURN_NONE;
    }
    PyErr_Clear();
    if (PyArg_ParseTupleAndKeywords(args, kwargs, "O!U", const_cast<char**>(two), floor_type, &other,
                                    &text)) {
        Py_RETURN_NONE;
    }
    PyErr_Clear();
    if (!PyArg_ParseTupleAndKeywords(args, kwargs, "U", const_cast<char**>(three), &text)) {
        return nullptr;
    }
    functions->take_text(handle_of(self), PyUnicode_DATA(text), PyUnicode_GET_LENGTH(text), 1);
    Py_RETURN_NONE;
}

PyObject* floor_fail(PyObject* self, PyObject*) {
    functions->fail(handle_of(self));
    return nullptr;
}

Py_ssize_t floor_length(PyObject* self) {
    return functions->length(handle_of(self));
}

PyObject* floor_item(PyObject* self, Py_ssize_t index) {
    double out = 0;
    if (functions->item(handle_of(self), static_cast<int>(index), &out) == 2) {
        PyErr_SetString(PyExc_IndexError, "list index out of range");
        return nullptr;
    }
    return PyFloat_FromDouble(out);
}

PyObject* floor_subscript(PyObject* self, PyObject* key) {
    const Py_ssize_t index = PyNumber_AsSsize_t(key, PyExc_IndexError);
    if (index == -1 && PyErr_Occurred()) {
        return nullptr;
    }
    return floor_item(self, index < 0 ? index + floor_length(self) : index);
}

struct FloorIterator {
    PyObject ob_base;
    PyObject* owner;
    int index;
};

PyObject* iterator_next(PyObject* self) {
    auto* iterator = reinterpret_cast<FloorIterator*>(self);
    double out = 0;
    if (functions->item(handle_of(iterator->owner), iterator->index, &out) != 0) {
        return nullptr;
    }
    ++iterator->index;
    return PyFloat_FromDouble(out);
}

void iterator_dealloc(PyObject* self) {
    Py_DECREF(reinterpret_cast<FloorIterator*>(self)->owner);
    PyTypeObject* type = Py_TYPE(self);
    type->tp_free(self);
    Py_DECREF(type);
}

PyTypeObject* iterator_type = nullptr;

PyObject* floor_iter(PyObject* self) {
    PyObject* made = PyType_GenericNew(iterator_type, nullptr, nullptr);
    Py_INCREF(self);
    reinterpret_cast<FloorIterator*>(made)->owner = self;
    reinterpret_cast<FloorIterator*>(made)->index = 0;
    return made;
}

PyMethodDef methods[] = {
    {"take_text", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(floor_take_text)),
     METH_VARARGS | METH_KEYWORDS, nullptr},
    {"take_object", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(floor_take_object)),
     METH_VARARGS | METH_KEYWORDS, nullptr},
    {"overload", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(floor_overload)),
     METH_VARARGS | METH_KEYWORDS, nullptr},
    {"take_all", floor_take_all, METH_O, nullptr},
    {"child", floor_child, METH_NOARGS, nullptr},
    {"fail", floor_fail, METH_NOARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

PyGetSetDef properties[] = {
    {"x", floor_get_x, floor_set_x, nullptr, nullptr},
    {"name", floor_get_name, floor_set_name, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

PyType_Slot floor_slots[] = {
    {Py_tp_new, reinterpret_cast<void*>(floor_new)},
    {Py_tp_init, reinterpret_cast<void*>(floor_init)},
    {Py_tp_dealloc, reinterpret_cast<void*>(floor_dealloc)},
    {Py_tp_methods, methods},
    {Py_tp_getset, properties},
    {Py_sq_length, reinterpret_cast<void*>(floor_length)},
    {Py_sq_item, reinterpret_cast<void*>(floor_item)},
    {Py_mp_length, reinterpret_cast<void*>(floor_length)},
    {Py_mp_subscript, reinterpret_cast<void*>(floor_subscript)},
    {Py_tp_iter, reinterpret_cast<void*>(floor_iter)},
    {0, nullptr},
};
PyType_Spec floor_spec = {"floor.Floor", sizeof(Floor), 0, Py_TPFLAGS_DEFAULT, floor_slots};

PyType_Slot iterator_slots[] = {
    {Py_tp_dealloc, reinterpret_cast<void*>(iterator_dealloc)},
    {Py_tp_iter, reinterpret_cast<void*>(PyObject_SelfIter)},
    {Py_tp_iternext, reinterpret_cast<void*>(iterator_next)},
    {0, nullptr},
};
PyType_Spec iterator_spec = {"floor.Iterator", sizeof(FloorIterator), 0, Py_TPFLAGS_DEFAULT, iterator_slots};

PyModuleDef definition = {
    PyModuleDef_HEAD_INIT, "floor", nullptr, -1, nullptr, nullptr, nullptr, nullptr, nullptr};

}  // namespace

extern "C" __attribute__((visibility("default"))) PyObject* PyInit_floor() {
    PyObject* module = PyModule_Create(&definition);
    floor_type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&floor_spec));
    iterator_type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&iterator_spec));
    if (module == nullptr || floor_type == nullptr || iterator_type == nullptr) {
        return nullptr;
    }
    Py_INCREF(floor_type);
    PyModule_AddObject(module, "Floor", reinterpret_cast<PyObject*>(floor_type));
    return module;
}
