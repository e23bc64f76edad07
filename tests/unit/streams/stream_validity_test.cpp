#include "streams_fixture.h"

#include "streams/stream_host.h"

#include <cstdio>
#include <cstdlib>

// The validity of a type is settled once a process, so each case runs in a process of its own.

namespace {

// Prints what happens when a stream is made, twice, and what another type is told.
[[noreturn]] void make_streams() {
    PyType_Ready(&wrpPye_tyds_StreamWrapper);
    ManagedSide& managed = ManagedSide::instance();
    for (int i = 0; i < 2; ++i) {
        PyObject* made = fn_py_clr_type_generic_new(managed.make(), &wrpPye_tyds_StreamWrapper);
        std::fprintf(stderr, "made=%d living=%zu error=%s\n", made != nullptr, managed.living(),
                     take_error_chain().c_str());
    }
    std::string message;
    const bool is_not_valid = wrpPye_bltp_stream_is_not_valid(message);
    std::fprintf(stderr, "invalid=%d message=%s\n", is_not_valid, message.c_str());
    std::exit(0);
}

TEST(StreamValidityDeathTest, fails_with_a_missing_method) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const char missing[] =
        "While initializing the host for the 'Velbor.WrpGen.Interop.SiApiStream .Assembly=WrpInterop.Test.' "
        "type, an "
        "error occurred - Method 'Seek' not found .error=-2146233069.";
    const std::string once = "made=0 living=0 error=TypeError: " + std::string(missing) + "\n";
    EXPECT_EXIT(
        {
            ManagedSide::start();
            stream_entries::offer_all();
            ManagedSide::instance().withdraw(stream_entries::Class, "Seek");
            make_streams();
        },
        testing::ExitedWithCode(0), once + once + "invalid=1 message=" + missing);
}

TEST(StreamValidityDeathTest, fails_with_a_reference_that_fails) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string once =
        "made=0 living=0 error=TypeError: one or more refereced type is not initialized from TypeError: "
        "disposable "
        "host is not bound\n";
    EXPECT_EXIT(
        {
            ManagedSide::start();
            stream_entries::offer_all();
            disposable_is_invalid = true;
            make_streams();
        },
        testing::ExitedWithCode(0), once + once + "invalid=1 message=disposable host is not bound");
}

TEST(StreamValidityDeathTest, binds_in_order_and_stops_at_the_first_that_is_missing) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            ManagedSide::start();
            stream_entries::offer_all();
            ManagedSide::instance().withdraw(stream_entries::Class, "btp_CastTo");
            ManagedSide::instance().looked_up.clear();
            const bool is_not_valid = PyHost_ph_Stream::get_instance().is_not_valid();
            for (const std::string& name : ManagedSide::instance().looked_up) {
                std::fprintf(stderr, "%s ", name.c_str());
            }
            std::fprintf(stderr, "invalid=%d\n", is_not_valid);
            std::exit(0);
        },
        testing::ExitedWithCode(0),
        "CanRead CanSeek CanWrite Length Position Close Flush Read Seek SetLength Write btp_IsAssignable "
        "btp_TypeOf "
        "btp_CastTo invalid=1");
}

}  // namespace
