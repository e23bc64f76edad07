#pragma once

#include "exchange/exchange_host.h"
#include "startup/cpython.h"

#include <cstddef>

// What a wrapper function holds between a managed call and the hand-over of its out-values. Whatever has not
// been adopted when the scope is left, on any way out, is released.

/// Managed handles of out-values. A managed entry point fills the buffer; `++` after a wrapper took over a
/// handle.
template <std::size_t N>
struct PyTrPinHandleStack {
    void* slots[N]{};
    unsigned adopted = 0;

    PyTrPinHandleStack() = default;
    PyTrPinHandleStack(const PyTrPinHandleStack&) = delete;
    PyTrPinHandleStack& operator=(const PyTrPinHandleStack&) = delete;
    ~PyTrPinHandleStack() {
        for (std::size_t i = adopted; i < N; ++i) {
            if (slots[i] != nullptr) {
                ExchangeHost::get_instance().free_instance(slots[i]);
            }
        }
    }

    void** operator[](std::size_t i) { return &slots[i]; }
    void** get_buffer() { return slots; }
    PyTrPinHandleStack& operator++() {
        ++adopted;
        return *this;
    }
};

/// New references to the Python values of out-parameters, until they stand in the caller's lists.
template <std::size_t N>
struct PyTrPyObjStack {
    PyObject* slots[N]{};
    unsigned adopted = 0;

    PyTrPyObjStack() = default;
    PyTrPyObjStack(const PyTrPyObjStack&) = delete;
    PyTrPyObjStack& operator=(const PyTrPyObjStack&) = delete;
    ~PyTrPyObjStack() {
        for (std::size_t i = adopted; i < N; ++i) {
            Py_XDECREF(slots[i]);
        }
    }

    PyObject** operator[](std::size_t i) { return &slots[i]; }
    PyObject** get_buffer() { return slots; }
    PyTrPyObjStack& operator++() {
        ++adopted;
        return *this;
    }
};
