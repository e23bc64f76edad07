#include "marshal/guid.h"

#include "startup/identifiers.h"
#include "startup/import.h"
#include "startup/py_ref.h"

#include <cstring>

namespace {

constexpr Py_ssize_t GuidSize = 16;

}  // namespace

int fn_conv_py_uuid_to_clr_guid(PyObject* value, std::uint8_t* bytes16) {
    const PyRef type = PyRef::steal(PyShImport_ImportType("uuid", PyWrpIdTypeName_Uuid));
    if (!type) {
        return 0;
    }
    if (PyObject_IsInstance(value, type.get()) != 0) {
        fn_conv_py_uuid_to_clr_guid_value(value, bytes16);
        return 1;
    }
    PyErr_Format(PyExc_TypeError, "can't build Guid from '%s'", Py_TYPE(value)->tp_name);
    return 0;
}

void fn_conv_py_uuid_to_clr_guid_value(PyObject* value, std::uint8_t* bytes16) {
    const PyRef bytes = PyRef::steal(PyObject_GetAttr(value, PyWrpIdUuid_BytesLe));
    char* data = nullptr;
    Py_ssize_t size = 0;
    if (!bytes || PyBytes_AsStringAndSize(bytes.get(), &data, &size) != 0) {
        return;
    }
    if (size < GuidSize) {  // a subclass may answer anything
        PyErr_Format(PyExc_ValueError, "bytes_le of a UUID must be 16 bytes, not %zd", size);
        return;
    }
    std::memcpy(bytes16, data, GuidSize);
}

PyObject* fn_conv_clr_guid_to_py_uuid(const void* bytes16) {
    const PyRef type = PyRef::steal(PyShImport_ImportType("uuid", PyWrpIdTypeName_Uuid));
    if (!type) {
        return nullptr;
    }
    const PyRef bytes = PyRef::steal(PyBytes_FromStringAndSize(static_cast<const char*>(bytes16), GuidSize));
    const PyRef arguments = PyRef::steal(Py_BuildValue("()"));
    const PyRef keywords = PyRef::steal(PyDict_New());
    if (!bytes || !arguments || !keywords ||
        PyDict_SetItem(keywords.get(), PyWrpIdUuid_BytesLe, bytes.get()) != 0) {
        return nullptr;
    }
    return PyObject_Call(type.get(), arguments.get(), keywords.get());
}

void fn_read_py_guid(PyObject* value, std::uint8_t* bytes16) {
    fn_conv_py_uuid_to_clr_guid_value(value, bytes16);
}

PyObject* fn_write_py_guid(const void* bytes16) {
    return fn_conv_clr_guid_to_py_uuid(bytes16);
}
