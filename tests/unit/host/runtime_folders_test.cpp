#include "host/runtime_folders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "support/temporary_folder.h"

namespace {

constexpr char kFile[] = "libwrap.so";

std::string found_in(const TemporaryFolder& folder) {
    std::string found = "untouched";
    const bool result = pal::get_major_netcore_path(folder.path(), kFile, found);
    EXPECT_EQ(result, found != "untouched");
    return result ? found.substr(folder.path().size()) : "none";
}

}  // namespace

TEST(NetcoreVersion, ParsesTwoNumbersBehindItsPrefix) {
    const struct {
        const char* text;
        int major;
        int minor;
    } accepted[] = {{"netcore3.1", 3, 1},
                    {"netcore10.0", 10, 0},
                    {"netcore07.01", 7, 1},
                    {"netcore2147483647.0", 2147483647, 0}};
    for (const auto& row : accepted) {
        NetcoreVersion version(-1, -1);
        EXPECT_TRUE(try_parse(row.text, version)) << row.text;
        EXPECT_EQ(version.major, row.major) << row.text;
        EXPECT_EQ(version.minor, row.minor) << row.text;
    }
}

TEST(NetcoreVersion, RefusesEverythingElse) {
    for (const char* text : {"netcore3", "netcore3.1.0", "netcore.1", "netcore3.", "netcore-3.1",
                             "NetCore3.1", "netcore3.1-preview", "netcore", "netcore.", "", "net10.0",
                             "xnetcore3.1", "netcore 3.1", "netcore3.1 ", "netcore3..1"}) {
        NetcoreVersion version(-1, -1);
        EXPECT_FALSE(try_parse(text, version)) << text;
        EXPECT_EQ(version.major, -1) << text;
        EXPECT_EQ(version.minor, -1) << text;
    }
}

TEST(NetcoreVersion, ANumberBeyond32BitsThrows) {
    for (const char* text : {"netcore99999999999.0", "netcore2147483648.0", "netcore1.2147483648",
                             "netcore99999999999999999999999.0"}) {
        NetcoreVersion version;
        try {
            try_parse(text, version);
            FAIL() << text;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "stoi");
        }
    }
}

TEST(NetcoreVersion, IsOrderedByMajorThenMinor) {
    EXPECT_LT(NetcoreVersion(3, 1), NetcoreVersion(6, 0));
    EXPECT_LT(NetcoreVersion(3, 0), NetcoreVersion(3, 1));
    EXPECT_LT(NetcoreVersion(9, 0), NetcoreVersion(10, 0));
    EXPECT_FALSE(NetcoreVersion(3, 1) < NetcoreVersion(3, 1));
    EXPECT_FALSE(NetcoreVersion(4, 0) < NetcoreVersion(3, 9));
}

TEST(RuntimeFolder, TheHighestVersionThatHoldsTheFileWins) {
    const TemporaryFolder folder;
    folder.add_file(std::string("netcore3.1/") + kFile);
    folder.add_file(std::string("netcore6.0/") + kFile);
    EXPECT_EQ(found_in(folder), "/netcore6.0");
    folder.add_file(std::string("netcore10.0/") + kFile);
    EXPECT_EQ(found_in(folder), "/netcore10.0");
    folder.add_folder("netcore11.0");
    EXPECT_EQ(found_in(folder), "/netcore10.0");
}

TEST(RuntimeFolder, AnOlderOneIsTakenWhenOnlyItHoldsTheFile) {
    const TemporaryFolder folder;
    folder.add_file(std::string("netcore3.1/") + kFile);
    folder.add_folder("netcore6.0");
    EXPECT_EQ(found_in(folder), "/netcore3.1");
}

TEST(RuntimeFolder, FilesLinksAndOtherNamesArePassedOver) {
    const TemporaryFolder folder;
    folder.add_file("netcore9.0");
    folder.add_file(std::string("elsewhere/") + kFile);
    std::filesystem::create_directory_symlink(folder.path() + "/elsewhere", folder.path() + "/netcore8.0");
    EXPECT_EQ(found_in(folder), "none");
    folder.add_file(std::string("netcore3.1/") + kFile);
    EXPECT_EQ(found_in(folder), "/netcore3.1");
}

TEST(RuntimeFolder, TheRootItselfIsNotLookedInto) {
    const TemporaryFolder folder;
    folder.add_file(kFile);
    EXPECT_EQ(found_in(folder), "none");
}

TEST(RuntimeFolder, AMissingRootFindsNothing) {
    std::string found = "untouched";
    EXPECT_FALSE(pal::get_major_netcore_path("/nowhere/at/all", kFile, found));
    EXPECT_EQ(found, "untouched");
}

TEST(RuntimeFolder, ASlashIsAlwaysPutBetweenTheParts) {
    const TemporaryFolder folder;
    folder.add_file(std::string("netcore3.1/") + kFile);
    std::string found;
    EXPECT_TRUE(pal::get_major_netcore_path(folder.path() + "/", kFile, found));
    EXPECT_EQ(found, folder.path() + "//netcore3.1");
}

TEST(AppFolders, PydrawingStandsLast) {
    const TemporaryFolder folder;
    for (const char* name : {"a", "b", "pydrawing", "z"}) {
        folder.add_folder(name);
    }
    std::vector<std::string> folders;
    pal::get_app_folders(folder.path(), false, folders);
    ASSERT_EQ(folders.size(), 4U);
    EXPECT_EQ(folders.back(), folder.path() + "/pydrawing");
    std::sort(folders.begin(), folders.end() - 1);
    EXPECT_EQ(folders[0], folder.path() + "/a");
    EXPECT_EQ(folders[1], folder.path() + "/b");
    EXPECT_EQ(folders[2], folder.path() + "/z");
}

TEST(AppFolders, OthersGoInFrontOfWhatTheListHas) {
    const TemporaryFolder folder;
    folder.add_folder("a");
    std::vector<std::string> folders{"/first"};
    pal::get_app_folders(folder.path(), false, folders);
    EXPECT_EQ(folders, (std::vector<std::string>{folder.path() + "/a", "/first"}));
}

TEST(AppFolders, OnlyRealSubfoldersCount) {
    const TemporaryFolder folder;
    folder.add_file("file");
    folder.add_folder("a");
    std::filesystem::create_directory_symlink(folder.path() + "/a", folder.path() + "/link");
    std::vector<std::string> folders;
    pal::get_app_folders(folder.path(), false, folders);
    EXPECT_EQ(folders, std::vector<std::string>{folder.path() + "/a"});
}

TEST(AppFolders, DebugTakesTheFoldersThatHaveADebugFolder) {
    const TemporaryFolder folder;
    folder.add_folder("a/debug");
    folder.add_folder("b");
    folder.add_folder("pydrawing/debug");
    std::vector<std::string> folders;
    pal::get_app_folders(folder.path(), true, folders);
    EXPECT_EQ(folders,
              (std::vector<std::string>{folder.path() + "/a/debug", folder.path() + "/pydrawing/debug"}));
}

TEST(AppFolders, AMissingRootAddsNothing) {
    std::vector<std::string> folders{"/first"};
    pal::get_app_folders("/nowhere/at/all", false, folders);
    EXPECT_EQ(folders, std::vector<std::string>{"/first"});
}
