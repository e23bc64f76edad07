#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The version in the name of a runtime folder, such as "netcore10.0".
struct NetcoreVersion {
    std::int32_t major;
    std::int32_t minor;

    NetcoreVersion() {}  // NOLINT: both numbers are left as they are until `try_parse` sets them
    NetcoreVersion(std::int32_t major_number, std::int32_t minor_number)
        : major(major_number), minor(minor_number) {}
};

/// By the major number, then by the minor one.
bool operator<(const NetcoreVersion& left, const NetcoreVersion& right);

/// Reads "netcore<major>.<minor>", both numbers plain digits; false for any other text.
/// Throws `std::out_of_range` "stoi" for a number beyond 32 bits.
bool try_parse(const std::string& text, NetcoreVersion& version);

namespace pal {

/// Finds, among the "netcore<major>.<minor>" subfolders of `root`, the highest version that holds
/// `file_name`. Links and entries of unknown kind are passed over. False when there is none, or no such root.
bool get_major_netcore_path(const std::string& root, const std::string& file_name, std::string& found);

/// Adds each subfolder of `root` to `folders`: "pydrawing" at the end, every other at the front. With
/// `debug`, the "debug" folder inside each, where there is one. A root that cannot be opened adds nothing.
void get_app_folders(const std::string& root, bool debug, std::vector<std::string>& folders);

}  // namespace pal
