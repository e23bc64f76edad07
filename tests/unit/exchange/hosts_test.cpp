#include "exchange/exchange_host.h"
#include "exchange/host_base.h"
#include "exchange/object_host.h"

#include "fake_runtime.h"
#include "python_fixture.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char Assembly[] = "WrpInterop.Velbor.Voxlar";

using Names = std::vector<std::string>;

struct TestHost final : SlottedHost<3> {
    TestHost() : SlottedHost("Managed.Test", names) {}
    double get_x(void* handle) const { return reinterpret_cast<double (*)(void*)>(slots[0])(handle); }
    static constexpr const char* names[] = {"get_X", "MoveNext", "FreeInstance"};
};

double get_x(void* handle) {
    return *static_cast<double*>(handle);
}

class Hosts : public ::testing::Test {
protected:
    void SetUp() override {
        FakeRuntime::get() = {};
        ExchangeHost::get_instance().initialize(Assembly);
        FakeRuntime::get().requests.clear();
    }

    FakeRuntime& runtime = FakeRuntime::get();
};

TEST_F(Hosts, ExchangeHostBindsInItsOrder) {
    ExchangeHost& exchange = ExchangeHost::get_instance();
    EXPECT_TRUE(exchange.initialize(Assembly));
    EXPECT_EQ(runtime.requested_methods(),
              (Names{"GetTypeName", "SetExceptionCallback", "SetCatchAndClearErrorCallback",
                     "SetU16StrBuilderCallback", "SetPyUnraisableStrBuilderCallback",
                     "SetPyStrBuilderCallback", "SetPyBytesBuilderCallback", "SetPyObjApiCallbacks",
                     "SetPyStaticCallbacks", "SetPyGenericCallbacks", "FreePendingArgs", "FreeInstance",
                     "FreeInstance", "InitServices", "BoxStcTarget"}));
    for (const FakeRuntime::Request& request : runtime.requests) {
        EXPECT_EQ(request.assembly, Assembly);
        EXPECT_EQ(request.type, "Velbor.WrpGen.Interop.ExchangeHost");
    }
    EXPECT_STREQ(exchange.get_assembly_name(), Assembly);
}

TEST_F(Hosts, ExchangeHostTellsTheMissingMethod) {
    runtime.missing["BoxStcTarget"] = -2146233069;
    EXPECT_FALSE(ExchangeHost::get_instance().initialize(Assembly));
    EXPECT_EQ(
        ExchangeHost::get_instance().error_msg(),
        "While initializing the host for the 'Velbor.WrpGen.Interop.ExchangeHost "
        "(Assembly=WrpInterop.Velbor.Voxlar)' type, an error occurred - Method 'BoxStcTarget' not found "
        "(error=-2146233069)");
    runtime.missing.clear();
    EXPECT_TRUE(ExchangeHost::get_instance().initialize(Assembly));
}

TEST_F(Hosts, BothFreesReachOneManagedMethod) {
    static std::vector<void*> freed;
    runtime.methods["FreeInstance"] = reinterpret_cast<void*>(+[](void* handle) { freed.push_back(handle); });
    ExchangeHost::get_instance().initialize(Assembly);
    int object = 0, structure = 0;
    ExchangeHost::get_instance().free_instance(&object);
    ExchangeHost::get_instance().free_struct(&structure);
    EXPECT_EQ(freed, (std::vector<void*>{&object, &structure}));
}

TEST_F(Hosts, ObjectHostBindsInItsOrder) {
    const ObjectHost& host = ObjectHost::get_instance();
    EXPECT_FALSE(host.is_not_valid());
    EXPECT_EQ(runtime.requested_methods(),
              (Names{"ToStringOfObj", "ToStringOfStc", "GetHashOfObj", "GetHashOfStc", "IsEqualsOfObj",
                     "IsEqualsOfStc", "IsTypeOf", "GetTypeName", "GetObjType", "GetStcType", "Dispose"}));
    EXPECT_EQ(runtime.requests[0].type, "Velbor.WrpGen.Interop.ObjectHost");
}

TEST_F(Hosts, BindingStopsAtTheFirstMissingMethodAndIsNotRetried) {
    runtime.missing["MoveNext"] = 7;
    static TestHost host;
    EXPECT_TRUE(host.is_not_valid());
    EXPECT_EQ(host.error_msg(),
              "While initializing the host for the 'Managed.Test (Assembly=WrpInterop.Velbor.Voxlar)' type, "
              "an error "
              "occurred - Method 'MoveNext' not found (error=7)");
    EXPECT_NE(host.slots[0], nullptr);
    EXPECT_EQ(host.slots[2], nullptr);
    EXPECT_EQ(runtime.requested_methods(), (Names{"get_X", "MoveNext"}));
}

