#include "pyreflection/reflection_types.h"
#include "shared/sibling_module.h"
#include "startup/py_ref.h"
#include "startup/report.h"
#include "wrappers/capsules.h"
#include "wrappers/markers.h"

namespace {

PyModuleDef definition = fn_make_sibling_definition(
    "velbor.pyreflection", "Managed types, objects and enum values, whatever their class.", nullptr);

// For the other modules of the family; the order of the words is a wire format.
struct Capsule {
    const char* attribute;
    const char* dotted_name;
    void* words[3];
};

template <typename Function>
void* as_word(Function* function) {
    return reinterpret_cast<void*>(function);
}

Capsule capsules[] = {
    {"_C_APIT_Type",
     "velbor.pyreflection._C_APIT_Type",
     {as_word(fn_conv_py_to_clr_type), as_word(fn_conv_clr_to_py_type), as_word(fn_trans_py_to_clr_type)}},
    {"_C_APIT_Object",
     "velbor.pyreflection._C_APIT_Object",
     {as_word(fn_conv_py_to_clr_object), as_word(fn_conv_clr_to_py_object),
      as_word(fn_trans_py_to_clr_object)}},
    {"_C_APIT_Enum",
     "velbor.pyreflection._C_APIT_Enum",
     {as_word(fn_conv_py_to_clr_enum), as_word(fn_conv_clr_to_py_enum), as_word(fn_trans_py_to_clr_enum)}},
};

// Cast results belong to velbor.pygc, which this module does not need for being imported: its constructor is
// taken at the first cast, and then called directly.
PyObject* import_cast_results(int status, PyObject* value) {
    constexpr char name[] = "velbor.pygc._C_APIF";
    auto* table = static_cast<void**>(PyCapsule_Import(name, 0));
    if (table == nullptr) {
        PyShlErr_CapsuleImportError(name);
        return nullptr;
    }
    PyShCastOpResult_New = reinterpret_cast<PyObject* (*)(int, PyObject*)>(table[0]);
    return PyShCastOpResult_New(status, value);
}

// The shared code of the wrappers reaches these functions through the same pointers in every module.
void fill_own_pointers() {
    PyShCastOpResult_New = import_cast_results;
    wrpPyl_convcaps_py_to_clr_C08ECFAB_Type = fn_conv_py_to_clr_type;
    wrpPyl_convcaps_clr_to_py_C08ECFAB_Type = fn_conv_clr_to_py_type;
    wrpPyl_trancaps_py_to_clr_C08ECFAB_Type = fn_trans_py_to_clr_type;
    wrpPyl_convcaps_clr_to_py_359C4ED8_Object = fn_conv_clr_to_py_object;
    wrpPyl_trancaps_py_to_clr_359C4ED8_Object = fn_trans_py_to_clr_object;
    wrpPyl_convcaps_clr_to_py_738AFABA_Enum = fn_conv_clr_to_py_enum;
}

bool add_wrapper(PyObject* module, PyTypeObject* type, const char* name) {
    return fn_add_sibling_type(module, type, name) && fn_set_obj_type_host_markattr(type) &&
           fn_set_castable_type_markattr(type, Py_None);
}

}  // namespace

PyMODINIT_FUNC PyInit_pyreflection(void) {
    fill_own_pointers();
    PyRef module = PyRef::steal(fn_make_sibling_module(definition, "velbor.pyreflection._ModuleVersionType"));
    if (!module || !add_wrapper(module.get(), &wrpPyl_tyds_359C4ED8_Object, "Object") ||
        !add_wrapper(module.get(), &wrpPyl_tyds_C08ECFAB_Type, "Type") ||
        !add_wrapper(module.get(), &wrpPyl_tyds_738AFABA_Enum, "Enum")) {
        return nullptr;
    }
    for (Capsule& capsule : capsules) {
        if (!fn_add_capsule(module.get(), capsule.attribute, capsule.dotted_name, capsule.words)) {
            return nullptr;
        }
    }
    return module.release();
}
