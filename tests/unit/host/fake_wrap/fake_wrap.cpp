// A wrap library that starts nothing: it records each call in the file that FAKE_WRAP_LOG names and answers
// as the FAKE_WRAP_* variables say.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#define FAKE_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

int answer(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text != nullptr ? static_cast<int>(std::strtoul(text, nullptr, 0)) : otherwise;
}

template <typename... Values>
void record(const char* format, Values... values) {
    if (const char* path = std::getenv("FAKE_WRAP_LOG")) {
        if (FILE* log = std::fopen(path, "a")) {
            std::fprintf(log, format, values...);
            std::fclose(log);
        }
    }
}

// Tells a null pointer from an empty text.
const char* shown(const char* text) {
    return text != nullptr ? text : "(null)";
}

bool g_started = false;

}  // namespace

#ifndef FAKE_WRAP_WITHOUT_load
FAKE_EXPORT std::int32_t coreclr_wrap_load(const char* libcoreclr_path) {
    record("load %s\n", shown(libcoreclr_path));
    return answer("FAKE_WRAP_LOAD", 1);
}
#endif

#ifndef FAKE_WRAP_WITHOUT_initialize
FAKE_EXPORT std::int32_t coreclr_wrap_initialize(const char* exe_path, const char* domain_name,
                                                 int property_count, const char** keys, const char** values) {
    record("initialize %s %s %d\n", shown(exe_path), shown(domain_name), property_count);
    for (int i = 0; i < property_count; ++i) {
        record("  %s=[%s]\n", shown(keys[i]), shown(values[i]));
    }
    const int status = answer("FAKE_WRAP_INITIALIZE", 0);
    g_started = status == 0;
    return status;
}
#endif

#ifndef FAKE_WRAP_WITHOUT_create_delegate
FAKE_EXPORT std::int32_t coreclr_wrap_create_delegate(const char* assembly, const char* type,
                                                      const char* method, void** delegate) {
    record("create_delegate %s %s %s\n", shown(assembly), shown(type), shown(method));
    static int target = 0;
    *delegate = &target;
    return answer("FAKE_WRAP_CREATE_DELEGATE", 0);
}
#endif

#ifndef FAKE_WRAP_WITHOUT_shutdown
FAKE_EXPORT std::int32_t coreclr_wrap_shutdown() {
    record("shutdown\n");
    g_started = false;
    return answer("FAKE_WRAP_SHUTDOWN", 0);
}
#endif

#ifndef FAKE_WRAP_WITHOUT_is_domain_initialized
FAKE_EXPORT std::int32_t coreclr_wrap_is_domain_initialized() {
    record("is_domain_initialized\n");
    return answer("FAKE_WRAP_DOMAIN", g_started ? 1 : 0);
}
#endif
