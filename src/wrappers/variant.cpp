#include "wrappers/variant.h"

#include "marshal/numbers.h"
#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "wrappers/markers.h"
#include "wrappers/standard_class.h"

#include <datetime.h>

namespace {

// The vocabulary of a variant's tag; the managed side reads a value by it.
enum VariantKind {
    variant_null = 0,
    variant_object = 1,
    variant_struct = 2,
    variant_string = 3,
    variant_buffer = 4,
    variant_bool = 5,
    variant_integer = 6,
    variant_double = 7,
    variant_decimal = 8,
    variant_decimal_tuple = 9,
    variant_datetime = 10,
    variant_date = 11,
    variant_time = 12,
    variant_timedelta = 13,
    variant_uuid = 14,
    variant_list = 15,
    variant_tuple = 16,
};

enum class Answer { no, yes, failed };

const StandardModule& decimal_module() {
    static const StandardModule module{.name = "decimal"};
    return module;
}

const StandardModule& uuid_module() {
    static const StandardModule module{.name = "uuid"};
    return module;
}

// Whether the value is an instance of a class of the standard library. Only the import can fail: an error of
// the instance test is a "yes".
Answer is_instance_of(PyObject* value, const StandardModule& module, PyObject* class_name) {
    const PyRef type = fn_import_class(module, class_name);
    if (!type) {
        return Answer::failed;
    }
    return PyObject_IsInstance(value, type.get()) != 0 ? Answer::yes : Answer::no;
}

bool import_datetime_capsule() {
    PyDateTime_IMPORT;
    return PyDateTimeAPI != nullptr;
}

bool is_buffer(PyObject* value) {
    return (PyBytes_Check(value) || PyByteArray_Check(value) || PyMemoryView_Check(value)) &&
           PyObject_CheckBuffer(value);
}

// A wrapper of this module or of a sibling, with a handle in it.
bool take_wrapper(PyObject* value, VariantArg* arg) {
    if (!fn_is_this_module_clr_instance(value, &arg->kind) &&
        !fn_is_instance_has_host_markattr(value, &arg->kind)) {
        return false;
    }
    void* handle = nullptr;
    fn_py_unknown_to_clr_unknown(value, &handle);
    if (handle == nullptr) {
        return false;
    }
    arg->payload = handle;
    ++arg->kind;
    return true;
}

int done(VariantArg* arg, VariantKind kind) {
    arg->kind = kind;
    return 1;
}

}  // namespace

int fn_conv_py_variant_to_clr_variant(PyObject* value, VariantArg* arg) {
    arg->payload = value;
    if (value == Py_None) {
        return done(arg, variant_null);
    }
    if (PyBool_Check(value)) {
        return done(arg, variant_bool);
    }
    if (PyShLong_Check(value) != 0) {
        return done(arg, variant_integer);
    }
    if (PyFloat_Check(value)) {
        return done(arg, variant_double);
    }
    // A DecimalTuple is a tuple too, so it is asked about first.
    switch (is_instance_of(value, decimal_module(), PyWrpIdTypeName_DecimalTuple)) {
        case Answer::failed:
            return 0;
        case Answer::yes:
            return done(arg, variant_decimal_tuple);
        case Answer::no:
            break;
    }
    switch (is_instance_of(value, decimal_module(), PyWrpIdTypeName_Decimal)) {
        case Answer::failed:
            return 0;
        case Answer::yes:
            return done(arg, variant_decimal);
        case Answer::no:
            break;
    }
    switch (is_instance_of(value, uuid_module(), PyWrpIdTypeName_Uuid)) {
        case Answer::failed:
            return 0;
        case Answer::yes:
            return done(arg, variant_uuid);
        case Answer::no:
            break;
    }
    if (!import_datetime_capsule()) {
        return 0;
    }
    if (PyDelta_Check(value)) {
        return done(arg, variant_timedelta);
    }
    // A datetime is a date too.
    if (PyDateTime_Check(value)) {
        return done(arg, variant_datetime);
    }
    if (PyDate_Check(value)) {
        return done(arg, variant_date);
    }
    if (PyTime_Check(value)) {
        return done(arg, variant_time);
    }
    if (PyUnicode_Check(value)) {
        return done(arg, variant_string);
    }
    if (is_buffer(value)) {
        return done(arg, variant_buffer);
    }
    if (PyList_CheckExact(value)) {
        return done(arg, variant_list);
    }
    if (PyTuple_CheckExact(value)) {
        return done(arg, variant_tuple);
    }
    if (take_wrapper(value, arg)) {
        return 1;
    }
    PyErr_SetString(PyExc_TypeError, "unknown variant type");
    return 0;
}
