#include "generated/dispatch.h"

#include "generated/arguments.h"
#include "wrappers/markers.h"

#include <vector>

namespace {

enum class Look : unsigned char { no, yes, unknown };

/// CPython's own types carry no marker and cannot be given one.
bool is_plain_type(const PyTypeObject* type) {
    return type == &PyUnicode_Type || type == &PyLong_Type || type == &PyFloat_Type || type == &PyBool_Type ||
           type == &PyList_Type || type == &PyTuple_Type || type == &PyBytes_Type || type == &PyDict_Type;
}

Look look_for_wrapper(PyObject* value, const PyTypeObject* type) {
    if (is_plain_type(type)) {
        return Look::no;
    }
    int kind = 0;
    return fn_is_instance_has_host_markattr(value, &kind) ? Look::unknown : Look::no;
}

Look look_at(const ParameterSpec& parameter, PyObject* value) {
    PyTypeObject* type = Py_TYPE(value);
    const auto decided = [](bool accepted) { return accepted ? Look::yes : Look::no; };
    switch (parameter.accepts) {
        case Accepts::text:
            return decided(value == Py_None || PyUnicode_Check(value));
        case Accepts::real:
            return decided(PyFloat_Check(value));
        case Accepts::boolean:
            return decided(type == &PyBool_Type);
        case Accepts::integer:
            if (type == &PyLong_Type) {
                return Look::yes;
            }
            return type == &PyBool_Type || !PyLong_Check(value) ? Look::no : Look::unknown;
        case Accepts::bytes:
            if (value == Py_None || type == &PyBytes_Type || type == &PyByteArray_Type) {
                return Look::yes;
            }
            return is_plain_type(type) ? Look::no : Look::unknown;
        case Accepts::variant:
            return value == Py_None || (is_plain_type(type) && type != &PyDict_Type) ? Look::yes
                                                                                     : Look::unknown;
        case Accepts::enumeration:
            return decided(type == *parameter.enum_type || PyType_IsSubtype(type, *parameter.enum_type));
        case Accepts::object:
            if (value == Py_None || type == parameter.type || PyType_IsSubtype(type, parameter.type)) {
                return Look::yes;
            }
            return look_for_wrapper(value, type);
        case Accepts::value:
            return type == parameter.type ? Look::yes : look_for_wrapper(value, type);
        case Accepts::interface:
            return value == Py_None || type == parameter.type ? Look::yes : look_for_wrapper(value, type);
        case Accepts::stream:
            if (value == Py_None) {
                return Look::yes;
            }
            return is_plain_type(type) ? Look::no : Look::unknown;
        case Accepts::list_like:
            if (value == Py_None || type == &PyList_Type || type == &PyTuple_Type) {
                return Look::yes;
            }
            return type == &PyLong_Type || type == &PyFloat_Type || type == &PyBool_Type ? Look::no
                                                                                         : Look::unknown;
        case Accepts::by_list:
            return type == &PyList_Type ? Look::unknown : Look::no;
        case Accepts::anything:
            return Look::unknown;
    }
    return Look::unknown;
}

/// The value that a call gives for the parameter at `index`, borrowed; null when there is none.
PyObject* given_value(const OverloadRow& row, std::size_t index, PyObject* args, PyObject* kwargs) {
    if (index < static_cast<std::size_t>(PyTuple_GET_SIZE(args))) {
        return PyTuple_GET_ITEM(args, static_cast<Py_ssize_t>(index));
    }
    if (kwargs == nullptr) {
        return nullptr;
    }
    return fn_find_keyword(kwargs, row.parameters[index].name, &row.interned[index]);
}

/// The parse converts in the parameters' order and stops at the first that is missing or refused; superfluous
/// keywords come last. So a refusal is certain only as long as no look before it was unsure: such a value is
/// shown to the managed side first.
Look look_at_overload(const OverloadRow& row, PyObject* args, PyObject* kwargs) {
    const auto positional = static_cast<std::size_t>(PyTuple_GET_SIZE(args));
    const auto given =
        positional + (kwargs == nullptr ? 0 : static_cast<std::size_t>(PyDict_GET_SIZE(kwargs)));
    if (given > row.count) {
        return Look::no;
    }
    bool unsure = false;
    std::size_t found = 0;
    for (; found < row.count; ++found) {
        PyObject* value = given_value(row, found, args, kwargs);
        if (value == nullptr) {
            break;
        }
        const Look look = look_at(row.parameters[found], value);
        if (look == Look::no) {
            break;
        }
        unsure |= look == Look::unknown;
    }
    if (unsure) {
        return Look::unknown;
    }
    return found == row.count && given == row.count ? Look::yes : Look::no;
}

/// The overload that the told way would reach, when looks alone can tell; null otherwise.
const OverloadRow* choose(PyObject* args, PyObject* kwargs, const OverloadRow* rows, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        switch (look_at_overload(rows[i], args, kwargs)) {
            case Look::yes:
                return &rows[i];
            case Look::unknown:
                return nullptr;
            case Look::no:
                break;
        }
    }
    return nullptr;
}

