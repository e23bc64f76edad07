#include "host/host_exceptions.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

std::string system_text(int code) {
    return std::strerror(code);
}

template <typename Exception>
class HostExceptions : public testing::Test {};

using Both = testing::Types<BaseException, HostException>;
TYPED_TEST_SUITE(HostExceptions, Both);

}  // namespace

TYPED_TEST(HostExceptions, CodeAlone) {
    const TypeParam error(2);
    EXPECT_EQ(error.error_code(), 2U);
    EXPECT_EQ(error.what(), system_text(2));
}

TYPED_TEST(HostExceptions, CodeAndText) {
    const TypeParam error(5, "boom");
    EXPECT_EQ(error.error_code(), 5U);
    EXPECT_STREQ(error.what(), "boom");
}

TYPED_TEST(HostExceptions, TextAlone) {
    const TypeParam error("boom");
    EXPECT_EQ(error.error_code(), 0U);
    EXPECT_STREQ(error.what(), "boom");
}

TYPED_TEST(HostExceptions, PrefixAndCode) {
    const TypeParam error("open", 2);
    EXPECT_EQ(error.error_code(), 2U);
    EXPECT_EQ(error.what(), "open: " + system_text(2));
}

TYPED_TEST(HostExceptions, PrefixWithoutCodeHasNoSeparator) {
    EXPECT_EQ(TypeParam("open", 0).what(), "open" + system_text(0));
}

TYPED_TEST(HostExceptions, TheTextIsComposedOnce) {
    const TypeParam error("open", 2);
    const char* first = error.what();
    EXPECT_EQ(first, error.what());
    EXPECT_EQ(first, "open: " + system_text(2));
}

TYPED_TEST(HostExceptions, AnEmptyGivenTextIsComposedFromTheCode) {
    EXPECT_EQ(TypeParam(2, "").what(), system_text(2));
}

TEST(HostException, IsCaughtAsItsBases) {
    try {
        throw HostException(0x80131506U, "status");
    } catch (const BaseException& error) {
        EXPECT_EQ(error.error_code(), 0x80131506U);
    }
    EXPECT_THROW(throw HostException(1), std::exception);
}
