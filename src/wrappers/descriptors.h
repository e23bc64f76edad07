#pragma once

#include "startup/cpython.h"

// Descriptors for what the standard ones cannot do: a managed static field that reads the same from the class
// and from an instance, methods added to an enum class after it was made, and a name that is a static and an
// instance method at once. They have no setter, so an attribute set later on the class replaces them, where
// Python lets it.
//
// The objects keep their owning type alive, and its dictionary keeps them: the cycle collector knows them for
// that reason. The method and property records are static and not owned.

struct PyShFieldDescrObject {
    PyObject ob_base;
    PyTypeObject* type;  // owned
    PyGetSetDef* def;
};

struct PyShInstanceMethodDescrObject {
    PyObject ob_base;
    PyTypeObject* type;  // owned
    PyMethodDef* def;
};

struct PyShStaticMethodDescrObject {
    PyObject ob_base;
    PyTypeObject* type;  // owned
    PyMethodDef* def;
    PyObject* callable;  // owned, a PyShCMethodObject
};

struct PyShMixMethodDescrObject {
    PyObject ob_base;
    PyTypeObject* type;         // owned
    PyObject* static_callable;  // owned, a PyShCMethodObject
    PyMethodDef* def;           // of the instance form
};

/// A method with what it is bound to.
struct PyShCMethodObject {
    PyObject ob_base;
    PyMethodDef* def;
    PyObject* self;  // owned; null for a static method and for an unbound one
    PyObject* weak_references;
    PyTypeObject* type;  // owned
    ternaryfunc call;    // how arguments are taken, chosen once
};

/// Readied and added to the root module at the head of its builder.
extern PyTypeObject wrpPye_tyds_FFFFFFFF_FieldDescr;
extern PyTypeObject wrpPye_tyds_FFFFFFFF_MixMethodDescr;

/// Attached to no module, and readied when the first of their objects is made.
extern PyTypeObject wrpPye_tyds_FFFFFFFF_InstanceMethodDescr;
extern PyTypeObject wrpPye_tyds_FFFFFFFF_StaticMethodDescr;
extern PyTypeObject wrpPye_tyds_FFFFFFFF_MethodObject;

// Each gives a new object, or null with an error set. The records must outlive it.

/// Reads by the record's getter, which is called with a null object.
PyObject* PyShDescr_NewStaticField(PyTypeObject* type, PyGetSetDef* def);

/// Binds a new method object at each access.
PyObject* PyShDescr_NewInstanceMethod(PyTypeObject* type, PyMethodDef* def);

/// Gives the same callable at each access. The record needs METH_STATIC.
PyObject* PyShDescr_NewStaticMethod(PyTypeObject* type, PyMethodDef* def);

/// The static form when reached through the class, the instance form when reached through an object.
PyObject* PyShDescr_NewMixedMethod(PyTypeObject* type, PyMethodDef* static_def, PyMethodDef* instance_def);

/// `self` may be null.
PyObject* PyShCMethod_New(PyTypeObject* type, PyMethodDef* def, PyObject* self);
