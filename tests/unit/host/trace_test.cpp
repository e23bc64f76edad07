#include "host/trace.h"

#include <gtest/gtest.h>

#include "support/child_process.h"

namespace {

// What a process prints whose COREHOST_TRACE has this value, null for an unset one, and that traces a line of
// each kind.
ChildResult traced(const char* value) {
    return run_in_child([value] {
        if (value != nullptr) {
            setenv("COREHOST_TRACE", value, 1);
        } else {
            unsetenv("COREHOST_TRACE");
        }
        trace::initialize();
        trace::warning("w%d", 1);
        trace::info("i%d", 2);
        trace::verbose("v%d", 3);
        trace::error("e%d", 4);
        std::exit(trace::is_enabled() ? 10 : 20);
    });
}

}  // namespace

TEST(Trace, OnPrintsItsFirstLineAndEveryLineToStandardOutput) {
    const ChildResult child = traced("1");
    EXPECT_EQ(child.out, "CLR host tracing enabled\r\nw1\r\ni2\r\nv3\r\n");
    EXPECT_EQ(child.err, "e4\r\n");
    EXPECT_EQ(child.exit_code, 10);
}

TEST(Trace, AnyNumberFromOneSwitchesItOn) {
    EXPECT_EQ(traced("7").exit_code, 10);
}

TEST(Trace, OffPrintsNothingButErrors) {
    for (const char* value : {"0", "-1", "yes", ""}) {
        const ChildResult child = traced(value);
        EXPECT_EQ(child.out, "") << value;
        EXPECT_EQ(child.err, "e4\r\n") << value;
        EXPECT_EQ(child.exit_code, 20) << value;
    }
    EXPECT_EQ(traced(nullptr).exit_code, 20);
}

TEST(Trace, InitializeLeavesTracingThatIsOnAlone) {
    const ChildResult child = run_in_child([] {
        trace::enable();
        setenv("COREHOST_TRACE", "0", 1);
        trace::initialize();
        require(trace::is_enabled(), "still on");
        setenv("COREHOST_TRACE", "1", 1);
        trace::initialize();  // no second greeting
        trace::disable();
        require(!trace::is_enabled(), "off");
        trace::info("not printed");
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    EXPECT_EQ(child.out, "");
}
