#pragma once

#include "collections/collection_slots.h"
#include "collections/interop_wrappers.h"
#include "wrappers/results.h"
#include "wrappers/type_object.h"

// The pieces of which the type objects of the interop and the generic wrappers are put together.

/// The next element of an enumerator; null with StopIteration at its end, or with the managed error.
template <class Element, class Host>
PyObject* fn_next_element(const Host& host, void* handle) {
    typename Element::Out out{};
    const int status = host.move_next(handle, &out);
    if (status == 0) [[likely]] {
        return Element::to_python(out);
    }
    if (status == 1) {
        PyErr_SetNone(PyExc_StopIteration);
    }
    return nullptr;
}

/// A new enumerator of an enumerable, as the registered type that implements it or as `declared`.
template <class Host>
PyObject* fn_new_enumerator(const Host& host, void* handle, PyTypeObject& declared) {
    PyObjectOutArg enumerator{};
    if (host.get_enumerator(handle, &enumerator) < 0) {
        return nullptr;
    }
    return fn_conv_clr_ifcimpl_to_py_ifcimpl(enumerator, &declared);
}

// Rows of method tables ------------------------------------------------------------------------------------

// clang-format off
#define VELBOR_ROW_APPEND(Slots) {"append", Slots::append, METH_O, nullptr}
#define VELBOR_ROW_INSERT(Slots) {"insert", Slots::insert, METH_VARARGS, nullptr}
#define VELBOR_ROW_EXTEND(Slots) {"extend", Slots::extend, METH_O, nullptr}
#define VELBOR_ROW_REMOVE(Slots) {"remove", Slots::remove, METH_O, nullptr}
#define VELBOR_ROW_POP(Slots) {"pop", Slots::pop, METH_VARARGS, nullptr}
#define VELBOR_ROW_CLEAR(Slots) {"clear", Slots::clear, METH_NOARGS, nullptr}
#define VELBOR_ROW_INDEX(Slots) {"index", Slots::index, METH_VARARGS, nullptr}
#define VELBOR_ROW_COUNT(Slots) {"count", Slots::count, METH_O, nullptr}
#define VELBOR_ROW_CONTAINS(Slots) {"contains", Slots::contains, METH_O, nullptr}
#define VELBOR_ROW_SORT(Slots) {"sort", fn_as_cfunction(Slots::sort), METH_VARARGS | METH_KEYWORDS, nullptr}
#define VELBOR_ROW_REVERSE(Slots) {"reverse", Slots::reverse, METH_NOARGS, nullptr}
#define VELBOR_ROW_COPY(Slots) {"copy", Slots::copy, METH_NOARGS, nullptr}
#define VELBOR_ROW_COPY_WALKING(Slots) {"copy", Slots::copy_walking, METH_NOARGS, nullptr}
#define VELBOR_GET_TYPE_ROW {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr}
#define VELBOR_LAST_ROW {nullptr, nullptr, 0, nullptr}
#define VELBOR_LENGTH_PROPERTY(Slots) {"length", Slots::get_length, nullptr, nullptr, nullptr}

#define VELBOR_DISPOSABLE_ROWS                                            \
    {"__enter__", wrpPye_bltp_idisposable_enter, METH_NOARGS, nullptr},   \
    {"__exit__", wrpPye_bltp_idisposable_exit, METH_VARARGS, nullptr}
// clang-format on

/// Fixed length, element access: the order of the untyped array and of every typed one.
#define VELBOR_ARRAY_ROWS(Slots)                                                                         \
    VELBOR_ROW_INDEX(Slots), VELBOR_ROW_COUNT(Slots), VELBOR_ROW_SORT(Slots), VELBOR_ROW_REVERSE(Slots), \
        VELBOR_ROW_COPY(Slots), VELBOR_ROW_CONTAINS(Slots)

