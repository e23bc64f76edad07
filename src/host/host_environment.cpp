#include "host/host_environment.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "host/host_exceptions.h"
#include "host/pal.h"
#include "host/trace.h"

const char* const VelborDomainName = "VelborCLRHostDomain";
const char* const HostNotReady = "CLR Host is not ready";

namespace {

constexpr char kWrapName[] = "libvelbor.embed.coreclrwrap.so";
constexpr char kDebugWrapName[] = "libvelbor.embed.coreclrwrap.debug.so";
constexpr char kCoreclrName[] = "libcoreclr.so";
constexpr char kNetcoreDirVariable[] = "NETCORE_WRAPPER_NETCORE_DIR";
constexpr char kAssemblyDirVariable[] = "NETCORE_WRAPPER_ASSEMBLY_DIR";

// E_FAIL. What a look-up answers in an object whose wrap library was never bound.
constexpr std::int32_t kNotBound = static_cast<std::int32_t>(0x80004005U);

// The variables end in the family's word, so that several families can share one process.
bool get_family_variable(const char* variable, const std::string& family, std::string& value) {
    const std::string name = std::string(variable) + '_' + family;
    return pal::getenv(name.c_str(), value);
}

}  // namespace

HostEnvironment* HostEnvironment::instance(const char* netcore_version, bool debug, const char* family,
                                           const char* product, const char* netcore_dir,
                                           const char* assembly_dir) {
    static HostEnvironment environment;
    if (environment.m_wrap_library.handle() != nullptr) {
        return &environment;
    }
    trace::initialize();
    environment.initialize(netcore_version, debug, family, product, netcore_dir, assembly_dir);
    if (environment.m_wrap_library.is_first_load()) {
        environment.create_default_app_domain();
    } else {
        environment.m_domain_ready = environment.m_coreclr_wrap_is_domain_initialized() != 0;
    }
    return &environment;
}

void HostEnvironment::initialize(const char* /*netcore_version*/, bool debug, const char* family,
                                 const char* /*product*/, const char* netcore_dir, const char* assembly_dir) {
    trace::info("Initializing .NET Core host...");
    m_entry_point_exe = pal::get_entry_point_exe();
    m_debug = debug;
    const char* wrap_name = get_libcoreclr_wrap_name();
    const std::string exe_dir = pal::path_get_directory(m_entry_point_exe);
    const std::string family_word = family != nullptr ? family : "";

    m_netcore_dir = netcore_dir != nullptr ? netcore_dir : find_netcore_dir(family_word, exe_dir);
    trace::info("NETCORE_DIR: '%s'", m_netcore_dir.c_str());
    m_app_folders = find_app_folders(family_word, assembly_dir, exe_dir);
    trace::info("PRODUCT_ASSEMBLY_DIR: '%s'", m_app_folders.c_str());

    const std::string path = pal::build_path(m_netcore_dir, wrap_name);
    trace::verbose("Loading: '%s'", path.c_str());
    m_wrap_library = DynamicLibrary::load(path, wrap_name);
    trace::info("wrap dll loaded");
    // The runtime cannot be taken out of a process, so its wrap library stays mapped, too.
    m_wrap_library.set_can_free(false);

    m_coreclr_wrap_initialize = find_symbol<WrapInitialize>("coreclr_wrap_initialize");
    m_coreclr_wrap_create_delegate = find_symbol<WrapCreateDelegate>("coreclr_wrap_create_delegate");
    m_coreclr_wrap_shutdown = find_symbol<WrapShutdown>("coreclr_wrap_shutdown");
    m_coreclr_wrap_is_domain_initialized =
        find_symbol<WrapIsDomainInitialized>("coreclr_wrap_is_domain_initialized");

    if (m_wrap_library.is_first_load()) {
        const auto coreclr_wrap_load = find_symbol<WrapLoad>("coreclr_wrap_load");
        const std::string coreclr_path = pal::build_path(m_netcore_dir, kCoreclrName);
        trace::verbose("Loading2: '%s'", coreclr_path.c_str());
        if (coreclr_wrap_load(coreclr_path.c_str()) == 0) {
            throw std::runtime_error("init coreclr wap");
        }
    }
    trace::info(".NET Core host ready.");
}

