#include "wrappers/capsules.h"

PyObject* (*PyShCastOpResult_New)(int, PyObject*) = nullptr;
int (*wrpPyl_convcaps_py_to_clr_C08ECFAB_Type)(PyObject*, PyInterimArgBuilder*) = nullptr;
PyObject* (*wrpPyl_convcaps_clr_to_py_C08ECFAB_Type)(void*) = nullptr;
int (*wrpPyl_trancaps_py_to_clr_C08ECFAB_Type)(PyObject*, void**) = nullptr;
PyObject* (*wrpPyl_convcaps_clr_to_py_359C4ED8_Object)(void*) = nullptr;
int (*wrpPyl_trancaps_py_to_clr_359C4ED8_Object)(PyObject*, void**) = nullptr;
PyObject* (*wrpPyl_convcaps_clr_to_py_738AFABA_Enum)(void*) = nullptr;
