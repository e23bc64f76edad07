// The five symbols through which the extension modules of the family reach the .NET runtime. Every module of
// a process uses this one library, so its state is the process's.

#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <exception>
#include <string>

#include "exit_detection.h"
#include "report.h"
#include "runtime_library.h"
#include "signal_keeper.h"
#include "start_properties.h"

#define WRAP_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

constexpr std::int32_t status(unsigned hresult) {
    return static_cast<std::int32_t>(hresult);
}

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kNothingDone = 1;
constexpr std::int32_t kInvalidArgument = status(0x80070057U);
constexpr std::int32_t kFailed = status(0x80004005U);
constexpr std::int32_t kWrongState = status(0x8007139FU);        // the runtime is not there to be used
constexpr std::int32_t kAlreadyInProcess = status(0x80131022U);  // someone else's runtime is

enum class Phase { Empty, Loaded, Started, Down };

// Plain data, never destroyed: the shutdown is asked for by static destructors of other libraries.
struct State {
    std::atomic<Phase> phase{Phase::Empty};
    RuntimeLibrary runtime;
    std::string* real_path = nullptr;
    void* host = nullptr;
    unsigned domain = 0;
    pid_t owner = 0;
};

constinit State g_state;

// A forked child has the memory of a runtime but none of its threads: it must not reach managed code.
bool is_usable() {
    return g_state.phase.load(std::memory_order_acquire) == Phase::Started && getpid() == g_state.owner;
}

// What the runtime says while it refuses to start. It starts once, on one thread.
std::string* g_start_messages = nullptr;

void collect_start_message(const char* line) {
    if (g_start_messages == nullptr || line == nullptr) {
        return;
    }
    if (!g_start_messages->empty()) {
        *g_start_messages += "; ";
    }
    *g_start_messages += line;
    while (!g_start_messages->empty() && g_start_messages->back() == '\n') {
        g_start_messages->pop_back();
    }
}

void report_refused_start(std::int32_t result, const std::string& messages) {
    std::string text = "the .NET runtime does not start (" + status_text(result) + ")";
    if (!messages.empty()) {
        text += ": " + messages;
    } else if (result == kAlreadyInProcess) {
        text += ": this process has a .NET runtime already";
    }
    report(text);
}

bool load(const char* path) {
    const std::string real_path = find_runtime_library(path);
    if (g_state.phase != Phase::Empty) {
        if (real_path != *g_state.real_path) {
            throw std::runtime_error("the process has '" + *g_state.real_path + "' already, not '" +
                                     real_path + "'");
        }
        return true;
    }
    g_state.runtime = open_runtime_library(real_path);
    g_state.real_path = new std::string(real_path);
    g_state.phase = Phase::Loaded;
    return true;
}

std::int32_t start(const char* exe_path, const char* domain_name, const StartProperties& properties) {
    std::vector<const char*> keys = properties.keys();
    std::vector<const char*> values = properties.values();
    std::string messages;
    g_start_messages = &messages;
    if (g_state.runtime.set_error_writer != nullptr) {
        g_state.runtime.set_error_writer(collect_start_message);
    }
    std::int32_t result = kFailed;
    {
        const SignalKeeper signals;
        result = g_state.runtime.initialize(exe_path, domain_name, static_cast<int>(keys.size()), keys.data(),
                                            values.data(), &g_state.host, &g_state.domain);
    }
    if (g_state.runtime.set_error_writer != nullptr) {
        g_state.runtime.set_error_writer(nullptr);
    }
    g_start_messages = nullptr;
    if (result != kOk) {
        report_refused_start(result, messages);
        return result;
    }
    g_state.owner = getpid();
    g_state.phase.store(Phase::Started, std::memory_order_release);
    return kOk;
}

}  // namespace

/// Loads the runtime library. 1 when it is ready to start, 0 after a line with the reason when it is not.
WRAP_EXPORT std::int32_t coreclr_wrap_load(const char* libcoreclr_path) noexcept {
    try {
        return load(libcoreclr_path) ? 1 : 0;
    } catch (const std::exception& error) {
        report(std::string("cannot load the .NET runtime: ") + error.what());
    } catch (...) {
        report("cannot load the .NET runtime");
    }
    return 0;
}

/// Starts the runtime. 0 on success, else the runtime's status, after a line with the reason.
WRAP_EXPORT std::int32_t coreclr_wrap_initialize(const char* exe_path, const char* domain_name,
                                                 int property_count, const char** property_keys,
                                                 const char** property_values) noexcept {
    try {
        if (g_state.phase != Phase::Loaded) {
            report("cannot start the .NET runtime: it is not loaded, or was started before");
            return kWrongState;
        }
        const std::string folder = g_state.real_path->substr(0, g_state.real_path->rfind('/'));
        return start(exe_path, domain_name,
                     StartProperties(property_count, property_keys, property_values, folder));
    } catch (const std::exception& error) {
        report(std::string("cannot start the .NET runtime: ") + error.what());
        return kInvalidArgument;
    } catch (...) {
        return kFailed;
    }
}

/// Resolves a static managed method into a native pointer. 0 on success, else the runtime's status; nothing
/// is written for a failure, since the caller knows what it asked for.
WRAP_EXPORT std::int32_t coreclr_wrap_create_delegate(const char* assembly_name, const char* type_name,
                                                      const char* method_name, void** delegate) noexcept {
    if (!is_usable()) {
        return kWrongState;
    }
    return g_state.runtime.create_delegate(g_state.host, g_state.domain, assembly_name, type_name,
                                           method_name, delegate);
}

/// Shuts the runtime down: once, in the process that started it, and not from within a shutdown of its own.
/// 0 when it did, 1 when there was nothing to do, else the runtime's status.
WRAP_EXPORT std::int32_t coreclr_wrap_shutdown() noexcept {
    if (!is_usable()) {
        return kNothingDone;
    }
    auto expected = Phase::Started;
    if (!g_state.phase.compare_exchange_strong(expected, Phase::Down)) {
        return kNothingDone;
    }
    if (is_called_from_library_of(reinterpret_cast<const void*>(g_state.runtime.initialize))) {
        return kNothingDone;
    }
    int exit_code = 0;
    return g_state.runtime.shutdown(g_state.host, g_state.domain, &exit_code);
}

/// 1 while the runtime can be used, else 0.
WRAP_EXPORT std::int32_t coreclr_wrap_is_domain_initialized() noexcept {
    return is_usable() ? 1 : 0;
}
