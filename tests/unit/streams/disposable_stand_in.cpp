// What the stream wrapper takes from the collections, over the test's object host.

#include "collections/interop_wrappers.h"
#include "exchange/object_host.h"
#include "streams_fixture.h"
#include "wrappers/clr_object.h"
#include "wrappers/results.h"

bool disposable_is_invalid = false;

bool wrpPye_bltp_idisposable_is_not_valid(std::string& message) {
    if (disposable_is_invalid) {
        message = "disposable host is not bound";
    }
    return disposable_is_invalid;
}

PyObject* wrpPye_bltp_idisposable_enter(PyObject* self, PyObject*) {
    return fn_new_ref(self);
}

PyObject* wrpPye_bltp_idisposable_exit(PyObject* self, PyObject*) {
    ObjectHost::get_instance().dispose(fn_wrapper_handle(self));
    return PyErr_Occurred() != nullptr ? nullptr : fn_py_return_none();
}
