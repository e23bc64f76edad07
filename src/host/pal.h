#pragma once

#include <cstdarg>
#include <string>
#include <vector>

/// The platform layer: the process, its environment, the file system, dynamic loading and path texts.
///
/// Every text is narrow; a path is the byte string that the system gives. The functions report by result and
/// keep no state; nothing but a failing allocation throws.
namespace pal {

/// Writes the formatted text and "\r\n" to `stderr` or `stdout`.
[[gnu::format(printf, 1, 0)]] void err_vprintf(const char* format, va_list arguments);
[[gnu::format(printf, 1, 0)]] void out_vprintf(const char* format, va_list arguments);

/// True when the variable is set and not empty. An unset one clears `value`.
bool getenv(const char* name, std::string& value);

/// The decimal number that `text` begins with, 0 when it begins with none; narrowed without a check.
int to_int(const std::string& text);

/// The system's text for an error number.
std::string to_error_string(int code);

/// `prefix`, the code as "0x" and lower-case hexadecimal digits of its 32 bits, `suffix`.
std::string to_error_string_with_status_code(const std::string& prefix, int code, const std::string& suffix);

/// True when the path can be opened for reading. A folder that can be opened counts as existing.
bool is_file_exists(const std::string& path);

/// Appends "/" and `name`; an empty path becomes `name`. A slash at the end of `path` is not noticed.
void path_append(std::string& path, const std::string& name);

/// The text before the last "/"; empty when there is none, and for a file of the root folder.
std::string path_get_directory(const std::string& path);

/// True for an empty path and for one that does not begin with "/".
bool path_is_relative(const std::string& path);

/// The path of the process's executable; empty when the system does not tell it.
std::string get_entry_point_exe();

/// Loads a shared object with its symbols visible to later ones. Null when that fails.
void* load_library(const std::string& path);

/// Gives up one reference to a loaded shared object.
void free_library(void* handle);

/// The address of an exported symbol, or null.
void* get_symbol(void* handle, const char* name);

/// Finds a shared object only when the process has it already; the handle counts as one more reference.
bool get_module(const std::string& path, void** handle);

/// `base` with each component appended in turn.
template <typename... Components>
std::string build_path(const std::string& base, const Components&... components) {
    std::string path = base;
    (path_append(path, components), ...);
    return path;
}

/// The items with one separator between them. With `unique`, the first occurrence of a text is the only one.
std::string join(const std::vector<std::string>& items, char separator, bool unique);

/// `join` without repeated texts.
std::string join_unique(const std::vector<std::string>& items, char separator);

/// The items, each relative one placed under `base`, with separators between them and none at the end.
std::string join_to_full_path(const std::string& base, const std::vector<std::string>& items, char separator);

}  // namespace pal

/// At most `count` bytes of `text` from `start`; `std::string::npos` means to the end.
std::string cxxaw_substr(const std::string& text, std::string::size_type start, std::string::size_type count);

/// True when the text is not empty and every byte of it is an ASCII digit.
bool cxxaw_isdigitstr(const std::string& text);
