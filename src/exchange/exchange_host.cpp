#include "exchange/exchange_host.h"

#include "exchange/binding.h"
#include "host/host_environment.h"

#include <array>

namespace {

constexpr char ManagedClass[] = "Velbor.WrpGen.Interop.ExchangeHost";

constexpr const char* Names[] = {
#define VELBOR_NAME(operation, method, ...) method,
    VELBOR_EXCHANGE_HOST(VELBOR_NAME)
#undef VELBOR_NAME
};

// The slots in the order in which they are bound: that of the slots, but for one pair.
constexpr auto BindingOrder = [] {
    std::array<std::size_t, ExchangeHost::slot_count> order{};
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    order[ExchangeHost::slot_set_py_str_builder_callback] = ExchangeHost::slot_set_py_unraisable_str_builder;
    order[ExchangeHost::slot_set_py_unraisable_str_builder] = ExchangeHost::slot_set_py_str_builder_callback;
    return order;
}();

}  // namespace

// A constant-initialised object instead of a function-local one: freeing a handle pays for no guard.
ExchangeHost ExchangeHost::m_instance;

bool ExchangeHost::initialize(const char* assembly) {
    m_assembly = assembly;
    if (m_bound.slots == nullptr) {
        m_bound = {Names, m_slots, slot_count, nullptr};
        fn_guard_slots(m_bound);
    }
    const HostEnvironment& host =
        *HostEnvironment::instance(nullptr, false, nullptr, nullptr, nullptr, nullptr);
    for (const std::size_t slot : BindingOrder) {
        const int status = fn_bind_method(host, assembly, ManagedClass, Names[slot], &m_slots[slot]);
        if (status != 0) {
            m_error_msg = missing_method_error_message(assembly, ManagedClass, Names[slot], status);
            return false;
        }
    }
    return true;
}
