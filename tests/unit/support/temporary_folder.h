#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

/// A new folder of its own, removed with all it holds by the process that made it.
class TemporaryFolder {
public:
    TemporaryFolder() : m_owner(getpid()) {
        std::string pattern = (std::filesystem::temp_directory_path() / "velbor-unit-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("mkdtemp");
        }
        m_path = pattern;
    }

    ~TemporaryFolder() {
        if (getpid() == m_owner) {
            std::error_code ignored;
            std::filesystem::remove_all(m_path, ignored);
        }
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return m_path; }

    std::string add_folder(const std::string& name) const {
        const std::string folder = m_path + "/" + name;
        std::filesystem::create_directories(folder);
        return folder;
    }

    std::string add_file(const std::string& name, const std::string& content = "") const {
        const std::string file = m_path + "/" + name;
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

private:
    pid_t m_owner;
    std::string m_path;
};
