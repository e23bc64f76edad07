#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/dynamic_library.h"
#include "host/runtime_folders.h"

/// The name of the application domain that the process's runtime gets.
extern const char* const VelborDomainName;

/// For whoever has to report that no runtime is up; nothing in this layer raises it.
extern const char* const HostNotReady;

/// The process's .NET runtime as one extension module sees it.
///
/// Each extension module of the family has an object of its own, and all of them reach CoreCLR through the
/// same wrap library: the one that brings that library into the process starts the runtime and shuts it down
/// when the process ends, the others attach to it.
///
/// The errors are `std::runtime_error`, `std::logic_error` and `HostException`; after one of them the object
/// keeps the state that it had reached.
class HostEnvironment {
public:
    HostEnvironment() = default;
    HostEnvironment(const HostEnvironment&) = delete;
    HostEnvironment& operator=(const HostEnvironment&) = delete;

    /// Shuts the runtime down when this object started it. Runs from the process's exit handlers.
    ~HostEnvironment();

    /// The module's one object, brought up by the first call. While the wrap library is loaded the arguments
    /// are not looked at, so every later caller passes zeros.
    static HostEnvironment* instance(const char* netcore_version, bool debug, const char* family,
                                     const char* product, const char* netcore_dir, const char* assembly_dir);

    /// Finds the folders, loads the wrap library and binds its symbols; the first loader has it load the
    /// runtime. `netcore_version` and `product` are not read. A folder given here is taken as it stands;
    /// a null one is looked for through the environment variables of `family`.
    void initialize(const char* netcore_version, bool debug, const char* family, const char* product,
                    const char* netcore_dir, const char* assembly_dir);

    /// The file name of the wrap library: the release or the debug form.
    const char* get_libcoreclr_wrap_name() const;

    /// Appends the runtime folder unless the list has it.
    static void complete_app_folders(std::vector<std::string>& folders, const std::string& netcore_dir);

    /// Starts the runtime. False when it was up already; throws `HostException` when it refuses to start.
    bool create_default_app_domain();

    /// Stores a native pointer to a static managed method. The result is the runtime's status, 0 on success.
    std::int32_t try_create_delegate(const char* assembly, const char* type, const char* method,
                                     void** out) const;

    /// 0 when it shut the runtime down, -1 when that is not this object's to do or was done.
    int try_shutdown_default_app_domain();

    const std::string& entry_point_exe() const { return m_entry_point_exe; }
    const std::string& netcore_dir() const { return m_netcore_dir; }
    const std::string& app_folders() const { return m_app_folders; }
    const DynamicLibrary& wrap_library() const { return m_wrap_library; }
    bool is_domain_ready() const { return m_domain_ready; }

private:
    using WrapLoad = std::int32_t (*)(const char* libcoreclr_path);
    using WrapInitialize = std::int32_t (*)(const char* exe_path, const char* domain_name, int property_count,
                                            const char** property_keys, const char** property_values);
    using WrapCreateDelegate = std::int32_t (*)(const char* assembly_name, const char* type_name,
                                                const char* method_name, void** delegate);
    using WrapShutdown = std::int32_t (*)();
    using WrapIsDomainInitialized = std::int32_t (*)();

    std::string find_netcore_dir(const std::string& family, const std::string& exe_dir) const;
    std::string find_app_folders(const std::string& family, const char* assembly_dir,
                                 const std::string& exe_dir) const;

    template <typename Function>
    Function find_symbol(const char* name) const {
        return reinterpret_cast<Function>(m_wrap_library.get_symbol(name));
    }

    std::string m_entry_point_exe;
    std::string m_netcore_dir;
    std::string m_app_folders;
    DynamicLibrary m_wrap_library;
    WrapInitialize m_coreclr_wrap_initialize = nullptr;
    WrapCreateDelegate m_coreclr_wrap_create_delegate = nullptr;
    WrapShutdown m_coreclr_wrap_shutdown = nullptr;
    WrapIsDomainInitialized m_coreclr_wrap_is_domain_initialized = nullptr;
    bool m_domain_ready = false;
    bool m_debug = false;
};
