#include "host/pal.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstring>
#include <filesystem>

#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace {

[[gnu::format(printf, 1, 2)]] void print_out(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    pal::out_vprintf(format, arguments);
    va_end(arguments);
}

[[gnu::format(printf, 1, 2)]] void print_err(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    pal::err_vprintf(format, arguments);
    va_end(arguments);
}

}  // namespace

TEST(Pal, LinesEndInCarriageReturnAndLineFeedOnTheirStream) {
    const ChildResult child = run_in_child([] {
        print_out("out %d", 1);
        print_err("err %s", "two");
    });
    EXPECT_EQ(child.out, "out 1\r\n");
    EXPECT_EQ(child.err, "err two\r\n");
}

TEST(Pal, GetenvTellsSetFromEmptyAndUnset) {
    std::string value = "old";
    setenv("VELBOR_PAL_TEST", "text", 1);
    EXPECT_TRUE(pal::getenv("VELBOR_PAL_TEST", value));
    EXPECT_EQ(value, "text");
    setenv("VELBOR_PAL_TEST", "", 1);
    EXPECT_FALSE(pal::getenv("VELBOR_PAL_TEST", value));
    value = "old";
    unsetenv("VELBOR_PAL_TEST");
    EXPECT_FALSE(pal::getenv("VELBOR_PAL_TEST", value));
    EXPECT_EQ(value, "");
}

TEST(Pal, ToIntReadsTheLeadingDecimalNumber) {
    EXPECT_EQ(pal::to_int("12"), 12);
    EXPECT_EQ(pal::to_int("-3x"), -3);
    EXPECT_EQ(pal::to_int("text"), 0);
    EXPECT_EQ(pal::to_int(""), 0);
    EXPECT_EQ(pal::to_int("010"), 10);
    EXPECT_EQ(pal::to_int("4294967297"), 1);  // narrowed
}

TEST(Pal, ErrorTexts) {
    EXPECT_EQ(pal::to_error_string(ENOENT), std::strerror(ENOENT));
    EXPECT_EQ(pal::to_error_string_with_status_code("x:", -2146233036, ""), "x:0x80131534");
    EXPECT_EQ(pal::to_error_string_with_status_code("a", 10, "b"), "a0xab");
    EXPECT_EQ(pal::to_error_string_with_status_code("", 0, "."), "0x0.");
    EXPECT_EQ(pal::to_error_string_with_status_code("", INT_MIN, ""), "0x80000000");
    EXPECT_EQ(pal::to_error_string_with_status_code("", -1, ""), "0xffffffff");
}

TEST(Pal, FileExistsWhenItOpensAndSoDoesAFolder) {
    const TemporaryFolder folder;
    EXPECT_TRUE(pal::is_file_exists(folder.add_file("file")));
    EXPECT_TRUE(pal::is_file_exists(folder.path()));
    EXPECT_FALSE(pal::is_file_exists(folder.path() + "/missing"));
    EXPECT_FALSE(pal::is_file_exists(""));
}

TEST(Pal, PathAppend) {
    std::string path;
    pal::path_append(path, "name");
    EXPECT_EQ(path, "name");
    pal::path_append(path, "more");
    EXPECT_EQ(path, "name/more");
    path = "/root/";
    pal::path_append(path, "name");
    EXPECT_EQ(path, "/root//name");
}

TEST(Pal, PathGetDirectory) {
    EXPECT_EQ(pal::path_get_directory("abc"), "");
    EXPECT_EQ(pal::path_get_directory("/x"), "");
    EXPECT_EQ(pal::path_get_directory("/usr/bin/python3"), "/usr/bin");
    EXPECT_EQ(pal::path_get_directory("a/b/"), "a/b");
    EXPECT_EQ(pal::path_get_directory(""), "");
}

TEST(Pal, PathIsRelative) {
    EXPECT_TRUE(pal::path_is_relative(""));
    EXPECT_TRUE(pal::path_is_relative("a/b"));
    EXPECT_TRUE(pal::path_is_relative("./a"));
    EXPECT_FALSE(pal::path_is_relative("/"));
    EXPECT_FALSE(pal::path_is_relative("/a"));
}

