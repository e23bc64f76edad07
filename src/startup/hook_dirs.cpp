#include "startup/hook_dirs.h"

#include "generated/module_tree.h"
#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "startup/report.h"

namespace {

/// `dir`/`name`/`tail`, or `dir`/`tail` without a name.
PyObject* join(PyObject* function, PyObject* dir, const char* name, const char* tail) {
    const PyRef last = PyRef::steal(PyUnicode_FromString(tail));
    if (!last) {
        return nullptr;
    }
    if (name == nullptr) {
        return PyObject_CallFunctionObjArgs(function, dir, last.get(), nullptr);
    }
    const PyRef middle = PyRef::steal(PyUnicode_FromString(name));
    if (!middle) {
        return nullptr;
    }
    return PyObject_CallFunctionObjArgs(function, dir, middle.get(), last.get(), nullptr);
}

PyObject* wrpPy_bltp_FFFFFFFF_get_pyinstaller_hook_dirs(PyObject*, PyObject*) {
    static const char* names[] = {"voxlar", "pyreflection", "pygc", "pycore"};
    return fn_get_pyinstaller_hook_dirs(&wrpPy_mlds_1A881341_voxlar, names, 4, "__pyinstaller");
}

PyMethodDef wrpPy_mlmd_1A881341_voxlar[] = {
    {"get_pyinstaller_hook_dirs", wrpPy_bltp_FFFFFFFF_get_pyinstaller_hook_dirs, METH_NOARGS,
     "Function required by PyInstaller. Returns paths to module\nPyInstaller hooks. Not intended to be "
     "called "
     "explicitly.\n\n"},
    {nullptr, nullptr, 0, nullptr},
};

}  // namespace

PyModuleDef wrpPy_mlds_1A881341_voxlar =
    fn_make_module_definition("velbor.voxlar", wrpPy_mlmd_1A881341_voxlar);

PyObject* fn_get_pyinstaller_hook_dirs(PyModuleDef* definition, const char** names, long count,
                                       const char* tail) {
    PyObject* module = PyState_FindModule(definition);
    const PyRef file = PyRef::steal(module == nullptr ? nullptr : PyModule_GetFilenameObject(module));
    if (!file) {
        return nullptr;
    }
    const PyRef paths = PyRef::steal(PyImport_ImportModule("os.path"));
    if (!paths) {
        PyShlErr_UnableToImportModule("os.path");
        return nullptr;
    }
    const PyRef dir =
        PyRef::steal(PyObject_CallMethodObjArgs(paths.get(), PyWrpIdOsPath_DirName, file.get(), nullptr));
    const PyRef function = PyRef::steal(dir ? PyObject_GetAttr(paths.get(), PyWrpIdOsPath_Join) : nullptr);
    PyRef list = PyRef::steal(function ? PyList_New(count + 1) : nullptr);
    for (long i = 0; list && i <= count; ++i) {
        PyObject* path = join(function.get(), dir.get(), i == 0 ? nullptr : names[i - 1], tail);
        if (path == nullptr) {
            return nullptr;
        }
        PyList_SET_ITEM(list.get(), i, path);
    }
    return list.release();
}