const char* HostEnvironment::get_libcoreclr_wrap_name() const {
    return m_debug ? kDebugWrapName : kWrapName;
}

std::string HostEnvironment::find_netcore_dir(const std::string& family, const std::string& exe_dir) const {
    std::string root;
    std::string found;
    // The release form decides which folder is taken, also when the debug form will be loaded from it.
    if (get_family_variable(kNetcoreDirVariable, family, root) &&
        pal::get_major_netcore_path(root, kWrapName, found)) {
        return found;
    }
    return exe_dir;
}

std::string HostEnvironment::find_app_folders(const std::string& family, const char* assembly_dir,
                                              const std::string& exe_dir) const {
    std::vector<std::string> folders;
    std::string root;
    if (assembly_dir != nullptr) {
        folders.emplace_back(assembly_dir);
    } else if (get_family_variable(kAssemblyDirVariable, family, root)) {
        pal::get_app_folders(root, m_debug, folders);
    } else {
        folders.push_back(exe_dir);
    }
    complete_app_folders(folders, m_netcore_dir);
    return pal::join(folders, ':', false);
}

void HostEnvironment::complete_app_folders(std::vector<std::string>& folders,
                                           const std::string& netcore_dir) {
    if (std::find(folders.begin(), folders.end(), netcore_dir) == folders.end()) {
        folders.push_back(netcore_dir);
    }
}

bool HostEnvironment::create_default_app_domain() {
    if (m_domain_ready) {
        return false;
    }
    trace::info("Creating default AppDomain...");
    const char* folders = m_app_folders.c_str();
    trace::verbose("APP_PATH: '%s'", folders);
    trace::verbose("APP_NI_PATHS: '%s'", folders);
    trace::verbose("NATIVE_DLL_SEARCH_DIRECTORIES: '%s'", folders);

    // The list of trusted assemblies is the wrap library's to make: it knows where the runtime really is.
    const char* keys[] = {"TRUSTED_PLATFORM_ASSEMBLIES", "APP_PATHS", "APP_NI_PATHS",
                          "NATIVE_DLL_SEARCH_DIRECTORIES", "AppDomainCompatSwitch"};
    const char* values[] = {"", folders, folders, folders, "UseLatestBehaviorWhenTFMNotSpecified"};
    static_assert(std::size(keys) == std::size(values));

    const std::int32_t status = m_coreclr_wrap_initialize(m_entry_point_exe.c_str(), VelborDomainName,
                                                          static_cast<int>(std::size(keys)), keys, values);
    if (status != 0) {
        throw HostException(
            static_cast<unsigned>(status),
            pal::to_error_string_with_status_code("coreclr_initialize failed - status:", status, ""));
    }
    m_domain_ready = true;
    trace::info("Default AppDomain ready.");
    return true;
}

std::int32_t HostEnvironment::try_create_delegate(const char* assembly, const char* type, const char* method,
                                                  void** out) const {
    if (m_coreclr_wrap_create_delegate == nullptr) {
        return kNotBound;
    }
    return m_coreclr_wrap_create_delegate(assembly, type, method, out);
}

int HostEnvironment::try_shutdown_default_app_domain() {
    if (m_coreclr_wrap_shutdown == nullptr || !m_domain_ready) {
        return -1;
    }
    m_domain_ready = false;
    if (m_wrap_library.handle() == nullptr || !m_wrap_library.is_first_load()) {
        return -1;
    }
    trace::info("Shutdowning .NET Core host...");
    const std::int32_t result = m_coreclr_wrap_shutdown();
    trace::info(".NET Core host is down: %d", result);
    return 0;
}

HostEnvironment::~HostEnvironment() {
    try_shutdown_default_app_domain();
}