TEST_F(Hosts, BoundMethodIsCalledThroughItsSlot) {
    runtime.methods["get_X"] = reinterpret_cast<void*>(get_x);
    static TestHost host;
    double value = 2.5;
    EXPECT_FALSE(host.is_not_valid());
    EXPECT_EQ(host.get_x(&value), 2.5);
}

TEST_F(Hosts, ValidStateRaisesNothing) {
    static TestHost host;
    const PyHostState state = fn_aggregate_host_state(host, {[](std::string&) { return false; }});
    std::string message = "untouched";
    EXPECT_FALSE(fn_report_host_state(state));
    EXPECT_FALSE(fn_is_host_state_not_valid(state, message));
    EXPECT_EQ(message, "untouched");
    EXPECT_EQ(take_error(), "");
}

TEST_F(Hosts, OwnFailureIsAPlainTypeError) {
    runtime.missing["get_X"] = 1;
    static TestHost host;
    const PyHostState state = fn_aggregate_host_state(host, {[](std::string& message) {
                                                          message = "not asked";
                                                          return true;
                                                      }});
    EXPECT_TRUE(state.is_not_valid);
    EXPECT_FALSE(state.is_reference_not_valid);
    EXPECT_TRUE(fn_report_host_state(state));
    EXPECT_EQ(take_error(), "TypeError: " + host.error_msg());
    std::string message;
    EXPECT_TRUE(fn_is_host_state_not_valid(state, message));
    EXPECT_EQ(message, host.error_msg());
}

TEST_F(Hosts, FailureOfAReferenceIsChained) {
    static TestHost host;
    const PyHostState state = fn_aggregate_host_state(host, {[](std::string&) { return false; },
                                                             [](std::string& message) {
                                                                 message = "the base is missing a method";
                                                                 return true;
                                                             },
                                                             [](std::string& message) {
                                                                 message = "a later one";
                                                                 return true;
                                                             }});
    EXPECT_TRUE(fn_report_host_state(state));
    const PyRef error = PyRef::steal(fn_take_pending_error());
    EXPECT_TRUE(Py_IS_TYPE(error.get(), reinterpret_cast<PyTypeObject*>(PyExc_TypeError)));
    EXPECT_EQ(text_of(error.get()), "one or more refereced type is not initialized");
    const PyRef cause = PyRef::steal(PyObject_GetAttrString(error.get(), "__cause__"));
    EXPECT_EQ(text_of(cause.get()), "the base is missing a method");
}

/// Runs `child` in a forked process, which answers with its exit code.
template <typename Child>
int exit_code_of_fork(Child child) {
    const pid_t pid = fork();
    if (pid == 0) {
        _exit(child());
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(Hosts, ForkedChildReachesNoManagedCode) {
    static int managed_calls = 0;
    void (*count_call)() = [] { ++managed_calls; };
    for (const char* method : {"get_X", "MoveNext", "FreeInstance", "ToStringOfObj"}) {
        runtime.methods[method] = reinterpret_cast<void*>(count_call);
    }
    ExchangeHost& exchange = ExchangeHost::get_instance();
    exchange.initialize(Assembly);
    static TestHost host;
    fn_install_fork_guard();
    fn_install_fork_guard();

    const std::string expected = "RuntimeError: managed code is not available in a forked process";
    const int failed_step = exit_code_of_fork([&] {
        if (!fn_is_bridge_dead()) {
            return 1;
        }
        host.get_x(nullptr);
        if (take_error() != expected) {
            return 2;
        }
        if (reinterpret_cast<int (*)(void*)>(host.slots[1])(nullptr) != -1 || take_error() != expected) {
            return 3;
        }
        exchange.free_instance(&managed_calls);
        if (!take_error().empty()) {
            return 4;
        }
        if (exchange.box_stc_target(nullptr) != nullptr || take_error() != expected) {
            return 5;
        }
        runtime.requests.clear();
        static TestHost late;
        if (late.is_not_valid() || !runtime.requests.empty()) {
            return 6;
        }
        late.get_x(nullptr);
        if (take_error() != expected) {
            return 7;
        }
        return managed_calls == 0 ? 0 : 8;
    });
    EXPECT_EQ(failed_step, 0);

    EXPECT_FALSE(fn_is_bridge_dead());
    exchange.free_instance(nullptr);
    EXPECT_EQ(managed_calls, 1);
    EXPECT_EQ(take_error(), "");
}

}  // namespace
