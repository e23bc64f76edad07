#include <cstdint>

#include "pygc/cast_result.h"
#include "shared/api_host.h"
#include "shared/sibling_module.h"
#include "startup/py_ref.h"

// The managed class "Velbor.WrpGen.Interop.Collector". A negative answer comes with a Python error.
#define VELBOR_COLLECTOR(X)                     \
    X(Collect, std::int32_t, (), ())            \
    X(CountLivingHandles, std::int32_t, (), ()) \
    X(GetTotalMemory, std::int64_t, (), ())

namespace {

VELBOR_API_HOST(CollectorHost, "Velbor.WrpGen.Interop.Collector", VELBOR_COLLECTOR);

template <typename Call>
PyObject* ask_collector(Call call) {
    if (fn_invalidate_api<CollectorHost>()) {
        return nullptr;
    }
    const std::int64_t answer = call(CollectorHost::get_instance());
    return PyErr_Occurred() == nullptr ? PyLong_FromLongLong(answer) : nullptr;
}

PyObject* collect(PyObject*, PyObject*) {
    if (fn_invalidate_api<CollectorHost>() || CollectorHost::get_instance().Collect() < 0 ||
        PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    Py_RETURN_NONE;
}

PyObject* living_handles(PyObject*, PyObject*) {
    return ask_collector([](const CollectorHost& host) { return host.CountLivingHandles(); });
}

PyObject* total_memory(PyObject*, PyObject*) {
    return ask_collector([](const CollectorHost& host) { return host.GetTotalMemory(); });
}

PyMethodDef functions[] = {
    {"collect", collect, METH_NOARGS,
     "collect($module, /)\n--\n\nRuns the managed collector with its finalizers, and gives back every Python "
     "object "
     "that\n"
     "managed code no longer uses."},
    {"living_handles", living_handles, METH_NOARGS,
     "living_handles($module, /)\n--\n\nHow many managed objects the wrappers of this process hold."},
    {"total_memory", total_memory, METH_NOARGS,
     "total_memory($module, /)\n--\n\nBytes that the managed heap holds, without a collection before."},
    {},
};

PyModuleDef definition = fn_make_sibling_definition(
    "velbor.pygc", "The managed garbage collector, and the results of casts.", functions);

// For the bridge; the order of the words is a wire format.
void* api_functions[] = {reinterpret_cast<void*>(fn_make_cast_result)};

}  // namespace

PyMODINIT_FUNC PyInit_pygc(void) {
    PyRef module = PyRef::steal(fn_make_sibling_module(definition, "velbor.pygc._ModuleVersionType"));
    if (!module || !fn_add_sibling_type(module.get(), &wrpPyl_tyds_CastResult, "CastResult") ||
        !fn_add_capsule(module.get(), "_C_APIF", "velbor.pygc._C_APIF", api_functions)) {
        return nullptr;
    }
    return module.release();
}
