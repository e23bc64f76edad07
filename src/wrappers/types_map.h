#pragma once

#include "startup/cpython.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

/// Which Python type stands for a managed type, by the managed full name and by the managed side's type key.
/// Holds borrowed pointers to static type objects.
///
/// A failing lock or allocation ends the process: nobody could catch it across the Python boundary.
class PyWrpTypesMap {
public:
    /// Constructed at first use.
    static PyWrpTypesMap& get_instance() noexcept;

    /// Registers a type under its managed full name; only while the module tree is built, since `find` by
    /// name takes no lock.
    void add(std::u16string_view name, PyTypeObject* type) noexcept;

    /// Remembers which type a key stands for.
    void add(std::uint64_t key, PyTypeObject* type) noexcept;

    /// Remembers also that no better type than the declared one exists: null.
    void add_weak(std::uint64_t key, PyTypeObject* type) noexcept;

    [[nodiscard]] bool find(std::u16string_view name, PyTypeObject*& type) const noexcept;
    [[nodiscard]] bool find(std::uint64_t key, PyTypeObject*& type) noexcept;

    /// True when the key is known; the type is then possibly null.
    [[nodiscard]] bool find_weak(std::uint64_t key, PyTypeObject*& type) noexcept;

    /// Makes room for `count` names and keys.
    void reserve(int count) noexcept;

private:
    struct NameHash {
        using is_transparent = void;
        std::size_t operator()(std::u16string_view name) const noexcept {
            return std::hash<std::u16string_view>{}(name);
        }
    };

    std::unordered_map<std::u16string, PyTypeObject*, NameHash, std::equal_to<>> m_by_name;
    std::unordered_map<std::uint64_t, PyTypeObject*> m_by_key;
    std::unordered_map<std::uint64_t, PyTypeObject*> m_by_weak_key;
    std::mutex m_key_lock;
    std::mutex m_weak_key_lock;
};
