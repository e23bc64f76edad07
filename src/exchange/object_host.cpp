#include "exchange/object_host.h"

#include <iterator>

namespace {

constexpr const char* Names[] = {
#define VELBOR_NAME(operation, method, ...) method,
    VELBOR_OBJECT_HOST(VELBOR_NAME)
#undef VELBOR_NAME
};

static_assert(std::size(Names) == ObjectHost::slot_count && ObjectHost::slot_count == 11);

}  // namespace

ObjectHost::ObjectHost() : TypeHost("Velbor.WrpGen.Interop.ObjectHost", Names, slots, slot_count) {}
