#pragma once

#include <cstddef>

#include "exchange/host_base.h"
#include "shared/runtime_attachment.h"

// Hosts of the managed classes that the sibling modules bring themselves. A class is one list,
// X(managed method, result, (parameters), (arguments)), from which its names, slots and forwarders are made.

#define VELBOR_API_COUNT(...) +1
#define VELBOR_API_NAME(method, ...) #method,
#define VELBOR_API_SLOT(method, ...) slot_##method,
#define VELBOR_API_FORWARD(method, result, parameters, arguments)                      \
    result method parameters const {                                                   \
        return reinterpret_cast<result(*) parameters>(slots[slot_##method]) arguments; \
    }

#define VELBOR_API_HOST(Host, managed_class, METHODS)                      \
    class Host final : public SlottedHost<0 METHODS(VELBOR_API_COUNT)> {   \
    public:                                                                \
        static Host& get_instance() {                                      \
            static Host host;                                              \
            return host;                                                   \
        }                                                                  \
        METHODS(VELBOR_API_FORWARD)                                        \
                                                                           \
    private:                                                               \
        enum Slot : std::size_t { METHODS(VELBOR_API_SLOT) };              \
        static constexpr const char* names[] = {METHODS(VELBOR_API_NAME)}; \
        Host() : SlottedHost(managed_class, names) {}                      \
    }

/// The cast operations, as every wrapped class has them. `Argument` is the form of what is to be cast: a
/// handle, or a record where a struct may be cast, too.
#define VELBOR_API_CASTS(X, Argument)                                       \
    X(btp_TypeOf, int, (void** out), (out))                                 \
    X(btp_CastTo, int, (const VariantArg* value, void** out), (value, out)) \
    X(btp_CastAs, int, (Argument value, void** out), (value, out))          \
    X(btp_IsAssignable, int, (Argument value), (value))                     \
    X(btp_ReInterpretObj, int, (void* handle, void** out), (handle, out))

/// The step before any use of a host: true, with a Python error set, when there is no runtime or a managed
/// method is missing.
template <typename Host>
bool fn_invalidate_api() {
    if (!fn_attach_to_runtime()) {
        return true;
    }
    static const PyHostState state = fn_aggregate_host_state(Host::get_instance(), {});
    return fn_report_host_state(state);
}
