#pragma once

#include "startup/cpython.h"
#include "wrappers/casts.h"

#include <cstddef>

// What the wrapped enums share. A managed enum is a real `enum.IntEnum` or `enum.IntFlag` class; native code
// makes the class and puts the bridge's methods into its dictionary past the enum machinery, so that they
// become no members.

struct EnumMember {
    const char* name;
    long value;
};

/// One method of the class. An instance method gets the member as its first argument, a static one nothing.
struct EnumMethod {
    PyMethodDef definition;
    bool is_instance;
};

/// The methods in the order of attachment.
constexpr std::size_t enum_method_count = 8;

/// Makes the class `name`, keeps it in `variable` and gives a new reference, or null with an error set.
PyObject* fn_build_enum(PyTypeObject** variable, const char* name, const EnumMember* members,
                        std::size_t count, bool flags, EnumMethod* methods);

/// The eight methods of one enum over its casts.
template <class Casts>
struct EnumBuiltins {
    static EnumMethod* rows() {
        static EnumMethod methods[enum_method_count] = {
            {{"_type_of", Casts::type_of, METH_NOARGS | METH_STATIC, nullptr}, false},
            {{"_cast_to", Casts::cast_to, METH_O | METH_STATIC, nullptr}, false},
            {{"_cast_from", Casts::cast_from, METH_O, nullptr}, true},
            {{"_reinterpret_obj", Casts::reinterpret_obj, METH_O | METH_STATIC, nullptr}, false},
            {{"_as_uni_enum", Casts::as_uni_enum, METH_NOARGS, nullptr}, true},
            {{"_cast_as", Casts::cast_as, METH_O | METH_STATIC, nullptr}, false},
            {{"_is_assignable", Casts::is_assignable, METH_O | METH_STATIC, nullptr}, false},
            {{"get_type", Casts::get_type, METH_NOARGS, nullptr}, true},
        };
        return methods;
    }
};
