#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"

// "O&" converters of arguments declared as untyped managed collections: 1, or 0 with an error. None is a null
// reference; a wrapper gives its handle; a Python object that offers the protocol goes as itself (see
// `VariantArg`). The record borrows from the object.

int wrpPye_conv_py_to_clr_iter(PyObject* object, VariantArg* out);
int wrpPye_conv_py_to_clr_iterable(PyObject* object, VariantArg* out);
int wrpPye_conv_py_to_clr_idisposable(PyObject* object, VariantArg* out);
int wrpPye_conv_py_to_clr_icollection(PyObject* object, VariantArg* out);
int wrpPye_conv_py_to_clr_ilist(PyObject* object, VariantArg* out);
int wrpPye_conv_py_to_clr_array(PyObject* object, VariantArg* out);
int wrpPye_conv_py_to_clr_arrlist(PyObject* object, VariantArg* out);
int wrpPye_conv_py_to_clr_colbase(PyObject* object, VariantArg* out);
int wrpPye_conv_py_to_clr_rocolbase(PyObject* object, VariantArg* out);
