#pragma once

#include "marshal/nullable.h"
#include "marshal/records.h"
#include "startup/cpython.h"

#include <cstdint>

// Managed results as Python objects. Every conversion consumes the managed handle, also when it fails, and
// gives a new reference or null with an error set. A null handle is None, without a look at the registry.

/// A new wrapper of exactly `type` around `handle`, without a run of `tp_init`.
PyObject* fn_py_clr_type_generic_new(void* handle, PyTypeObject* type);

/// Exactly the declared type, without a look-up: results declared as a class or a struct.
[[nodiscard]] inline PyObject* fn_conv_clr_clsobj_to_py_clsobj(void* handle, PyTypeObject* declared) {
    return handle == nullptr ? fn_py_return_none() : fn_py_clr_type_generic_new(handle, declared);
}

/// A concrete collection: the registered type when the managed side asks for the look-up (kind 1), else the
/// declared one.
PyObject* fn_conv_clr_btpobj_to_py_btpobj(const PyCollectionArg& result, PyTypeObject* declared);

/// An abstract class or a stream: the registered type, else the declared one; the caller's own Python object
/// comes back as itself (kind 2).
PyObject* fn_conv_clr_absobj_to_py_absobj(const PyCollectionArg& result, PyTypeObject* declared);

/// An interface: the registered type if it lists the interface as implicit, else the interface's wrapper.
PyObject* fn_conv_clr_ifcimpl_to_py_ifcimpl(const PyObjectOutArg& result, PyTypeObject* declared);

/// An interface of a collection: as above, and the caller's own Python object comes back as itself (kind 2).
/// A struct (kind 1) that must take the interface's wrapper is boxed first.
PyObject* fn_conv_clr_ifcimpl_to_py_ifcimpl_wps(const PyCollectionArg& result, PyTypeObject* declared);

/// A reference as `first` (kind 0), anything else as `second`.
PyObject* fn_conv_clr_vlarr_to_py_vlarr(const VariantArg& result, PyTypeObject* first, PyTypeObject* second);

/// The registered type of a managed object, borrowed; null without an error when there is none. The handle
/// stays with the caller. Finds by the type key, or once a type by its managed name.
PyTypeObject* get_py_type_object_by_obj(void* handle, std::uint64_t type_key);

// Callbacks of the managed side for values of open type. The handle is consumed.

/// A wrapper by the run-time type; TypeError when no type is registered.
PyObject* fn_write_py_tpo(void* handle, std::int64_t type_key);

/// The same with 1 and the wrapper in `out`, -1 with an error, or 0 without one when no type is registered.
int fn_try_write_py_tpo(void* handle, std::int64_t type_key, PyObject** out);
