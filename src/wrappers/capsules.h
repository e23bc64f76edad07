#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"

// Functions of the sibling modules, filled once at start-up from their capsules and never cleared. A sibling
// that owns one of these functions puts its own there.

/// Makes the result of a cast from a status and the converted object, of which it takes a reference of its
/// own; null stands for no object. From velbor.pygc.
extern PyObject* (*PyShCastOpResult_New)(int status, PyObject* value);

/// "O&" converter of a System.Type argument; the builder owns what it writes. From velbor.pyreflection, as
/// all below.
extern int (*wrpPyl_convcaps_py_to_clr_C08ECFAB_Type)(PyObject* value, PyInterimArgBuilder* out);

/// The same as a function, for tables that are fixed before the capsules are read.
inline int fn_conv_py_type_to_clr_type(PyObject* value, PyInterimArgBuilder* out) {
    return wrpPyl_convcaps_py_to_clr_C08ECFAB_Type(value, out);
}

/// Makes a System.Type wrapper; takes the handle over.
extern PyObject* (*wrpPyl_convcaps_clr_to_py_C08ECFAB_Type)(void* handle);

/// Reads the handle of a System.Type wrapper, borrowed; 0 without an error when the object is none.
extern int (*wrpPyl_trancaps_py_to_clr_C08ECFAB_Type)(PyObject* value, void** out);

/// Makes a System.Object wrapper; takes the handle over.
extern PyObject* (*wrpPyl_convcaps_clr_to_py_359C4ED8_Object)(void* handle);

/// Reads the handle of a System.Object wrapper, borrowed; 0 without an error when the object is none.
extern int (*wrpPyl_trancaps_py_to_clr_359C4ED8_Object)(PyObject* value, void** out);

/// Makes a System.Enum wrapper; takes the handle over.
extern PyObject* (*wrpPyl_convcaps_clr_to_py_738AFABA_Enum)(void* handle);
