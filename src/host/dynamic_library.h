#pragma once

#include <string>

/// A move-only handle to a loaded shared object, closed at the end unless `set_can_free(false)` was called.
class DynamicLibrary {
public:
    DynamicLibrary() = default;

    /// Takes the handle and the first-load flag. Whether the handle may be closed is not taken over: that
    /// belongs to the object, and a new one may.
    DynamicLibrary(DynamicLibrary&& other) noexcept;

    /// Gives up its own handle first. Its own permission to close stays as it is.
    DynamicLibrary& operator=(DynamicLibrary&& other) noexcept;

    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;
    ~DynamicLibrary();

    /// Loads the file, or finds it when the process has it already. `name` is not read.
    /// Throws `std::runtime_error` "DynamicLibrary::load" when neither works.
    static DynamicLibrary load(const std::string& path, const std::string& name);

    /// As `load`, into `library`, whose old handle is given up first; false when neither way works.
    static bool try_load(const std::string& path, const std::string& name, DynamicLibrary& library);

    /// Closes the handle when that is allowed; without permission the handle stays set.
    /// Tells whether there was a handle.
    bool free();

    void set_can_free(bool can_free) { m_can_free = can_free; }

    /// True when this object brought the file into the process, false when it found it there.
    bool is_first_load() const { return m_first_load; }

    /// The address of an exported symbol. Throws `std::logic_error` when nothing is loaded and
    /// `std::runtime_error` "No such symbol: <name>" when the library has no such symbol.
    void* get_symbol(const char* name) const;

    /// What the system gave for the library; null when nothing is loaded. Stays owned by this object.
    void* handle() const { return m_handle; }

private:
    bool m_can_free = true;
    void* m_handle = nullptr;
    bool m_first_load = false;
};
