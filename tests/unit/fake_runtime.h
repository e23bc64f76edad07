#pragma once

#include "host/host_environment.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// A runtime that answers from the test: it stands in for HostEnvironment at link time. Included by one file
// of an executable.

struct FakeRuntime {
    struct Request {
        std::string assembly, type, method;
    };

    std::map<std::string, void*> methods;  // by name; what is not here gets `anything`
    std::map<std::string, int> missing;    // name to status
    std::vector<Request> requests;

    static void anything() {}

    static FakeRuntime& get() {
        static FakeRuntime runtime;
        return runtime;
    }

    std::vector<std::string> requested_methods() const {
        std::vector<std::string> names;
        for (const Request& request : requests) {
            names.push_back(request.method);
        }
        return names;
    }
};

HostEnvironment* HostEnvironment::instance(const char*, bool, const char*, const char*, const char*,
                                           const char*) {
    alignas(HostEnvironment) static unsigned char never_read[sizeof(HostEnvironment)];
    return reinterpret_cast<HostEnvironment*>(never_read);
}

std::int32_t HostEnvironment::try_create_delegate(const char* assembly, const char* type, const char* method,
                                                  void** out) const {
    FakeRuntime& runtime = FakeRuntime::get();
    runtime.requests.push_back({assembly, type, method});
    if (const auto missing = runtime.missing.find(method); missing != runtime.missing.end()) {
        return missing->second;
    }
    const auto found = runtime.methods.find(method);
    *out = found != runtime.methods.end() ? found->second : reinterpret_cast<void*>(FakeRuntime::anything);
    return 0;
}
