#pragma once

#include <string>

#include "exchange/host_base.h"

template <class Host, IsNotValidFn... References>
PyHostState fn_settle_collection_state() {
    return fn_aggregate_host_state(Host::get_instance(), {References...});
}

/// The validity of a collection wrapper type: its own host's, then that of each type that it refers to, in
/// order. Settled at the first call and kept.
template <class Host, IsNotValidFn... References>
const PyHostState& fn_collection_state() {
    return MadeOnce<fn_settle_collection_state<Host, References...>>::get();
}

/// Raises the stored message when the type cannot be used; true then.
template <class Host, IsNotValidFn... References>
bool fn_collection_invalidate() {
    return fn_report_host_state(fn_collection_state<Host, References...>());
}

/// The same question asked by another type: copies the message and raises nothing.
template <class Host, IsNotValidFn... References>
bool fn_collection_is_not_valid(std::string& message) {
    return fn_is_host_state_not_valid(fn_collection_state<Host, References...>(), message);
}
