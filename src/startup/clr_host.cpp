#include "startup/clr_host.h"

#include "exchange/exception_bridge.h"
#include "exchange/exchange_host.h"
#include "exchange/object_host.h"
#include "host/host_environment.h"
#include "marshal/bytes.h"
#include "marshal/strings.h"
#include "startup/cpython.h"
#include "wire/callback_tables.h"

namespace {

template <typename Function>
void* as_callback(Function* function) {
    return reinterpret_cast<void*>(function);
}

/// The order is part of the contract with the managed side: after the last call it may use every callback.
void hand_over_callbacks(const ExchangeHost& exchange) {
    exchange.set_exception_callback(as_callback(on_clr_exception));
    exchange.set_catch_and_clear_error_callback(as_callback(fn_catch_and_clear_py_error));
    exchange.set_u16_bytes_builder_callback(as_callback(fn_create_u16_buffer));
    exchange.set_py_str_builder_callback(as_callback(fn_conv_clr_string_to_py_string));
    exchange.set_py_unraisable_str_builder(as_callback(fn_conv_clr_string_to_py_unraisable));
    exchange.set_py_obj_api_callbacks(m_py_obj_api_callbacks);
    exchange.set_py_static_callbacks(get_all_py_wrapper_callbacks());
    exchange.set_py_generic_callbacks(get_all_pygn_generic_callbacks());
    exchange.set_py_bytes_builder_callback(as_callback(fn_conv_clr_bytes_to_py_bytes));
    exchange.init_services();
}

int fail(const char* message) {
    PyErr_SetString(PyExc_TypeError, message);
    return -1;
}

}  // namespace

// NOLINTBEGIN(performance-unnecessary-value-param): the texts are the call's own for as long as the runtime
// starts, and it runs once a process.
int initialize_clr_host(std::string netcore_version, const char* assembly_name, bool debug,
                        std::string family, std::string product) {
    // NOLINTEND(performance-unnecessary-value-param)
    if (fn_is_bridge_dead()) {
        return fail(ManagedCodeNotAvailable);
    }
    HostEnvironment::instance(netcore_version.c_str(), debug, family.c_str(), product.c_str(), nullptr,
                              nullptr);
    ExchangeHost& exchange = ExchangeHost::get_instance();
    if (!exchange.initialize(assembly_name)) {
        return fail(exchange.error_msg().c_str());
    }
    fn_install_fork_guard();
    hand_over_callbacks(exchange);
    const ObjectHost& object_host = ObjectHost::get_instance();
    if (object_host.is_not_valid()) {
        return fail(object_host.error_msg().c_str());
    }
    return 0;
}
