#include "start_properties.h"

#include <dirent.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace {

constexpr char kTrustedAssemblies[] = "TRUSTED_PLATFORM_ASSEMBLIES";
constexpr char kAppPaths[] = "APP_PATHS";
constexpr char kNativeFolders[] = "NATIVE_DLL_SEARCH_DIRECTORIES";
constexpr char kSeparator = ':';
constexpr std::string_view kAssemblyEnding = ".dll";

// A default, and the runtime's own environment variable for the same setting where the property would win
// over it: a user who has set that variable gets what it says.
struct Default {
    const char* key;
    const char* value;
    const char* variable;
};

constexpr Default kDefaults[] = {
    {"System.GC.Server", "false", nullptr},
    {"System.GC.Concurrent", "false", nullptr},
    {"System.Globalization.Invariant", "true", "DOTNET_SYSTEM_GLOBALIZATION_INVARIANT"},
    // Cultures can be named in invariant mode, though all of them behave alike.
    {"System.Globalization.PredefinedCulturesOnly", "false",
     "DOTNET_SYSTEM_GLOBALIZATION_PREDEFINED_CULTURES_ONLY"},
};

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

std::string assemblies_of(const std::string& folder) {
    std::string list;
    const std::unique_ptr<DIR, CloseFolder> entries(opendir(folder.c_str()));
    if (!entries) {
        throw std::runtime_error("the runtime's folder '" + folder + "' cannot be read");
    }
    while (const dirent* entry = readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        if (!name.ends_with(kAssemblyEnding)) {
            continue;
        }
        if (!list.empty()) {
            list += kSeparator;
        }
        list += folder;
        list += '/';
        list += name;
    }
    return list;
}

// Calls `take` with each part of a list of folders; an empty list has none.
template <typename Take>
void for_each_part(const std::string& list, Take take) {
    std::string::size_type start = 0;
    while (start < list.size()) {
        auto end = list.find(kSeparator, start);
        if (end == std::string::npos) {
            end = list.size();
        }
        take(list.substr(start, end - start));
        start = end + 1;
    }
}

bool is_set(const char* variable) {
    const char* value = variable != nullptr ? std::getenv(variable) : nullptr;
    return value != nullptr && *value != '\0';
}

}  // namespace

StartProperties::StartProperties(int count, const char* const* keys, const char* const* values,
                                 const std::string& runtime_folder) {
    for (int i = 0; i < count; ++i) {
        m_properties.push_back({keys[i], values[i] != nullptr ? values[i] : ""});
    }
    check_folders(kAppPaths);
    complete_trusted_assemblies(runtime_folder);
    complete_native_folders(runtime_folder);
    add_defaults();
}

std::string* StartProperties::find_mutable(const std::string& key) {
    for (Property& property : m_properties) {
        if (property.key == key) {
            return &property.value;
        }
    }
    return nullptr;
}

const std::string* StartProperties::find(const std::string& key) const {
    return const_cast<StartProperties*>(this)->find_mutable(key);
}

void StartProperties::check_folders(const char* key) const {
    const std::string* folders = find(key);
    if (folders == nullptr) {
        return;
    }
    for_each_part(*folders, [](const std::string& folder) {
        if (folder.empty() || folder.front() != '/') {
            throw std::runtime_error("the assembly folder '" + folder + "' is not an absolute path");
        }
    });
}

void StartProperties::complete_trusted_assemblies(const std::string& runtime_folder) {
    std::string* list = find_mutable(kTrustedAssemblies);
    if (list == nullptr) {
        m_properties.push_back({kTrustedAssemblies, assemblies_of(runtime_folder)});
    } else if (list->empty()) {
        *list = assemblies_of(runtime_folder);
    }
}

void StartProperties::complete_native_folders(const std::string& runtime_folder) {
    std::string* folders = find_mutable(kNativeFolders);
    if (folders == nullptr) {
        m_properties.push_back({kNativeFolders, runtime_folder});
        return;
    }
    bool has_it = false;
    for_each_part(*folders, [&](const std::string& folder) { has_it = has_it || folder == runtime_folder; });
    if (!has_it) {
        if (!folders->empty()) {
            *folders += kSeparator;
        }
        *folders += runtime_folder;
    }
}

void StartProperties::add_defaults() {
    for (const Default& row : kDefaults) {
        if (find(row.key) == nullptr && !is_set(row.variable)) {
            m_properties.push_back({row.key, row.value});
        }
    }
}

std::vector<const char*> StartProperties::keys() const {
    std::vector<const char*> texts;
    for (const Property& property : m_properties) {
        texts.push_back(property.key.c_str());
    }
    return texts;
}

std::vector<const char*> StartProperties::values() const {
    std::vector<const char*> texts;
    for (const Property& property : m_properties) {
        texts.push_back(property.value.c_str());
    }
    return texts;
}
