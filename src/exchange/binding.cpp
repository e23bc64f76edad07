#include "exchange/binding.h"

#include "exchange/fork_guard.h"
#include "host/host_environment.h"

#include <sstream>

std::string missing_method_error_message(const char* assembly, const char* type, const char* method,
                                         int status) {
    std::ostringstream text;
    text << "While initializing the host for the '" << type << " (Assembly=" << assembly
         << ")' type, an error occurred - Method '" << method << "' not found (error=" << status << ")";
    return text.str();
}

int fn_bind_method(const HostEnvironment& host, const char* assembly, const char* type, const char* method,
                   void** slot) {
    if (fn_is_bridge_dead()) {
        *slot = fn_dead_entry(method);
        return 0;
    }
    return host.try_create_delegate(assembly, type, method, slot);
}
