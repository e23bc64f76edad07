#include "streams/stream_host.h"

namespace {

constexpr const char* Names[] = {
#define VELBOR_NAME(operation, method, ...) method,
    VELBOR_STREAM_HOST(VELBOR_NAME)
#undef VELBOR_NAME
};

static_assert(sizeof(Names) / sizeof(*Names) == PyHost_ph_Stream::slot_count);

}  // namespace

PyHost_ph_Stream::PyHost_ph_Stream()
    : TypeHost("Velbor.WrpGen.Interop.SiApiStream", Names, slots, slot_count) {}
