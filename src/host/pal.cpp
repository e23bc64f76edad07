#include "host/pal.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <unordered_set>

namespace {

constexpr char kLineEnd[] = "\r\n";

void write_line(FILE* stream, const char* format, va_list arguments) {
    std::vfprintf(stream, format, arguments);
    std::fputs(kLineEnd, stream);
}

}  // namespace

namespace pal {

void err_vprintf(const char* format, va_list arguments) {
    write_line(stderr, format, arguments);
}

void out_vprintf(const char* format, va_list arguments) {
    write_line(stdout, format, arguments);
}

bool getenv(const char* name, std::string& value) {
    value.clear();
    if (const char* text = std::getenv(name)) {
        value = text;
    }
    return !value.empty();
}

int to_int(const std::string& text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

std::string to_error_string(int code) {
    return std::strerror(code);
}

std::string to_error_string_with_status_code(const std::string& prefix, int code, const std::string& suffix) {
    char digits[2 + 8 + 1];
    std::snprintf(digits, sizeof(digits), "0x%x", static_cast<unsigned>(code));
    return prefix + digits + suffix;
}

bool is_file_exists(const std::string& path) {
    return std::ifstream(path).is_open();
}

void path_append(std::string& path, const std::string& name) {
    if (path.empty()) {
        path = name;
        return;
    }
    path += '/';
    path += name;
}

std::string path_get_directory(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

bool path_is_relative(const std::string& path) {
    return path.empty() || path.front() != '/';
}

std::string get_entry_point_exe() {
    constexpr std::size_t kLongestPath = 4095;
    char path[kLongestPath + 1];
    const ssize_t length = readlink("/proc/self/exe", path, kLongestPath);
    if (length < 0) {
        return {};
    }
    path[length] = '\0';
    return path;
}

void* load_library(const std::string& path) {
    return dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
}

void free_library(void* handle) {
    dlclose(handle);
}

void* get_symbol(void* handle, const char* name) {
    return dlsym(handle, name);
}

bool get_module(const std::string& path, void** handle) {
    *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    return *handle != nullptr;
}

std::string join(const std::vector<std::string>& items, char separator, bool unique) {
    std::unordered_set<std::string> written;
    std::string text;
    bool first = true;
    for (const std::string& item : items) {
        if (unique && !written.insert(item).second) {
            continue;
        }
        if (!first) {
            text += separator;
        }
        text += item;
        first = false;
    }
    return text;
}

std::string join_unique(const std::vector<std::string>& items, char separator) {
    return join(items, separator, true);
}

std::string join_to_full_path(const std::string& base, const std::vector<std::string>& items,
                              char separator) {
    std::string text;
    for (const std::string& item : items) {
        text += path_is_relative(item) ? build_path(base, item) : item;
        text += separator;
    }
    while (!text.empty() && text.back() == separator) {
        text.pop_back();
    }
    return text;
}

}  // namespace pal

std::string cxxaw_substr(const std::string& text, std::string::size_type start,
                         std::string::size_type count) {
    return text.substr(start, std::min(count, text.size() - start));
}

bool cxxaw_isdigitstr(const std::string& text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}
