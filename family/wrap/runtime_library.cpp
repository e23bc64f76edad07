#include "runtime_library.h"

#include <dlfcn.h>
#include <elf.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>

namespace {

constexpr char kPathVariable[] = "VELBOR_CORECLR_PATH";

// What must lie beside the runtime library. Without the JIT compiler the runtime starts and ends the process
// at its first use, without the core library it does not start.
constexpr const char* kCompanions[] = {"libclrjit.so", "System.Private.CoreLib.dll"};

#if defined(__x86_64__)
constexpr Elf64_Half kMachine = EM_X86_64;
#elif defined(__aarch64__)
constexpr Elf64_Half kMachine = EM_AARCH64;
#else
#error "The runtime is hosted on 64-bit x86 and ARM only."
#endif

[[noreturn]] void refuse(const std::string& reason) {
    throw std::runtime_error(reason);
}

struct Free {
    void operator()(char* text) const { std::free(text); }
};

// Empty when the file does not exist.
std::string real_path_of(const char* path) {
    const std::unique_ptr<char, Free> real_path(realpath(path, nullptr));
    return real_path ? std::string(real_path.get()) : std::string();
}

bool is_regular_file(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

void check_architecture(const std::string& path) {
    Elf64_Ehdr header{};
    std::ifstream file(path, std::ios::binary);
    if (!file.read(reinterpret_cast<char*>(&header), sizeof(header)) ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
        refuse("'" + path + "' is not a shared library");
    }
    if (header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_machine != kMachine) {
        refuse("'" + path + "' is built for another processor architecture (ELF machine " +
               std::to_string(header.e_machine) + ", this process is " + std::to_string(kMachine) + ")");
    }
}

template <typename Function>
Function find_export(void* library, const char* name) {
    return reinterpret_cast<Function>(dlsym(library, name));
}

template <typename Function>
Function require_export(void* library, const std::string& path, const char* name) {
    const auto function = find_export<Function>(library, name);
    if (function == nullptr) {
        refuse("'" + path + "' does not export " + name);
    }
    return function;
}

}  // namespace

std::string find_runtime_library(const char* path) {
    std::string real_path = real_path_of(path);
    if (!real_path.empty()) {
        return real_path;
    }
    const char* fallback = std::getenv(kPathVariable);
    if (fallback == nullptr || *fallback == '\0') {
        refuse(std::string("there is no file '") + path + "'");
    }
    real_path = real_path_of(fallback);
    if (real_path.empty()) {
        refuse(std::string("there is no file '") + path + "', and none '" + fallback + "' (" + kPathVariable +
               ")");
    }
    return real_path;
}

RuntimeLibrary open_runtime_library(const std::string& real_path) {
    if (!is_regular_file(real_path)) {
        refuse("'" + real_path + "' is not a file");
    }
    check_architecture(real_path);
    const std::string folder = real_path.substr(0, real_path.rfind('/'));
    for (const char* companion : kCompanions) {
        if (!is_regular_file(folder + "/" + companion)) {
            refuse(std::string("'") + companion + "' is not beside '" + real_path + "'");
        }
    }
    // Local: its symbols must not get in the way of other libraries of the process, nor theirs in its own.
    void* library = dlopen(real_path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        const char* reason = dlerror();
        refuse(reason != nullptr ? reason : "'" + real_path + "' does not load");
    }
    RuntimeLibrary runtime;
    runtime.initialize = require_export<RuntimeLibrary::Initialize>(library, real_path, "coreclr_initialize");
    runtime.create_delegate =
        require_export<RuntimeLibrary::CreateDelegate>(library, real_path, "coreclr_create_delegate");
    runtime.shutdown = require_export<RuntimeLibrary::Shutdown>(library, real_path, "coreclr_shutdown_2");
    runtime.set_error_writer =
        find_export<RuntimeLibrary::SetErrorWriter>(library, "coreclr_set_error_writer");
    return runtime;
}
