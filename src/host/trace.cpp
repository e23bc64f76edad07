#include "host/trace.h"

#include <cstdarg>
#include <string>

#include "host/pal.h"

namespace {

// Written at start-up only, under the import; so a plain flag is enough.
bool g_enabled = false;

}  // namespace

// A va_list cannot be made by a helper of the variadic function, hence the one macro.
#define VELBOR_TRACE_LINE(writer)    \
    do {                             \
        va_list arguments;           \
        va_start(arguments, format); \
        writer(format, arguments);   \
        va_end(arguments);           \
    } while (false)

namespace trace {

void initialize() {
    if (g_enabled) {
        return;
    }
    std::string value;
    if (!pal::getenv("COREHOST_TRACE", value)) {
        return;
    }
    const int level = pal::to_int(value);
    g_enabled = level >= 1;
    if (level > 0) {
        info("%s", "CLR host tracing enabled");
    }
}

void enable() {
    g_enabled = true;
}

void disable() {
    g_enabled = false;
}

bool is_enabled() {
    return g_enabled;
}

void error(const char* format, ...) {
    VELBOR_TRACE_LINE(pal::err_vprintf);
}

void warning(const char* format, ...) {
    if (g_enabled) {
        VELBOR_TRACE_LINE(pal::out_vprintf);
    }
}

void info(const char* format, ...) {
    if (g_enabled) {
        VELBOR_TRACE_LINE(pal::out_vprintf);
    }
}

void verbose(const char* format, ...) {
    if (g_enabled) {
        VELBOR_TRACE_LINE(pal::out_vprintf);
    }
}

}  // namespace trace
