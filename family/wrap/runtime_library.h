#pragma once

#include <string>

/// The runtime library (`libcoreclr.so`) and those of its exports that the wrap library uses.
///
/// Once opened it stays in the process: a runtime cannot be taken out again.
struct RuntimeLibrary {
    using Initialize = int (*)(const char* exe_path, const char* domain_name, int property_count,
                               const char** property_keys, const char** property_values, void** host,
                               unsigned* domain);
    using CreateDelegate = int (*)(void* host, unsigned domain, const char* assembly, const char* type,
                                   const char* method, void** delegate);
    using Shutdown = int (*)(void* host, unsigned domain, int* exit_code);
    using ErrorWriter = void (*)(const char* line);
    using SetErrorWriter = int (*)(ErrorWriter writer);

    Initialize initialize = nullptr;
    CreateDelegate create_delegate = nullptr;
    Shutdown shutdown = nullptr;
    SetErrorWriter set_error_writer = nullptr;  ///< null in a runtime that has none
};

/// The real path of the runtime library that a host asks for as `path`: links are followed, since the class
/// library and the JIT compiler lie beside the real file. When there is no such file, the environment
/// variable `VELBOR_CORECLR_PATH` may name it. Throws `std::runtime_error` with the reason when there is
/// none.
std::string find_runtime_library(const char* path);

/// Opens the runtime library at a real path. What would end the process later is refused here: a file of
/// another processor, a runtime without its JIT compiler or its core library. Throws `std::runtime_error`
/// with the reason.
RuntimeLibrary open_runtime_library(const std::string& real_path);
