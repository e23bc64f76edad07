#pragma once

#include <cstddef>

// A forked child must not reach managed code: a garbage collection in it would signal threads of its parent.
// A handler that runs once in the child replaces every bound slot, so an ordinary call pays nothing for the
// guard.

/// The slots of one host: a node of the process-wide list. It and what it points to live as long as the
/// process.
struct BoundSlots {
    const char* const* names;  // managed method of each slot
    void** slots;
    std::size_t count;
    BoundSlots* next;
};

/// The text of the RuntimeError that every call in a forked child ends in.
inline constexpr char ManagedCodeNotAvailable[] = "managed code is not available in a forked process";

/// Puts a host's slots under the guard. Called with the GIL held.
void fn_guard_slots(BoundSlots& bound) noexcept;

/// Registers the handler that kills the bridge in a forked child; once a process, later calls do nothing.
void fn_install_fork_guard() noexcept;

/// True in a process that was forked off one in which the guard was installed.
bool fn_is_bridge_dead() noexcept;

/// The entry that stands for a managed method in a forked child: it sets RuntimeError and returns what the
/// method's callers take for failure. Freeing does nothing and sets nothing.
void* fn_dead_entry(const char* method) noexcept;

/// What the handler does: from here on the bridge is dead.
void fn_kill_bridge() noexcept;
