#pragma once

#include "exchange/host_base.h"
#include "marshal/records.h"

#include <cstdint>

// The managed class "Velbor.WrpGen.Interop.SiApiStream" in binding order:
// X(operation, managed method, result, (parameters), (arguments)).
#define VELBOR_STREAM_HOST(X)                                                                                \
    X(can_read, "CanRead", unsigned char, (void* handle), (handle))                                          \
    X(can_seek, "CanSeek", unsigned char, (void* handle), (handle))                                          \
    X(can_write, "CanWrite", unsigned char, (void* handle), (handle))                                        \
    X(length, "Length", std::int64_t, (void* handle), (handle))                                              \
    X(position, "Position", std::int64_t, (void* handle), (handle))                                          \
    X(close, "Close", void, (void* handle), (handle))                                                        \
    X(flush, "Flush", void, (void* handle), (handle))                                                        \
    X(read, "Read", int, (void* handle, void* buffer, int count), (handle, buffer, count))                   \
    X(seek, "Seek", std::int64_t, (void* handle, std::int64_t offset, int whence), (handle, offset, whence)) \
    X(set_length, "SetLength", std::int64_t, (void* handle, int use_position, std::int64_t size),            \
      (handle, use_position, size))                                                                          \
    X(write, "Write", void, (void* handle, const void* buffer, int count), (handle, buffer, count))          \
    X(btp_IsAssignable, "btp_IsAssignable", int, (void* object), (object))                                   \
    X(btp_TypeOf, "btp_TypeOf", int, (void** type), (type))                                                  \
    X(btp_CastTo, "btp_CastTo", int, (const VariantArg* object, void** out), (object, out))                  \
    X(btp_ReInterpretObj, "btp_ReInterpretObj", int, (void* object, void** out), (object, out))              \
    X(btp_CastAs, "btp_CastAs", int, (const VariantArg* object, void** out), (object, out))

/// The managed side of System.IO.Stream. A failure leaves a Python error pending, whatever is returned.
/// `whence` counts as in Python: 0 start, 1 current, 2 end. `read` and `write` work on the caller's memory
/// directly.
///
/// "btp_IsAssignable" gets a bare handle from the argument converter and the address of a VariantArg from the
/// method
/// `_is_assignable`; the managed side takes both.
class PyHost_ph_Stream final : HostSlots<16>, public TypeHost, public SingleHost<PyHost_ph_Stream> {
public:
    PyHost_ph_Stream();

    enum Slot : std::size_t {
#define VELBOR_SLOT(operation, ...) slot_##operation,
        VELBOR_STREAM_HOST(VELBOR_SLOT)
#undef VELBOR_SLOT
            slot_count
    };

#define VELBOR_FORWARD(operation, method, result, parameters, arguments)                  \
    result operation parameters const {                                                   \
        return reinterpret_cast<result(*) parameters>(slots[slot_##operation]) arguments; \
    }
    VELBOR_STREAM_HOST(VELBOR_FORWARD)
#undef VELBOR_FORWARD
};
