#pragma once

#include "exchange/host_base.h"

#include <cstdint>

struct VariantArg;

// The managed class "Velbor.WrpGen.Interop.ObjectHost" in slot and binding order:
// X(operation, managed method, result, (parameters), (arguments)).
#define VELBOR_OBJECT_HOST(X)                                                                           \
    X(to_string_of_obj, "ToStringOfObj", std::int32_t, (void* handle, void** text), (handle, text))     \
    X(to_string_of_stc, "ToStringOfStc", std::int32_t, (void* handle, void** text), (handle, text))     \
    X(get_hash_code_of_obj, "GetHashOfObj", std::int32_t, (void* handle), (handle))                     \
    X(get_hash_code_of_stc, "GetHashOfStc", std::int32_t, (void* handle), (handle))                     \
    X(equals_of_obj, "IsEqualsOfObj", std::int32_t, (void* handle, VariantArg* other), (handle, other)) \
    X(equals_of_stc, "IsEqualsOfStc", std::int32_t, (void* handle, VariantArg* other), (handle, other)) \
    X(is_type_of, "IsTypeOf", std::int32_t, (void* handle, VariantArg* type), (handle, type))           \
    X(get_type_name, "GetTypeName", std::int32_t, (VariantArg * type, void** text), (type, text))       \
    X(get_obj_type, "GetObjType", std::int32_t, (void* handle, void** type), (handle, type))            \
    X(get_stc_type, "GetStcType", std::int32_t, (void* handle, void** type), (handle, type))            \
    X(dispose, "Dispose", void, (void* handle), (handle))

/// What every managed object and struct offers. Bound during the import; a method that is missing fails the
/// import.
///
/// The string operations answer 1 when `*text` holds a new `str`; the type operations answer 0 with a Python
/// error on failure, and otherwise give a new handle; `equals` answers in its low byte.
class ObjectHost final : HostSlots<11>, public TypeHost, public SingleHost<ObjectHost> {
public:
    ObjectHost();

    enum Slot : std::size_t {
#define VELBOR_SLOT(operation, ...) slot_##operation,
        VELBOR_OBJECT_HOST(VELBOR_SLOT)
#undef VELBOR_SLOT
            slot_count
    };

#define VELBOR_FORWARD(operation, method, result, parameters, arguments)                  \
    result operation parameters const {                                                   \
        return reinterpret_cast<result(*) parameters>(slots[slot_##operation]) arguments; \
    }
    VELBOR_OBJECT_HOST(VELBOR_FORWARD)
#undef VELBOR_FORWARD
};