/// The refusals of the overloads tried so far, each an exception value that is owned here.
class Refusals {
public:
    Refusals() = default;
    Refusals(const Refusals&) = delete;
    Refusals& operator=(const Refusals&) = delete;
    ~Refusals() {
        for (PyObject* value : m_values) {
            Py_DECREF(value);
        }
    }

    /// Takes the pending error off the error state. False when none was pending.
    bool take_pending() { return take(fn_take_pending_error()); }

    bool take(PyObject* value) {
        if (value == nullptr) {
            return false;
        }
        m_values.push_back(value);
        return true;
    }

    /// Sets the TypeError whose value is the list of all messages, in the overloads' order.
    void raise() const {
        PyObject* list = PyList_New(static_cast<Py_ssize_t>(m_values.size()));
        if (list == nullptr) {
            return;
        }
        for (std::size_t i = 0; i < m_values.size(); ++i) {
            PyObject* text = PyObject_Str(m_values[i]);
            if (text == nullptr) {
                // A list with an empty slot could not be printed, so a failing __str__ leaves its class's
                // name.
                PyErr_Clear();
                text = PyUnicode_FromString(Py_TYPE(m_values[i])->tp_name);
            }
            if (text == nullptr) {
                Py_DECREF(list);
                return;
            }
            PyList_SET_ITEM(list, static_cast<Py_ssize_t>(i), text);
        }
        PyErr_SetObject(PyExc_TypeError, list);
        Py_DECREF(list);
    }

private:
    std::vector<PyObject*> m_values;
};

}  // namespace

bool fn_dispatch(PyClrObject* self, PyObject* args, PyObject* kwargs, const OverloadRow* rows,
                 std::size_t count, PyObject** result, InheritedAttemptFn inherited) {
    if (const OverloadRow* chosen = choose(args, kwargs, rows, count)) {
        const Attempt attempt = chosen->attempt(self, args, kwargs, result);
        if (attempt != Attempt::refused) {
            return attempt == Attempt::done;
        }
        // A value of the right type that the converter refuses all the same, such as an integer beyond its
        // range.
        PyErr_Clear();
    }
    Refusals refusals;
    for (std::size_t i = 0; i < count; ++i) {
        const Attempt attempt = rows[i].attempt(self, args, kwargs, result);
        if (attempt != Attempt::refused) {
            return attempt == Attempt::done;
        }
        if (!refusals.take_pending()) {
            return false;
        }
    }
    if (inherited != nullptr) {
        PyObject* error = nullptr;
        const Attempt attempt = inherited(reinterpret_cast<PyObject*>(self), args, kwargs, &error, result);
        if (attempt != Attempt::refused) {
            return attempt == Attempt::done;
        }
        if (!refusals.take(error)) {
            return false;
        }
    }
    refusals.raise();
    return false;
}
