#include "report.h"

#include <cstdio>

void report(const std::string& text) {
    // The process's buffers may be Python's; a line of its own, written at once, keeps its place among them.
    std::fprintf(stderr, "velbor: %s\n", text.c_str());
    std::fflush(stderr);
}

std::string status_text(int status) {
    char digits[2 + 8 + 1];
    std::snprintf(digits, sizeof(digits), "0x%08x", static_cast<unsigned>(status));
    return digits;
}
