#include "wrappers/types_map.h"

namespace {

template <typename Table, typename Key>
bool find_in(const Table& table, const Key& key, PyTypeObject*& type) {
    const auto found = table.find(key);
    if (found == table.end()) {
        return false;
    }
    type = found->second;
    return true;
}

}  // namespace

PyWrpTypesMap& PyWrpTypesMap::get_instance() noexcept {
    static PyWrpTypesMap instance;
    return instance;
}

void PyWrpTypesMap::add(std::u16string_view name, PyTypeObject* type) noexcept {
    m_by_name.insert_or_assign(std::u16string(name), type);
}

void PyWrpTypesMap::add(std::uint64_t key, PyTypeObject* type) noexcept {
    const std::lock_guard lock(m_key_lock);
    m_by_key.insert_or_assign(key, type);
}

void PyWrpTypesMap::add_weak(std::uint64_t key, PyTypeObject* type) noexcept {
    const std::lock_guard lock(m_weak_key_lock);
    m_by_weak_key.insert_or_assign(key, type);
}

bool PyWrpTypesMap::find(std::u16string_view name, PyTypeObject*& type) const noexcept {
    return find_in(m_by_name, name, type);
}

bool PyWrpTypesMap::find(std::uint64_t key, PyTypeObject*& type) noexcept {
    const std::lock_guard lock(m_key_lock);
    return find_in(m_by_key, key, type);
}

bool PyWrpTypesMap::find_weak(std::uint64_t key, PyTypeObject*& type) noexcept {
    const std::lock_guard lock(m_weak_key_lock);
    return find_in(m_by_weak_key, key, type);
}

void PyWrpTypesMap::reserve(int count) noexcept {
    m_by_name.reserve(static_cast<std::size_t>(count));
    const std::lock_guard lock(m_key_lock);
    m_by_key.reserve(static_cast<std::size_t>(count));
}
