#include "pycore/bytes_as_stream.h"
#include "shared/sibling_module.h"
#include "startup/py_ref.h"

namespace {

PyModuleDef definition = fn_make_sibling_definition(
    "velbor.pycore", "Python values in the forms that managed code likes best.", nullptr);

}  // namespace

PyMODINIT_FUNC PyInit_pycore(void) {
    PyRef module = PyRef::steal(fn_make_sibling_module(definition, "velbor.pycore._ModuleVersionType"));
    if (!module || !fn_add_sibling_type(module.get(), &wrpPyl_tyds_BytesAsStream, "BytesAsStream")) {
        return nullptr;
    }
    return module.release();
}
