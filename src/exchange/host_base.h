#pragma once

#include "exchange/fork_guard.h"

#include <cstddef>
#include <initializer_list>
#include <string>

class HostEnvironment;

/// Room for `N` bound methods. A base of its own, so that it stands (and is null) before TypeHost fills it.
template <std::size_t N>
struct HostSlots {
    void* slots[N]{};
};

/// The native counterpart of one managed class: its static methods as function pointers, bound by name in the
/// order of the names; the first that is missing ends the binding and makes the host invalid for good. A host
/// is built at its first use, under the GIL, lives until the process ends and never changes but in a forked
/// child.
///
/// A concrete host derives from SlottedHost<N> and SingleHost, and forwards by a cast of a slot:
///
///     struct PyHost_xx final : SlottedHost<2>, SingleHost<PyHost_xx> {
///         PyHost_xx() : SlottedHost("Managed.Class", names) {}
///         double get_x(void* handle) const { return reinterpret_cast<double (*)(void*)>(slots[0])(handle); }
///         static constexpr const char* names[] = {"get_X", "set_X"};
///     };
class TypeHost {
public:
    TypeHost(const TypeHost&) = delete;
    TypeHost& operator=(const TypeHost&) = delete;

    bool is_not_valid() const noexcept { return m_is_not_valid; }
    const std::string& error_msg() const noexcept { return m_error_msg; }

protected:
    /// `managed_class`, `names` and `slots` outlive the host.
    TypeHost(const char* managed_class, const char* const* names, void** slots, std::size_t count);
    ~TypeHost() = default;

private:
    bool set_method_ptr(const HostEnvironment& host, const char* method, void** slot);

    const char* m_assembly;
    const char* m_managed_class;
    BoundSlots m_bound;
    std::string m_error_msg;
    bool m_is_not_valid = false;
};

template <std::size_t N>
struct SlottedHost : HostSlots<N>, TypeHost {
protected:
    SlottedHost(const char* managed_class, const char* const (&names)[N])
        : TypeHost(managed_class, names, this->slots, N) {}
    ~SlottedHost() = default;
};

/// A value that `Make` makes at the first use, under the GIL, and that stands until the process ends. Every
/// call begins with one of these, so all but the first cost one test of a pointer, not the guard of a
/// function-local static.
template <auto Make>
class MadeOnce {
    using Value = decltype(Make());

public:
    static const Value& get() {
        if (m_made != nullptr) [[likely]] {
            return *m_made;
        }
        return make();
    }

private:
    [[gnu::noinline, gnu::cold]] static const Value& make() {
        static const Value value = Make();
        m_made = &value;
        return value;
    }

    static constinit inline const Value* m_made = nullptr;
};

/// Gives a host its one instance.
template <typename Host>
class SingleHost {
    static Host make() { return Host(); }

public:
    static const Host& get_instance() { return MadeOnce<make>::get(); }
};

/// Whether a wrapper type can be used: settled once, at its first use, and never changed.
struct PyHostState {
    bool is_not_valid = false;            // this type cannot be used
    bool is_reference_not_valid = false;  // the cause lies in a type that this one refers to
    std::string error_msg;                // the message to raise
};

/// Tells whether another type cannot be used, and if so why (`message` is written only then).
using IsNotValidFn = bool (*)(std::string& message);

/// The state of a type with the host `own` that refers to other types (its base, then its interfaces). The
/// first failure decides.
PyHostState fn_aggregate_host_state(const TypeHost& own, std::initializer_list<IsNotValidFn> references);

/// Raises an invalid state: TypeError, with a second one over it when the cause lies in a reference.
void fn_raise_host_state(const PyHostState& state);

/// The step before any use of a type without an instance: true, with a Python error set, when it cannot be
/// used.
inline bool fn_report_host_state(const PyHostState& state) {
    if (!state.is_not_valid) [[likely]] {
        return false;
    }
    fn_raise_host_state(state);
    return true;
}

/// The answer of an IsNotValidFn from the type's own state.
inline bool fn_is_host_state_not_valid(const PyHostState& state, std::string& message) {
    if (state.is_not_valid) {
        message = state.error_msg;
    }
    return state.is_not_valid;
}
