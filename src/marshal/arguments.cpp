#include "marshal/arguments.h"

bool fn_check_args_count_out_of_range(Py_ssize_t given, const char* name, Py_ssize_t min, Py_ssize_t max) {
    if (given >= min && given <= max) {
        return false;
    }
    const char* word = min == max ? "exactly" : given > max ? "at most" : "at least";
    const Py_ssize_t number = given > max ? max : min;
    PyErr_Format(PyExc_TypeError, "%.150s%s takes %s %d argument%s (%zd given)",
                 name != nullptr ? name : "function", name != nullptr ? "()" : "", word,
                 static_cast<int>(number), number == 1 ? "" : "s", given);
    return true;
}
