#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"

#include <cstdarg>

// Marker attributes: entries in a wrapper type's own dictionary by which the modules of the family know each
// other's wrappers without a shared base type. They are read from the type's own dictionary alone, never from
// its bases.
//
//   _velbor_clr_host            None: wrapper of a managed reference, Ellipsis: of a managed value
//   _velbor_clr_castable_obj    None, on enum classes Ellipsis; read by the sibling modules
//   _additional_interfaces      a set of wrapper types: where one of these is declared, the handle fits
//   _implicit_interfaces        a set of wrapper types: a result declared as one of these may have this type
//   _external_ancestor          a type; used in the family only

// Setting, after PyType_Ready. False on failure.

bool fn_set_obj_type_host_markattr(PyTypeObject* type);
bool fn_set_stc_type_host_markattr(PyTypeObject* type);
bool fn_set_castable_type_markattr(PyTypeObject* type, PyObject* value);
bool fn_set_external_ancestor_markattr(PyTypeObject* type, PyTypeObject* ancestor);

/// `count` interface types (PyTypeObject*), all of them readied, follow.
bool fn_set_additional_ifcs_markattr(PyTypeObject* type, int count, ...);
bool fn_set_implicit_ifcs_markattr(PyTypeObject* type, int count, ...);

/// The common body of the two above, with their arguments.
bool fn_set_any_ifcs_markattr(PyTypeObject* type, PyObject* key, int count, va_list interfaces);

// Testing. None of these leaves an error pending.

/// True for a wrapper of a managed reference, of any module of the family.
bool fn_is_refobj_has_host_markattr(PyObject* object);

/// True for a wrapper of any module of the family; `tag` becomes 0 for a reference, 1 for a value.
bool fn_is_instance_has_host_markattr(PyObject* object, int* tag);

bool fn_has_external_ancestor_markattr(PyObject* object, PyTypeObject* ancestor);

/// Asked about an argument, so the first parameter is an instance.
bool fn_contains_additional_ifc_markattr(PyObject* object, PyTypeObject* interface_type);

/// Asked about a type that was found in the registry.
bool fn_contains_implicit_ifc_markattr(PyTypeObject* type, PyTypeObject* interface_type);

/// The common body of the two above.
bool fn_contains_any_ifc_markattr(PyTypeObject* type, PyObject* key, PyTypeObject* interface_type);

/// True for a wrapper of this module that stands for a managed reference.
bool fn_is_this_module_clr_object(PyObject* object);

/// True for a wrapper of this module; `tag` becomes 0 for a reference, 1 for a value.
bool fn_is_this_module_clr_instance(PyObject* object, int* tag);

// Extraction: 1 when a handle was written, else 0 without an error. The handle is borrowed: the wrapper must
// outlive its use.

/// None gives a null payload and leaves the tag as the caller set it; a wrapper gives its tag and handle.
int fn_conv_py_obj_to_clr_gen_handle(PyObject* object, VariantArg* out);

/// The same, but refuses None.
int fn_conv_py_obj_to_clr_gen_not_null_handle(PyObject* object, VariantArg* out);

/// A wrapper of a managed reference; refuses None and wrappers of values.
int fn_conv_py_obj_to_clr_refobj_not_null_handle(PyObject* object, void** out);

/// No test at all, always 1: for an object that is known to be a wrapper.
int fn_py_unknown_to_clr_unknown(PyObject* object, void** out);
