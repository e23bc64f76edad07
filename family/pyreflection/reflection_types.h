#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"

// The three wrappers of this module: `velbor.pyreflection.Object`, and `Type` and `Enum`, which derive from
// it. They have the layout, the slots and the markers of every wrapper of the family.

extern PyTypeObject wrpPyl_tyds_359C4ED8_Object;
extern PyTypeObject wrpPyl_tyds_C08ECFAB_Type;
extern PyTypeObject wrpPyl_tyds_738AFABA_Enum;

// Each type's three functions for the other modules of the family, in the order of the words of its capsule.

/// "O&" converter of an argument: 1, or 0 with TypeError. None gives a null handle. What is no wrapper of the
/// type but stands for one (a wrapper class for its type, a member of an enum class for its boxed value) is
/// made into one, which the builder owns.
int fn_conv_py_to_clr_object(PyObject* value, PyInterimArgBuilder* out);
int fn_conv_py_to_clr_type(PyObject* value, PyInterimArgBuilder* out);
int fn_conv_py_to_clr_enum(PyObject* value, PyInterimArgBuilder* out);

/// Makes a wrapper around a handle, which is consumed; None for a null handle, null with an error set.
PyObject* fn_conv_clr_to_py_object(void* handle);
PyObject* fn_conv_clr_to_py_type(void* handle);
PyObject* fn_conv_clr_to_py_enum(void* handle);

/// Reads the handle of a wrapper of the type or of one derived from it, borrowed; 0 without an error when the
/// value is none.
int fn_trans_py_to_clr_object(PyObject* value, void** out);
int fn_trans_py_to_clr_type(PyObject* value, void** out);
int fn_trans_py_to_clr_enum(PyObject* value, void** out);
