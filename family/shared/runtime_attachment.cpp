#include "shared/runtime_attachment.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "exchange/exchange_host.h"
#include "exchange/fork_guard.h"
#include "exchange/object_host.h"
#include "host/host_environment.h"
#include "host/pal.h"
#include "startup/cpython.h"

namespace {

constexpr char kInteropAssembly[] = "WrpInterop.Velbor.Voxlar";
constexpr char kNotStarted[] = "the .NET runtime is not started; import velbor.voxlar first";

constexpr std::string_view kReleaseName = "/libvelbor.embed.coreclrwrap.so";
constexpr std::string_view kDebugName = "/libvelbor.embed.coreclrwrap.debug.so";

// The wrap library that the process has.
struct LoadedWrap {
    std::string folder;
    bool is_debug = false;
};

int look_at_library(dl_phdr_info* info, std::size_t, void* argument) {
    const std::string_view path = info->dlpi_name;
    const bool is_debug = path.ends_with(kDebugName);
    if (!is_debug && !path.ends_with(kReleaseName)) {
        return 0;
    }
    auto* wrap = static_cast<LoadedWrap*>(argument);
    wrap->folder = pal::path_get_directory(std::string(path));
    wrap->is_debug = is_debug;
    return 1;
}

// The library may be there without a runtime in it: a start that failed, or the end of the process.
bool is_domain_ready(const LoadedWrap& wrap) {
    const std::string path = wrap.folder + std::string(wrap.is_debug ? kDebugName : kReleaseName);
    void* library = nullptr;
    if (!pal::get_module(path, &library)) {
        return false;
    }
    const auto is_domain_initialized =
        reinterpret_cast<std::int32_t (*)()>(pal::get_symbol(library, "coreclr_wrap_is_domain_initialized"));
    const bool is_ready = is_domain_initialized != nullptr && is_domain_initialized() != 0;
    pal::free_library(library);
    return is_ready;
}

bool fail(PyObject* type, const char* text) {
    PyErr_SetString(type, text);
    return false;
}

// The process that loaded this module, which is another one in a forked child.
const pid_t loading_process = getpid();

// A wrap library that came with a fork holds the parent's runtime. A child that started its own never gets
// here.
const char* why_not_ready(const LoadedWrap& wrap) {
    const bool is_forked = getpid() != loading_process;
    return is_forked && !wrap.folder.empty() ? ManagedCodeNotAvailable : kNotStarted;
}

bool attach() {
    LoadedWrap wrap;
    dl_iterate_phdr(look_at_library, &wrap);
    if (wrap.folder.empty() || !is_domain_ready(wrap)) {
        return fail(PyExc_RuntimeError, why_not_ready(wrap));
    }
    try {
        HostEnvironment::instance("3.1", wrap.is_debug, "velbor", "voxlar", wrap.folder.c_str(),
                                  wrap.folder.c_str());
    } catch (const std::exception& error) {
        return fail(PyExc_RuntimeError, error.what());
    }
    ExchangeHost& exchange = ExchangeHost::get_instance();
    if (!exchange.initialize(kInteropAssembly)) {
        return fail(PyExc_TypeError, exchange.error_msg().c_str());
    }
    fn_install_fork_guard();
    const ObjectHost& object_host = ObjectHost::get_instance();
    return !object_host.is_not_valid() || fail(PyExc_TypeError, object_host.error_msg().c_str());
}

bool is_attached = false;

}  // namespace

bool fn_attach_to_runtime() {
    if (!is_attached) [[unlikely]] {
        is_attached = attach();
    }
    return is_attached;
}
