#pragma once

#include "startup/cpython.h"

#include <utility>

/// One owned reference to a Python object, or none. Made from a reference that is taken over (`steal`) or
/// from one that stays with its holder (`borrow`); given away only by `release`.
class PyRef {
public:
    PyRef() noexcept = default;
    PyRef(PyRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    PyRef& operator=(PyRef&& other) noexcept {
        PyRef old(std::move(*this));
        m_object = std::exchange(other.m_object, nullptr);
        return *this;
    }
    PyRef(const PyRef&) = delete;
    PyRef& operator=(const PyRef&) = delete;
    ~PyRef() { Py_XDECREF(m_object); }

    /// Takes over a new reference; null is a failed call's result.
    [[nodiscard]] static PyRef steal(PyObject* object) noexcept { return PyRef(object); }

    /// Adds a reference to a borrowed one; null stays null.
    [[nodiscard]] static PyRef borrow(PyObject* object) noexcept {
        Py_XINCREF(object);
        return PyRef(object);
    }

    [[nodiscard]] PyObject* get() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

    /// Hands the reference to the caller.
    [[nodiscard]] PyObject* release() noexcept { return std::exchange(m_object, nullptr); }

private:
    explicit PyRef(PyObject* object) noexcept : m_object(object) {}

    PyObject* m_object = nullptr;
};
