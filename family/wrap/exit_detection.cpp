#include "exit_detection.h"

#include <dlfcn.h>
#include <unwind.h>

namespace {

constexpr int kDeepest = 1024;

struct Search {
    const void* library;
    int depth;
    bool found;
};

const void* library_of(const void* address) {
    Dl_info info{};
    return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

_Unwind_Reason_Code look_at_frame(_Unwind_Context* frame, void* argument) {
    auto* search = static_cast<Search*>(argument);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the unwinder tells addresses as numbers
    search->found = library_of(reinterpret_cast<const void*>(_Unwind_GetIP(frame))) == search->library;
    return search->found || ++search->depth == kDeepest ? _URC_END_OF_STACK : _URC_NO_REASON;
}

}  // namespace

bool is_called_from_library_of(const void* address) {
    Search search{library_of(address), 0, false};
    if (search.library == nullptr) {
        return false;
    }
    _Unwind_Backtrace(look_at_frame, &search);
    return search.found;
}
