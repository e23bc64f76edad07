#pragma once

#include <cstddef>

#include "exchange/host_base.h"

// A host's entry points are one list of rows X(operation, managed name, signature), in binding order. The
// list gives the host its names, its slots and its forwarders; no name stands anywhere else.

#define VELBOR_HOST_NAME(operation, name, ...) name,
#define VELBOR_HOST_SLOT(operation, name, ...) slot_##operation,
#define VELBOR_HOST_COUNT(operation, name, ...) +1
#define VELBOR_HOST_FORWARDER(operation, name, ...)               \
    template <class... Arguments>                                 \
    auto operation(Arguments... arguments) const {                \
        return call<__VA_ARGS__>(slot_##operation, arguments...); \
    }

/// The number of rows of a list.
#define VELBOR_HOST_SIZE(ENTRIES) (0 ENTRIES(VELBOR_HOST_COUNT))

/// The body of a host class: the list's forwarders and slot numbers.
#define VELBOR_HOST_BODY(ENTRIES)  \
public:                            \
    ENTRIES(VELBOR_HOST_FORWARDER) \
                                   \
private:                           \
    enum Slot : std::size_t { ENTRIES(VELBOR_HOST_SLOT) };

/// A host over `Count` entry points that calls a slot through the signature that its row gives.
template <std::size_t Count>
class BoundHost : public SlottedHost<Count> {
protected:
    using SlottedHost<Count>::SlottedHost;
    ~BoundHost() = default;

    template <class Signature, class... Arguments>
    auto call(std::size_t slot, Arguments... arguments) const {
        return reinterpret_cast<Signature*>(this->slots[slot])(arguments...);
    }
};
