#include "start_properties.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

#include "support/temporary_folder.h"

namespace {

constexpr char kTrusted[] = "TRUSTED_PLATFORM_ASSEMBLIES";
constexpr char kAppPaths[] = "APP_PATHS";
constexpr char kNative[] = "NATIVE_DLL_SEARCH_DIRECTORIES";
constexpr char kInvariant[] = "System.Globalization.Invariant";
constexpr char kInvariantVariable[] = "DOTNET_SYSTEM_GLOBALIZATION_INVARIANT";

class StartPropertiesTest : public testing::Test {
protected:
    StartPropertiesTest() { unsetenv(kInvariantVariable); }

    StartProperties complete(std::vector<const char*> keys, std::vector<const char*> values) const {
        return StartProperties(static_cast<int>(keys.size()), keys.data(), values.data(), folder.path());
    }

    const TemporaryFolder folder;
};

std::string value_of(const StartProperties& properties, const std::string& key) {
    const std::string* value = properties.find(key);
    return value != nullptr ? *value : "(not set)";
}

}  // namespace

TEST_F(StartPropertiesTest, AnEmptyOrMissingTrustedListBecomesTheRuntimesAssemblies) {
    const std::string assembly = folder.add_file("System.Private.CoreLib.dll");
    folder.add_file("libcoreclr.so");
    folder.add_file("System.dll.config");
    EXPECT_EQ(value_of(complete({kTrusted}, {""}), kTrusted), assembly);
    EXPECT_EQ(value_of(complete({kTrusted}, {nullptr}), kTrusted), assembly);
    EXPECT_EQ(value_of(complete({}, {}), kTrusted), assembly);
    folder.add_file("System.Runtime.dll");
    EXPECT_EQ(
        value_of(complete({}, {}), kTrusted).size(),
        (folder.path() + "/System.Private.CoreLib.dll:" + folder.path() + "/System.Runtime.dll").size());
}

TEST_F(StartPropertiesTest, AGivenTrustedListStands) {
    folder.add_file("System.Runtime.dll");
    EXPECT_EQ(value_of(complete({kTrusted}, {"/a.dll"}), kTrusted), "/a.dll");
}

TEST_F(StartPropertiesTest, AnUnreadableRuntimeFolderIsRefused) {
    try {
        StartProperties(0, nullptr, nullptr, "/nowhere/at/all");
        FAIL() << "nothing thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the runtime's folder '/nowhere/at/all' cannot be read");
    }
}

TEST_F(StartPropertiesTest, RelativeAssemblyFoldersAreRefusedByName) {
    for (const char* folders : {"rel", "/a:rel", "rel:/b", "/a:rel:/b"}) {
        try {
            complete({kAppPaths}, {folders});
            FAIL() << folders;
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "the assembly folder 'rel' is not an absolute path");
        }
    }
    EXPECT_THROW(complete({kAppPaths}, {"/a::/b"}), std::runtime_error);
    EXPECT_EQ(value_of(complete({kAppPaths}, {"/a:/b"}), kAppPaths), "/a:/b");
    EXPECT_EQ(value_of(complete({kAppPaths}, {""}), kAppPaths), "");
}

TEST_F(StartPropertiesTest, TheRuntimeFolderIsANativeFolderOnce) {
    EXPECT_EQ(value_of(complete({kNative}, {"/a"}), kNative), "/a:" + folder.path());
    EXPECT_EQ(value_of(complete({kNative}, {""}), kNative), folder.path());
    EXPECT_EQ(value_of(complete({}, {}), kNative), folder.path());
    const std::string with_it = folder.path() + ":/a";
    EXPECT_EQ(value_of(complete({kNative}, {with_it.c_str()}), kNative), with_it);
}

TEST_F(StartPropertiesTest, DefaultsAreAddedWhereTheCallerSetNothing) {
    const StartProperties properties = complete({"System.GC.Server"}, {"true"});
    EXPECT_EQ(value_of(properties, "System.GC.Server"), "true");
    EXPECT_EQ(value_of(properties, "System.GC.Concurrent"), "false");
    EXPECT_EQ(value_of(properties, kInvariant), "true");
    EXPECT_EQ(value_of(properties, "System.Globalization.PredefinedCulturesOnly"), "false");
}

TEST_F(StartPropertiesTest, AUsersOwnVariableKeepsTheDefaultOut) {
    setenv(kInvariantVariable, "0", 1);
    EXPECT_EQ(value_of(complete({}, {}), kInvariant), "(not set)");
    unsetenv(kInvariantVariable);
}

TEST_F(StartPropertiesTest, TheTablesHoldKeysAndValuesInStep) {
    const StartProperties properties = complete({"a", kAppPaths}, {"1", "/x"});
    const std::vector<const char*> keys = properties.keys();
    const std::vector<const char*> values = properties.values();
    ASSERT_EQ(keys.size(), values.size());
    EXPECT_STREQ(keys[0], "a");
    EXPECT_STREQ(values[0], "1");
    EXPECT_STREQ(keys[1], kAppPaths);
    EXPECT_STREQ(values[1], "/x");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(*properties.find(keys[i]), values[i]);
    }
}
