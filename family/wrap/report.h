#pragma once

#include <string>

/// Writes one line, "velbor: <text>", to the standard error stream. The callers of the wrap library see a
/// number alone, so this is where a person learns the reason.
void report(const std::string& text);

/// A status as the runtime's documentation writes it: "0x80131506".
std::string status_text(int status);
