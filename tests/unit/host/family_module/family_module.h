#pragma once

/// What a second module of the family reports about its host environment.
struct FamilyModuleState {
    bool first_load;
    bool domain_ready;
    int create_delegate_status;
    int shutdown_result;
};

using FamilyModuleStart = FamilyModuleState (*)(const char* netcore_dir, bool ask_for_shutdown);
