#include "host/runtime_folders.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

#include "host/pal.h"

namespace {

constexpr char kFolderPrefix[] = "netcore";
constexpr char kLastFolder[] = "pydrawing";
constexpr char kDebugFolder[] = "/debug";

// Cuts a text at its only separator; no separator, or a second one, is a refusal.
bool split(const std::string& text, char separator, std::string& head, std::string& tail) {
    const auto at = text.find(separator);
    if (at == std::string::npos || text.find(separator, at + 1) != std::string::npos) {
        return false;
    }
    head = cxxaw_substr(text, 0, at);
    tail = cxxaw_substr(text, at + 1, std::string::npos);
    return true;
}

bool try_parse_int(const std::string& text, std::int32_t& number) {
    if (!cxxaw_isdigitstr(text)) {
        return false;
    }
    errno = 0;
    const long value = std::strtol(text.c_str(), nullptr, 10);
    if (errno == ERANGE || value > std::numeric_limits<std::int32_t>::max()) {
        throw std::out_of_range("stoi");
    }
    number = static_cast<std::int32_t>(value);
    return true;
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// The names of the real subfolders, in the order in which the system delivers them.
std::vector<std::string> subfolders(const std::string& root) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, CloseFolder> folder(opendir(root.c_str()));
    if (!folder) {
        return names;
    }
    while (const dirent* entry = readdir(folder.get())) {
        const char* name = entry->d_name;
        if (entry->d_type == DT_DIR && std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) {
            names.emplace_back(name);
        }
    }
    return names;
}

}  // namespace

bool operator<(const NetcoreVersion& left, const NetcoreVersion& right) {
    return left.major != right.major ? left.major < right.major : left.minor < right.minor;
}

bool try_parse(const std::string& text, NetcoreVersion& version) {
    if (!text.starts_with(kFolderPrefix)) {
        return false;
    }
    const std::string numbers = cxxaw_substr(text, std::strlen(kFolderPrefix), std::string::npos);
    std::string major_text;
    std::string minor_text;
    NetcoreVersion parsed;
    if (!split(numbers, '.', major_text, minor_text) || !try_parse_int(major_text, parsed.major) ||
        !try_parse_int(minor_text, parsed.minor)) {
        return false;
    }
    version = parsed;
    return true;
}

namespace pal {

bool get_major_netcore_path(const std::string& root, const std::string& file_name, std::string& found) {
    std::vector<std::pair<NetcoreVersion, std::string>> versions;
    for (const std::string& name : subfolders(root)) {
        NetcoreVersion version;
        if (try_parse(name, version)) {
            versions.emplace_back(version, name);
        }
    }
    std::sort(versions.begin(), versions.end(),
              [](const auto& left, const auto& right) { return left.first < right.first; });
    for (auto pair = versions.rbegin(); pair != versions.rend(); ++pair) {
        const std::string candidate = build_path(root, pair->second);
        if (is_file_exists(build_path(candidate, file_name))) {
            found = candidate;
            return true;
        }
    }
    return false;
}

void get_app_folders(const std::string& root, bool debug, std::vector<std::string>& folders) {
    for (const std::string& name : subfolders(root)) {
        std::string path = build_path(root, name);
        if (debug) {
            path += kDebugFolder;
            if (!is_file_exists(path)) {
                continue;
            }
        }
        folders.insert(name == kLastFolder ? folders.end() : folders.begin(), path);
    }
}

}  // namespace pal
