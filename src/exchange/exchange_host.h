#pragma once

#include "exchange/fork_guard.h"

#include <cstddef>
#include <string>

struct VariantArg;

// The managed class "Velbor.WrpGen.Interop.ExchangeHost" in slot order:
// X(operation, managed method, result, (parameters), (arguments)).
#define VELBOR_EXCHANGE_HOST(X)                                                                       \
    X(get_type_name, "GetTypeName", void**, (void* handle), (handle))                                 \
    X(set_exception_callback, "SetExceptionCallback", void, (void* callback), (callback))             \
    X(set_catch_and_clear_error_callback, "SetCatchAndClearErrorCallback", void, (void* callback),    \
      (callback))                                                                                     \
    X(set_u16_bytes_builder_callback, "SetU16StrBuilderCallback", void, (void* callback), (callback)) \
    X(set_py_str_builder_callback, "SetPyStrBuilderCallback", void, (void* callback), (callback))     \
    X(set_py_unraisable_str_builder, "SetPyUnraisableStrBuilderCallback", void, (void* callback),     \
      (callback))                                                                                     \
    X(set_py_bytes_builder_callback, "SetPyBytesBuilderCallback", void, (void* callback), (callback)) \
    X(set_py_obj_api_callbacks, "SetPyObjApiCallbacks", void, (void** table), (table))                \
    X(set_py_static_callbacks, "SetPyStaticCallbacks", void, (void*** tables), (tables))              \
    X(set_py_generic_callbacks, "SetPyGenericCallbacks", void, (void*** tables), (tables))            \
    X(free_pending_args, "FreePendingArgs", void, (VariantArg * args, int count), (args, count))      \
    X(free_instance, "FreeInstance", void, (void* handle), (handle))                                  \
    X(free_struct, "FreeInstance", void, (void* handle), (handle))                                    \
    X(init_services, "InitServices", void, (), ())                                                    \
    X(box_stc_target, "BoxStcTarget", void*, (void* handle), (handle))

/// The service calls of the managed side: handing over the callbacks, freeing handles. Bound during the
/// import; a method that is missing fails the import. `free_struct` is bound to "FreeInstance" too: managed
/// code makes no difference between the handle of an object and that of a struct.
///
/// `get_type_name` gives a holder of one pointer to a zero-terminated UTF-16 text (see fn_create_u16_buffer);
/// the caller gives the holder to `free`. `box_stc_target` gives a new handle.
class ExchangeHost {
public:
    ExchangeHost(const ExchangeHost&) = delete;
    ExchangeHost& operator=(const ExchangeHost&) = delete;

    static ExchangeHost& get_instance() noexcept { return m_instance; }

    /// Binds all methods in `assembly`, whose text must outlive the process. False, with `error_msg`, at the
    /// first that is missing. May run again after a failed import.
    bool initialize(const char* assembly);

    /// Null before `initialize`.
    const char* get_assembly_name() const noexcept { return m_assembly; }
    const std::string& error_msg() const noexcept { return m_error_msg; }

    enum Slot : std::size_t {
#define VELBOR_SLOT(operation, ...) slot_##operation,
        VELBOR_EXCHANGE_HOST(VELBOR_SLOT)
#undef VELBOR_SLOT
            slot_count
    };

#define VELBOR_FORWARD(operation, method, result, parameters, arguments)                    \
    result operation parameters const {                                                     \
        return reinterpret_cast<result(*) parameters>(m_slots[slot_##operation]) arguments; \
    }
    VELBOR_EXCHANGE_HOST(VELBOR_FORWARD)
#undef VELBOR_FORWARD

private:
    constexpr ExchangeHost() = default;

    static ExchangeHost m_instance;

    void* m_slots[slot_count]{};
    const char* m_assembly = nullptr;
    std::string m_error_msg;
    BoundSlots m_bound{};
};
