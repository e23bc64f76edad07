#include "collections/common_wrappers.h"
#include "generated/module_tree.h"
#include "startup/clr_host.h"
#include "startup/identifiers.h"
#include "startup/import.h"
#include "startup/py_ref.h"
#include "startup/report.h"
#include "startup/version.h"
#include "types.h"
#include "wrappers/capsules.h"

// The import, step by step; each step runs only when the one before it succeeded, and names itself by a code
// when it fails. A failure after the runtime's start leaves the runtime up: it cannot be started twice in a
// process.

namespace {

constexpr const char* module_name = "velbor.voxlar";

// The versions of the sibling modules against which this module is built.
constexpr int RefVer_pyreflec_C6067AD5[] = {23, 7, 0, 0};
constexpr int RefVer_pygc_15FC0AB4[] = {23, 7, 0, 0};

/// A capsule's table of functions, or null with a report that names the capsule.
void** import_capsule(const char* name) {
    auto* table = static_cast<void**>(PyCapsule_Import(name, 0));
    if (table == nullptr) {
        PyShlErr_CapsuleImportError(name);
    }
    return table;
}

template <class Function>
void take(Function*& target, void* word) {
    target = reinterpret_cast<Function*>(word);
}

/// Takes the functions of velbor.pyreflection. 0, or -1 with a Python error set.
int wrpPyl_ciap_1A881341_voxlar() {
    const PyRef reflection = PyRef::steal(
        PyShImport_ImportRefModule(module_name, "velbor.pyreflection", RefVer_pyreflec_C6067AD5));
    if (!reflection) {
        return -1;
    }
    void** type = import_capsule("velbor.pyreflection._C_APIT_Type");
    if (type == nullptr) {
        return -1;
    }
    take(wrpPyl_convcaps_py_to_clr_C08ECFAB_Type, type[0]);
    take(wrpPyl_convcaps_clr_to_py_C08ECFAB_Type, type[1]);
    take(wrpPyl_trancaps_py_to_clr_C08ECFAB_Type, type[2]);
    void** object = import_capsule("velbor.pyreflection._C_APIT_Object");
    if (object == nullptr) {
        return -1;
    }
    take(wrpPyl_convcaps_clr_to_py_359C4ED8_Object, object[1]);
    take(wrpPyl_trancaps_py_to_clr_359C4ED8_Object, object[2]);
    void** enumeration = import_capsule("velbor.pyreflection._C_APIT_Enum");
    if (enumeration == nullptr) {
        return -1;
    }
    take(wrpPyl_convcaps_clr_to_py_738AFABA_Enum, enumeration[1]);
    return 0;
}

/// Takes the constructor of cast results from velbor.pygc.
bool take_cast_results() {
    const PyRef collector =
        PyRef::steal(PyShImport_ImportRefModule(module_name, "velbor.pygc", RefVer_pygc_15FC0AB4));
    if (!collector) {
        return false;
    }
    void** functions = import_capsule("velbor.pygc._C_APIF");
    if (functions == nullptr) {
        return false;
    }
    take(PyShCastOpResult_New, functions[0]);
    return true;
}

bool add_version(PyObject* module, const char* name, int major, int minor, const char* view) {
    PyRef version = PyRef::steal(PyShVersionAttr_Create(major, minor, 0, 0, view));
    if (!version || PyModule_AddObject(module, name, version.get()) < 0) {
        return false;
    }
    static_cast<void>(version.release());  // the module's now
    return true;
}

PyObject* fail(int code) {
    PyShlErr_ModulePyInitError(module_name, code);
    return nullptr;
}

}  // namespace

PyMODINIT_FUNC PyInit_voxlar(void) {
    fn_intern_identifiers();
    if (wrpPyl_ciap_1A881341_voxlar() < 0) {
        return fail(-1009);
    }
    if (!take_cast_results()) {
        return fail(-1008);
    }
    if (initialize_clr_host("3.1", "WrpInterop.Velbor.Voxlar", false, "velbor", "voxlar") < 0) {
        return fail(-1007);
    }
    PyRef module = PyRef::steal(wrpPy_mlit_1A881341_voxlar());
    if (!module) {
        return fail(-1006);
    }
    if (wrpPye_mlit_FFFFFFFF_common_wrappers(module.get()) == nullptr) {
        return fail(-1005);
    }
    if (PyShModule_AddType(module.get(), wrpPye_tyds_FFFFFFFF_ModuleVersion, "_ModuleVersionType") < 0) {
        return fail(-1004);
    }
    if (!add_version(module.get(), "VERSION", 23, 8, "23.8.0.0")) {
        return fail(-1001);
    }
    if (!add_version(module.get(), "_BACKWARD_COMPATIBILITY_THRESHOLD", 22, 6, "22.6.0.0")) {
        return fail(-1019);
    }
    return module.release();
}
