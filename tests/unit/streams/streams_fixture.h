#pragma once

#include "streams/stream_wrapper.h"
#include "support/managed_side.h"
#include "wrappers/clr_object.h"
#include "wrappers/markers.h"
#include "wrappers/results.h"

#include <algorithm>
#include <climits>
#include <cstring>

/// Set before the first use of the stream type: the type that it refers to cannot be used.
extern bool disposable_is_invalid;

/// The managed stream of a test: bytes in memory, and what it can do.
struct ManagedStream {
    std::string data;
    std::int64_t position = 0;
    bool can_read = true;
    bool can_seek = true;
    bool can_write = true;
    int most = INT_MAX;  // bytes that one read gives
};

inline ManagedStream managed_stream;

namespace stream_entries {

constexpr char Class[] = "Velbor.WrpGen.Interop.SiApiStream";

inline ManagedSide& side() {
    return ManagedSide::instance();
}

inline unsigned char can_read(void*) {
    return !side().enter("CanRead") && managed_stream.can_read ? 9 : 0;
}
inline unsigned char can_seek(void*) {
    return !side().enter("CanSeek") && managed_stream.can_seek ? 1 : 0;
}
inline unsigned char can_write(void*) {
    return !side().enter("CanWrite") && managed_stream.can_write ? 1 : 0;
}
inline std::int64_t length(void*) {
    return static_cast<std::int64_t>(managed_stream.data.size());
}
inline std::int64_t position(void*) {
    return side().enter("Position") ? 0 : managed_stream.position;
}
inline void close(void*) {
    side().enter("Close");
}
inline void flush(void*) {
    side().enter("Flush");
}

inline int read(void*, void* buffer, int count) {
    if (side().enter("Read")) {
        return 0;
    }
    side().record(std::to_string(count));
    const auto rest = length(nullptr) - managed_stream.position;
    const auto given = std::min<std::int64_t>({rest, count, managed_stream.most});
    std::memcpy(buffer, managed_stream.data.data() + managed_stream.position,
                static_cast<std::size_t>(given));
    managed_stream.position += given;
    return static_cast<int>(given);
}

inline std::int64_t seek(void*, std::int64_t offset, int whence) {
    if (side().enter("Seek")) {
        return 0;
    }
    side().record(std::to_string(offset) + "/" + std::to_string(whence));
    const std::int64_t from = whence == 0 ? 0 : whence == 1 ? managed_stream.position : length(nullptr);
    return managed_stream.position = from + offset;
}

inline std::int64_t set_length(void*, int use_position, std::int64_t size) {
    if (side().enter("SetLength")) {
        return 0;
    }
    side().record(std::to_string(use_position) + "/" + std::to_string(size));
    const std::int64_t cut = use_position != 0 ? managed_stream.position : size;
    managed_stream.data.resize(static_cast<std::size_t>(cut));
    return cut;
}

inline void write(void*, const void* buffer, int count) {
    if (!side().enter("Write")) {
        side().record(std::to_string(count));
        managed_stream.data.append(static_cast<const char*>(buffer), static_cast<std::size_t>(count));
    }
}

inline int assignable = 0;

inline int is_assignable(void*) {
    side().record("IsAssignable");
    return assignable;
}
inline int type_of(void** type) {
    side().record("TypeOf");
    *type = side().make();
    return 1;
}
inline int cast_to(const VariantArg* object, void** out) {
    side().record((object->payload == nullptr ? "CastTo:null" : "CastTo:") + std::to_string(object->kind));
    *out = object->payload == nullptr ? nullptr : side().make();
    return 1;
}
inline int cast_as(const VariantArg* object, void** out) {
    side().record("CastAs");
    return cast_to(object, out);
}
inline int reinterpret(void*, void** out) {
    *out = side().make();
    return 1;
}

inline void offer_all() {
    side().offer(Class, "CanRead", can_read);
    side().offer(Class, "CanSeek", can_seek);
    side().offer(Class, "CanWrite", can_write);
    side().offer(Class, "Length", length);
    side().offer(Class, "Position", position);
    side().offer(Class, "Close", close);
    side().offer(Class, "Flush", flush);
    side().offer(Class, "Read", read);
    side().offer(Class, "Seek", seek);
    side().offer(Class, "SetLength", set_length);
    side().offer(Class, "Write", write);
    side().offer(Class, "btp_IsAssignable", is_assignable);
    side().offer(Class, "btp_TypeOf", type_of);
    side().offer(Class, "btp_CastTo", cast_to);
    side().offer(Class, "btp_ReInterpretObj", reinterpret);
    side().offer(Class, "btp_CastAs", cast_as);
}

}  // namespace stream_entries

/// A test with the wrapper of one managed stream, named `s`.
class StreamTest : public ManagedTest {
protected:
    StreamTest() {
        managed_stream = {};
        stream_entries::assignable = 0;
        stream_entries::offer_all();
        PyType_Ready(&wrpPye_tyds_StreamWrapper);
        fn_set_obj_type_host_markattr(&wrpPye_tyds_StreamWrapper);
    }

    void open(std::string data) {
        managed_stream.data = std::move(data);
        managed_stream.position = 0;
        python.name("s", fn_py_clr_type_generic_new(managed.make(), &wrpPye_tyds_StreamWrapper));
        managed.calls();
    }

    PyShStreamObject* stream() { return reinterpret_cast<PyShStreamObject*>(python.named("s")); }
};
