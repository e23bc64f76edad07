#include "exchange/fork_guard.h"

#include "startup/cpython.h"

#include <pthread.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace {

BoundSlots* first_bound = nullptr;
bool is_dead = false;

std::intptr_t raise_not_available(std::intptr_t result) {
    PyErr_SetString(PyExc_RuntimeError, ManagedCodeNotAvailable);
    return result;
}

// One entry serves all signatures: arguments go unread, and an integer or pointer result stands in the same
// register. A floating result is whatever was there; its caller asks for a pending error first.
std::intptr_t dead_with_zero() {
    return raise_not_available(0);
}

std::intptr_t dead_with_minus_one() {
    return raise_not_available(-1);
}

void free_nothing() {}

// Methods whose integer result is read before the error state: 0 would be an element, a count or a refused
// cast. All others are handles, truth values and "it is there" flags, for which 0 is the safe answer.
constexpr std::string_view StatusMethods[] = {
    "MoveNext", "GetEnumerator", "SqLength", "SqContains", "CountOf",    "SqGetItem",    "SqSetItem",
    "RemoveAt", "Pop",           "IndexBy",  "btp_CastTo", "btp_CastAs", "btp_CastFrom",
};

}  // namespace

void fn_guard_slots(BoundSlots& bound) noexcept {
    bound.next = first_bound;
    first_bound = &bound;
}

void fn_install_fork_guard() noexcept {
    static const int installed = pthread_atfork(nullptr, nullptr, fn_kill_bridge);
    static_cast<void>(installed);
}

bool fn_is_bridge_dead() noexcept {
    return is_dead;
}

void* fn_dead_entry(const char* method) noexcept {
    const std::string_view name = method;
    if (name == "FreeInstance") {
        return reinterpret_cast<void*>(free_nothing);
    }
    const bool is_status = std::ranges::find(StatusMethods, name) != std::end(StatusMethods);
    return reinterpret_cast<void*>(is_status ? dead_with_minus_one : dead_with_zero);
}

void fn_kill_bridge() noexcept {
    is_dead = true;
    for (const BoundSlots* bound = first_bound; bound != nullptr; bound = bound->next) {
        for (std::size_t i = 0; i < bound->count; ++i) {
            bound->slots[i] = fn_dead_entry(bound->names[i]);
        }
    }
}
