#include "wrappers/results.h"

#include "exchange/exchange_host.h"
#include "wrappers/clr_object.h"
#include "wrappers/markers.h"
#include "wrappers/types_map.h"

#include <cstdlib>

namespace {

enum CollectionKind { reference_result = 0, typed_result = 1, python_object_result = 2 };

void free_handle(void* handle) {
    ExchangeHost::get_instance().free_instance(handle);
}

// The registered type under the object's managed name, or null. Managed code that fails here gives no name,
// and its error is dropped: a look-up falls back in silence.
PyTypeObject* find_by_name(void* handle) {
    void** holder = ExchangeHost::get_instance().get_type_name(handle);
    if (holder == nullptr) {
        PyErr_Clear();
        return nullptr;
    }
    PyTypeObject* type = nullptr;
    if (!PyWrpTypesMap::get_instance().find(static_cast<const char16_t*>(*holder), type)) {
        type = nullptr;
    }
    // Only the holder: the text behind it stays, some bytes once a type.
    std::free(holder);
    return type;
}

// Null when no better type than the declared one is registered; a miss is remembered as well as a hit. No
// lock is held while managed code runs: two threads that look for one key find the same.
PyTypeObject* find_weak(void* handle, std::uint64_t key) {
    PyWrpTypesMap& types = PyWrpTypesMap::get_instance();
    PyTypeObject* type = nullptr;
    if (!types.find_weak(key, type)) {
        type = find_by_name(handle);
        types.add_weak(key, type);
    }
    return type;
}

PyObject* new_wrapper(void* handle, PyTypeObject* found, PyTypeObject* declared) {
    return fn_py_clr_type_generic_new(handle, found != nullptr ? found : declared);
}

// The registered type where it may stand in for the declared interface, else null.
PyTypeObject* find_implementation(void* handle, std::uint64_t key, PyTypeObject* declared) {
    PyTypeObject* found = find_weak(handle, key);
    return found != nullptr && fn_contains_implicit_ifc_markattr(found, declared) ? found : nullptr;
}

PyObject* returned_python_object(const PyCollectionArg& result) {
    return fn_new_ref(static_cast<PyObject*>(result.handle));
}

}  // namespace

PyObject* fn_py_clr_type_generic_new(void* handle, PyTypeObject* type) {
    PyObject* wrapper = type->tp_new(type, nullptr, nullptr);
    if (wrapper == nullptr) [[unlikely]] {
        free_handle(handle);
        return nullptr;
    }
    fn_wrapper_handle(wrapper) = handle;
    return wrapper;
}

PyObject* fn_conv_clr_btpobj_to_py_btpobj(const PyCollectionArg& result, PyTypeObject* declared) {
    if (result.handle == nullptr) {
        return fn_py_return_none();
    }
    PyTypeObject* found = result.kind == typed_result ? find_weak(result.handle, result.type_key) : nullptr;
    return new_wrapper(result.handle, found, declared);
}

PyObject* fn_conv_clr_absobj_to_py_absobj(const PyCollectionArg& result, PyTypeObject* declared) {
    if (result.handle == nullptr) {
        return fn_py_return_none();
    }
    if (result.kind == python_object_result) {
        return returned_python_object(result);
    }
    return new_wrapper(result.handle, find_weak(result.handle, result.type_key), declared);
}

PyObject* fn_conv_clr_ifcimpl_to_py_ifcimpl(const PyObjectOutArg& result, PyTypeObject* declared) {
    if (result.handle == nullptr) {
        return fn_py_return_none();
    }
    return new_wrapper(result.handle, find_implementation(result.handle, result.type_key, declared),
                       declared);
}

PyObject* fn_conv_clr_ifcimpl_to_py_ifcimpl_wps(const PyCollectionArg& result, PyTypeObject* declared) {
    if (result.handle == nullptr) {
        return fn_py_return_none();
    }
    if (result.kind == python_object_result) {
        return returned_python_object(result);
    }
    PyTypeObject* found = find_implementation(result.handle, result.type_key, declared);
    void* handle = result.handle;
    if (found == nullptr && result.kind == typed_result) {
        // The interface's wrapper is one of references, so the struct must be seen as an object. Boxing makes
        // a handle of its own; that of the struct ends here.
        const ExchangeHost& exchange = ExchangeHost::get_instance();
        void* boxed = exchange.box_stc_target(handle);
        if (boxed != handle) {
            exchange.free_struct(handle);
        }
        if (boxed == nullptr) {
            return PyErr_Occurred() != nullptr ? nullptr : fn_py_return_none();
        }
        handle = boxed;
    }
    return new_wrapper(handle, found, declared);
}

PyObject* fn_conv_clr_vlarr_to_py_vlarr(const VariantArg& result, PyTypeObject* first, PyTypeObject* second) {
    return fn_conv_clr_clsobj_to_py_clsobj(result.payload, result.kind == 0 ? first : second);
}

PyTypeObject* get_py_type_object_by_obj(void* handle, std::uint64_t type_key) {
    PyWrpTypesMap& types = PyWrpTypesMap::get_instance();
    PyTypeObject* type = nullptr;
    if (types.find(type_key, type)) {
        return type;
    }
    type = find_by_name(handle);
    if (type != nullptr) {
        types.add(type_key, type);
    }
    return type;
}

PyObject* fn_write_py_tpo(void* handle, std::int64_t type_key) {
    PyTypeObject* type = get_py_type_object_by_obj(handle, static_cast<std::uint64_t>(type_key));
    if (type == nullptr) {
        free_handle(handle);
        PyErr_SetString(PyExc_TypeError, "unknown wrapper type");
        return nullptr;
    }
    return fn_py_clr_type_generic_new(handle, type);
}

int fn_try_write_py_tpo(void* handle, std::int64_t type_key, PyObject** out) {
    PyTypeObject* type = get_py_type_object_by_obj(handle, static_cast<std::uint64_t>(type_key));
    if (type == nullptr) {
        free_handle(handle);
        return 0;
    }
    *out = fn_py_clr_type_generic_new(handle, type);
    return *out != nullptr ? 1 : -1;
}
