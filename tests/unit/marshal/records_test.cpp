#include "marshal/records.h"

#include "fake_runtime.h"
#include "marshal/scope_guards.h"
#include "python_fixture.h"

#include <vector>

namespace {

std::vector<void*> freed;

class ScopeGuards : public ::testing::Test {
protected:
    void SetUp() override {
        freed.clear();
        FakeRuntime::get().methods["FreeInstance"] =
            reinterpret_cast<void*>(+[](void* handle) { freed.push_back(handle); });
        ASSERT_TRUE(ExchangeHost::get_instance().initialize("Assembly"));
    }

    int handles[3];
};

TEST_F(ScopeGuards, PinnedHandlesThatWereNotAdoptedAreFreed) {
    {
        PyTrPinHandleStack<3> pins;
        pins.get_buffer()[0] = &handles[0];
        *pins[1] = &handles[1];
        *pins[2] = &handles[2];
        ++pins;
    }
    EXPECT_EQ(freed, (std::vector<void*>{&handles[1], &handles[2]}));
}

TEST_F(ScopeGuards, EmptySlotsAreNotFreed) {
    {
        PyTrPinHandleStack<3> pins;
        *pins[2] = &handles[2];
    }
    EXPECT_EQ(freed, (std::vector<void*>{&handles[2]}));
}

TEST_F(ScopeGuards, FullyAdoptedStackFreesNothing) {
    {
        PyTrPinHandleStack<3> pins;
        *pins[2] = &handles[2];
        pins.adopted = 4;
    }
    {
        PyTrPinHandleStack<1> pins;
        *pins[0] = &handles[0];
        ++pins;
    }
    EXPECT_TRUE(freed.empty());
}

TEST_F(ScopeGuards, ReferencesThatWereNotAdoptedAreDropped) {
    const PyRef kept = eval("object()");
    const PyRef dropped = eval("object()");
    {
        PyTrPyObjStack<4> outputs;
        *outputs[0] = fn_new_ref(kept.get());
        *outputs[3] = fn_new_ref(dropped.get());
        outputs.adopted = 1;
    }
    EXPECT_EQ(Py_REFCNT(kept.get()), 2);
    EXPECT_EQ(Py_REFCNT(dropped.get()), 1);
    Py_DECREF(kept.get());
    {
        PyTrPyObjStack<1> outputs;
        outputs.get_buffer()[0] = dropped.get();
        ++outputs;
    }
    EXPECT_EQ(Py_REFCNT(dropped.get()), 1);
}

TEST_F(ScopeGuards, BuildersDropTheirOwners) {
    const PyRef owner = eval("object()");
    const SameReferences same(owner.get());
    PyInterimArgBuilder interim;
    EXPECT_EQ(interim.handle, nullptr);
    interim.owner = fn_new_ref(owner.get());
    PyEphStrArgBuilder text;
    text.get_info()->owner = fn_new_ref(owner.get());
}

TEST(Records, StartAsTheirReadersExpect) {
    const PyBytesArg bytes;
    EXPECT_TRUE(bytes.buffer_held == 0 && bytes.length == -1 && bytes.bytes == nullptr);
    const PyStringArg text;
    EXPECT_TRUE(text.length == -1 && text.char_size == 0 && text.chars == nullptr);
    const VariantArg variant;
    EXPECT_TRUE(variant.kind == 0 && variant.reserved == 0 && variant.payload == nullptr);
    const PyCollectionArg collection;
    EXPECT_TRUE(collection.kind == 0 && collection.handle == nullptr && collection.type_key == 0);
}

}  // namespace