/// A concrete list: the order of the untyped one and of every typed one.
#define VELBOR_LIST_ROWS(Slots)                                                                             \
    VELBOR_ROW_EXTEND(Slots), VELBOR_ROW_APPEND(Slots), VELBOR_ROW_INSERT(Slots), VELBOR_ROW_REMOVE(Slots), \
        VELBOR_ROW_POP(Slots), VELBOR_ROW_CLEAR(Slots), VELBOR_ROW_INDEX(Slots), VELBOR_ROW_COUNT(Slots),   \
        VELBOR_ROW_SORT(Slots), VELBOR_ROW_REVERSE(Slots), VELBOR_ROW_COPY(Slots),                          \
        VELBOR_ROW_CONTAINS(Slots)

// Slot tables ------------------------------------------------------------------------------------------

/// A collection without element access.
template <class Slots>
constexpr PySequenceMethods fn_walked_sequence() {
    PySequenceMethods table{};
    table.sq_length = Slots::sq_length;
    table.sq_concat = Slots::sq_concat_walking;
    table.sq_repeat = Slots::sq_repeat_walking;
    table.sq_contains = Slots::sq_contains;
    return table;
}

/// A collection without element access that can grow.
template <class Slots>
constexpr PySequenceMethods fn_growing_walked_sequence() {
    PySequenceMethods table = fn_walked_sequence<Slots>();
    table.sq_inplace_concat = Slots::sq_inplace_concat;
    table.sq_inplace_repeat = Slots::sq_inplace_repeat;
    return table;
}

/// Element access, fixed length.
template <class Slots>
constexpr PySequenceMethods fn_array_sequence() {
    PySequenceMethods table{};
    table.sq_length = Slots::sq_length;
    table.sq_concat = Slots::sq_concat;
    table.sq_repeat = Slots::sq_repeat;
    table.sq_item = Slots::sq_item;
    table.sq_ass_item = Slots::sq_ssitem;
    table.sq_contains = Slots::sq_contains;
    return table;
}

/// Element access, any length.
template <class Slots>
constexpr PySequenceMethods fn_list_sequence() {
    PySequenceMethods table = fn_array_sequence<Slots>();
    table.sq_inplace_concat = Slots::sq_inplace_concat;
    table.sq_inplace_repeat = Slots::sq_inplace_repeat;
    return table;
}

// The tables themselves, one of each for each `Slots`. Type objects keep their addresses.

template <class Slots>
constinit inline PyGetSetDef length_properties[] = {VELBOR_LENGTH_PROPERTY(Slots), {}};

template <class Slots>
constinit inline PySequenceMethods walked_sequence = fn_walked_sequence<Slots>();

template <class Slots>
constinit inline PySequenceMethods growing_walked_sequence = fn_growing_walked_sequence<Slots>();

template <class Slots>
constinit inline PySequenceMethods array_sequence = fn_array_sequence<Slots>();

template <class Slots>
constinit inline PySequenceMethods list_sequence = fn_list_sequence<Slots>();

template <class Slots>
constinit inline PyMappingMethods length_mapping = {Slots::sq_length, nullptr, nullptr};

template <class Slots>
constinit inline PyMappingMethods item_mapping = {Slots::sq_length, Slots::mp_subscript,
                                                  Slots::mp_ssubscript};

/// What distinguishes one collection wrapper type from another. A null member leaves its slot empty.
struct CollectionTypeParts {
    const char* name;  // dotted
    PyMethodDef* methods;
    PyGetSetDef* properties = nullptr;
    PyTypeObject* base = nullptr;
    newfunc create;
    getiterfunc iterate = nullptr;
    iternextfunc next = nullptr;
    PySequenceMethods* sequence = nullptr;
    PyMappingMethods* mapping = nullptr;
};

constexpr PyTypeObject fn_make_collection_type(const CollectionTypeParts& parts) {
    PyTypeObject type = fn_make_interop_type({.name = parts.name,
                                              .methods = parts.methods,
                                              .properties = parts.properties,
                                              .base = parts.base,
                                              .create = parts.create,
                                              .iterate = parts.iterate,
                                              .sequence = parts.sequence});
    type.tp_iternext = parts.next;
    type.tp_as_mapping = parts.mapping;
    return type;
}
