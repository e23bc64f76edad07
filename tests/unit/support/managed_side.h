#pragma once

#include "python_namespace.h"
#include "wrappers/type_object.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

/// A managed object, or a holder of a managed value, as far as the native side can tell one from another.
struct ManagedObject {
    std::string type = "Test.Thing";  // managed full name
    std::uint64_t key = 1;            // type key
    std::string text = "thing";
    std::int32_t hash = 7;
    int value = 0;  // what makes two objects equal
};

/// The managed side of a test: the exchange and object hosts answered in the test program, every living
/// handle known. Freeing a handle that is not alive fails the test.
class ManagedSide {
public:
    /// The side that was started.
    static ManagedSide& instance();

    /// Binds the hosts and takes over the capsules, once a process; clears what a test left.
    static ManagedSide& start();

    /// Offers an entry point to hosts that are bound from now on.
    template <typename Result, typename... Arguments>
    void offer(const char* managed_class, const char* method, Result (*entry)(Arguments...)) {
        m_entries[std::string(managed_class) + "." + method] = reinterpret_cast<void*>(entry);
    }

    /// Takes an entry point back.
    void withdraw(const char* managed_class, const char* method) {
        m_entries.erase(std::string(managed_class) + "." + method);
    }

    /// The methods that were looked up, in order.
    std::vector<std::string> looked_up;

    /// A new handle.
    void* make(ManagedObject object = {});
    ManagedObject& at(void* handle);
    std::size_t living() const { return m_living.size(); }
    void free(void* handle);

    /// What was called since the last look, separated by blanks.
    std::string calls();
    void record(const std::string& call) { m_calls.push_back(call); }

    /// Entry points of this name raise RuntimeError "managed" and answer 0.
    std::set<std::string> failing;

    /// Records the call; true, with the error set, when it is to fail.
    bool enter(const char* name);

    /// What "ToStringOfObj" answers without giving a text.
    bool without_text = false;

    /// Looks up an entry point: 0, or the status of a missing method.
    std::int32_t resolve(const char* type, const char* method, void** delegate);

private:
    std::map<std::string, void*> m_entries;
    std::map<void*, ManagedObject> m_living;
    std::vector<std::string> m_calls;
};

/// Starts a test with a managed side and ends it with no handle left.
class ManagedTest : public ::testing::Test {
protected:
    ManagedTest() : managed(ManagedSide::start()) {}
    void TearDown() override {
        python.clear();
        EXPECT_EQ(managed.living(), 0u);
        EXPECT_EQ(take_error(), "");
    }

    PythonNamespace python;
    ManagedSide& managed;
};

/// Wrapper types over the managed side: a class with a subclass, a struct and an interface, each readied and
/// marked.
extern PyTypeObject ThingType;
extern PyTypeObject SpecialThingType;
extern PyTypeObject PointType;
extern PyTypeObject NamedType;

/// Types of another module of the family: other slots, the same markers.
extern PyTypeObject ForeignThingType;
extern PyTypeObject ForeignPointType;

/// While true, none of the types can be used.
extern bool types_are_invalid;
bool invalidate_types();

/// A wrapper of a new handle.
PyObject* make_wrapper(PyTypeObject& type, ManagedObject object = {});
