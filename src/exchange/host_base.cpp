#include "exchange/host_base.h"

#include "exchange/binding.h"
#include "exchange/exchange_host.h"
#include "host/host_environment.h"
#include "startup/cpython.h"
#include "startup/report.h"

TypeHost::TypeHost(const char* managed_class, const char* const* names, void** slots, std::size_t count)
    : m_assembly(ExchangeHost::get_instance().get_assembly_name()),
      m_managed_class(managed_class),
      m_bound{names, slots, count, nullptr} {
    fn_guard_slots(m_bound);
    const HostEnvironment& host =
        *HostEnvironment::instance(nullptr, false, nullptr, nullptr, nullptr, nullptr);
    for (std::size_t i = 0; i < count && set_method_ptr(host, names[i], &slots[i]); ++i) {
    }
}

bool TypeHost::set_method_ptr(const HostEnvironment& host, const char* method, void** slot) {
    const int status = fn_bind_method(host, m_assembly, m_managed_class, method, slot);
    if (status == 0) {
        return true;
    }
    m_error_msg = missing_method_error_message(m_assembly, m_managed_class, method, status);
    m_is_not_valid = true;
    return false;
}

PyHostState fn_aggregate_host_state(const TypeHost& own, std::initializer_list<IsNotValidFn> references) {
    if (own.is_not_valid()) {
        return {true, false, own.error_msg()};
    }
    PyHostState state;
    for (const IsNotValidFn is_not_valid : references) {
        if (is_not_valid(state.error_msg)) {
            state.is_not_valid = true;
            state.is_reference_not_valid = true;
            break;
        }
    }
    return state;
}

void fn_raise_host_state(const PyHostState& state) {
    PyErr_SetString(PyExc_TypeError, state.error_msg.c_str());
    if (state.is_reference_not_valid) {
        PyShlErr_ChainFormat(PyExc_TypeError, "one or more refereced type is not initialized");
    }
}
