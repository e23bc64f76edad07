#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

// A managed side in C++: real lists behind the entry points of every collection class, so that hosts,
// forwarders and wrappers run as they are. It stands in for HostEnvironment at link time.

namespace fake {

/// A managed object. Python sees it through handles, each of which is freed once.
struct Object {
    int id = 0;
    explicit Object(int number) : id(number) {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;
};
using ObjectRef = std::shared_ptr<Object>;

/// A new handle of an object; null of none.
void* new_handle(ObjectRef object);

/// The object behind a handle.
ObjectRef object_of(void* handle);

/// The number of handles that nobody has freed.
int living_handles();

struct State {
    std::vector<std::string> calls;      // "Name(arguments)", when `recording`
    std::vector<std::string> bound;      // "Class.Method" in the order of the look-ups
    std::map<std::string, int> missing;  // "Class.Method" to the status of a look-up
    std::string failing;                 // the entry point that fails
    int fails_after = 0;                 // calls that it answers before
    bool recording = true;
    int assignable = 1;    // the answer of btp_IsAssignable
    int handles_bulk = 1;  // the answer of the bulk operations; another one does nothing
    int cast_status = 1;   // the answer of btp_CastTo and btp_CastAs
    int length_error = 0;  // added to the count that collections tell
};
State& state();

/// A collection of the element type of `tag` (empty: untyped) from Python values; null with an error.
void* new_collection(const std::string& tag, PyObject* items);

}  // namespace fake
