#include "marshal/nullable.h"

int fn_conv_py_nullable_to_clr_nullable(PyObject* value, PyNullableArg* arg) {
    if (value == Py_None) {
        return 1;
    }
    if (arg->converter(value, arg->target) != 1) {
        return 0;
    }
    arg->has_value = 1;
    return 1;
}
