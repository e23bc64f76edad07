#include "host/family_module/family_module.h"

#include "host/host_environment.h"

// Brings up the host environment of this shared object, which is not that of the test executable.
extern "C" [[gnu::visibility("default")]] FamilyModuleState family_module_start(const char* netcore_dir,
                                                                                bool ask_for_shutdown) {
    HostEnvironment* host =
        HostEnvironment::instance("3.1", false, "velbor", "sibling", netcore_dir, "/nowhere");
    void* delegate = nullptr;
    FamilyModuleState state{};
    state.first_load = host->wrap_library().is_first_load();
    state.domain_ready = host->is_domain_ready();
    state.create_delegate_status = host->try_create_delegate("Assembly", "Sibling", "Method", &delegate);
    state.shutdown_result = ask_for_shutdown ? host->try_shutdown_default_app_domain() : 0;
    return state;
}