TEST(Pal, EntryPointIsThisExecutable) {
    EXPECT_EQ(pal::get_entry_point_exe(), std::filesystem::read_symlink("/proc/self/exe").string());
}

TEST(Pal, BuildPathTakesTextsOfEachKind) {
    const char* pointer = "one";
    const std::string text = "three";
    EXPECT_EQ(pal::build_path("/base", pointer, "libcoreclr.so", text), "/base/one/libcoreclr.so/three");
    EXPECT_EQ(pal::build_path("/base"), "/base");
    EXPECT_EQ(pal::build_path("", "libcoreclr.so"), "libcoreclr.so");
}

TEST(Pal, Join) {
    EXPECT_EQ(pal::join({}, ':', false), "");
    EXPECT_EQ(pal::join({"a"}, ':', false), "a");
    EXPECT_EQ(pal::join({"a", "b", "a"}, ':', false), "a:b:a");
    EXPECT_EQ(pal::join({"a", "b", "a", "c", "b"}, ':', true), "a:b:c");
    EXPECT_EQ(pal::join({"", "a"}, ':', false), ":a");
    EXPECT_EQ(pal::join_unique({"x", "x", "y"}, ';'), "x;y");
    EXPECT_EQ(pal::join_unique({}, ';'), "");
}

TEST(Pal, JoinToFullPath) {
    EXPECT_EQ(pal::join_to_full_path("/base", {"a", "/b", "c/d"}, ':'), "/base/a:/b:/base/c/d");
    EXPECT_EQ(pal::join_to_full_path("/base", {}, ':'), "");
    EXPECT_EQ(pal::join_to_full_path("/base", {"a:", "b::"}, ':'), "/base/a::/base/b");
    EXPECT_EQ(pal::join_to_full_path("", {"a"}, ':'), "a");
}

TEST(Pal, Substring) {
    EXPECT_EQ(cxxaw_substr("netcore3.1", 7, std::string::npos), "3.1");
    EXPECT_EQ(cxxaw_substr("abc", 1, 1), "b");
    EXPECT_EQ(cxxaw_substr("abc", 1, 9), "bc");
    EXPECT_EQ(cxxaw_substr("abc", 3, 1), "");
}

TEST(Pal, DigitStrings) {
    EXPECT_TRUE(cxxaw_isdigitstr("0123456789"));
    EXPECT_FALSE(cxxaw_isdigitstr(""));
    EXPECT_FALSE(cxxaw_isdigitstr("1a"));
    EXPECT_FALSE(cxxaw_isdigitstr("-1"));
    EXPECT_FALSE(cxxaw_isdigitstr(" 1"));
    EXPECT_FALSE(cxxaw_isdigitstr("\xD9\xA1"));  // a digit, but not an ASCII one
}

TEST(Pal, ModulesAreFoundOnlyOnceLoaded) {
    const ChildResult child = run_in_child([] {
        const std::string path = FAKE_WRAP_FOLDER "/fake_wrap_none.so";
        void* found = &found;
        require(!pal::get_module(path, &found), "not there yet");
        require(found == nullptr, "the handle is null");
        void* loaded = pal::load_library(path);
        require(loaded != nullptr, "loaded");
        require(pal::get_module(path, &found) && found == loaded, "found");
        require(pal::get_symbol(loaded, "coreclr_wrap_shutdown") != nullptr, "a symbol");
        require(pal::get_symbol(loaded, "no_such_symbol") == nullptr, "no such symbol");
        pal::free_library(found);
        pal::free_library(loaded);
        require(!pal::get_module(path, &found), "gone");
        require(pal::load_library(path + ".missing") == nullptr, "no such file");
        require(pal::load_library(path) != nullptr, "again");
        // Last, since a look-up in the global scope ties the library to this executable for good.
        require(dlsym(RTLD_DEFAULT, "coreclr_wrap_shutdown") != nullptr, "its symbols are visible to all");
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
}
