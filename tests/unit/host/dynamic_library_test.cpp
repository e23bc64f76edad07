#include "host/dynamic_library.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

#include "host/pal.h"
#include "host/trace.h"
#include "support/child_process.h"

namespace {

const std::string kLibrary = FAKE_WRAP_FOLDER "/fake_wrap_none.so";
const std::string kOtherLibrary = FAKE_WRAP_FOLDER "/fake_wrap_load.so";

bool is_mapped(const std::string& path) {
    void* handle = nullptr;
    if (!pal::get_module(path, &handle)) {
        return false;
    }
    pal::free_library(handle);
    return true;
}

void expect_success(const std::function<void()>& body) {
    const ChildResult child = run_in_child(body);
    EXPECT_EQ(child.exit_code, 0) << child.err;
}

}  // namespace

TEST(DynamicLibrary, StartsEmpty) {
    DynamicLibrary library;
    EXPECT_EQ(library.handle(), nullptr);
    EXPECT_FALSE(library.is_first_load());
    EXPECT_FALSE(library.free());
}

TEST(DynamicLibrary, FirstLoadIsToldFromASecondOne) {
    expect_success([] {
        DynamicLibrary first;
        DynamicLibrary second;
        require(DynamicLibrary::try_load(kLibrary, "name", first) && first.is_first_load(), "first load");
        require(DynamicLibrary::try_load(kLibrary, "other name", second), "found");
        require(!second.is_first_load(), "not loaded by the second");
        require(first.handle() == second.handle(), "one library");
    });
}

TEST(DynamicLibrary, ClosesItsHandle) {
    expect_success([] {
        {
            const DynamicLibrary library = DynamicLibrary::load(kLibrary, "");
            require(is_mapped(kLibrary), "mapped");
        }
        require(!is_mapped(kLibrary), "closed by the destructor");
        DynamicLibrary library = DynamicLibrary::load(kLibrary, "");
        require(library.free() && library.handle() == nullptr && !is_mapped(kLibrary), "closed by free");
        require(!library.free(), "nothing left to close");
    });
}

TEST(DynamicLibrary, WithoutPermissionToCloseItStaysMapped) {
    expect_success([] {
        {
            DynamicLibrary library = DynamicLibrary::load(kLibrary, "");
            library.set_can_free(false);
            require(library.free() && library.handle() != nullptr, "the handle stays set");
        }
        require(is_mapped(kLibrary), "still mapped after destruction");
    });
}

TEST(DynamicLibrary, MovesTakeTheHandleAndTheFirstLoadFlag) {
    expect_success([] {
        DynamicLibrary source = DynamicLibrary::load(kLibrary, "");
        void* handle = source.handle();
        DynamicLibrary constructed(std::move(source));
        require(constructed.handle() == handle && constructed.is_first_load(), "moved by construction");
        require(source.handle() == nullptr, "nothing left behind");  // NOLINT: a moved-from one is empty

        DynamicLibrary assigned = DynamicLibrary::load(kOtherLibrary, "");
        assigned = std::move(constructed);
        require(assigned.handle() == handle && assigned.is_first_load(), "moved by assignment");
        require(constructed.handle() == nullptr, "nothing left behind");  // NOLINT
        require(!is_mapped(kOtherLibrary), "the old library was closed");
    });
}

TEST(DynamicLibrary, MoveAssignmentKeepsItsOwnPermission) {
    expect_success([] {
        {
            DynamicLibrary target;
            target.set_can_free(false);
            target = DynamicLibrary::load(kLibrary, "");
        }
        require(is_mapped(kLibrary), "the target may not close");
        {
            DynamicLibrary source = DynamicLibrary::load(kOtherLibrary, "");
            source.set_can_free(false);
            DynamicLibrary target;
            target = std::move(source);
        }
        require(!is_mapped(kOtherLibrary), "the target may close");
    });
}

TEST(DynamicLibrary, TryLoadGivesUpTheOldLibraryFirst) {
    expect_success([] {
        DynamicLibrary library = DynamicLibrary::load(kLibrary, "");
        require(DynamicLibrary::try_load(kOtherLibrary, "", library), "loaded");
        require(!is_mapped(kLibrary) && is_mapped(kOtherLibrary), "replaced");
    });
}

TEST(DynamicLibrary, AMissingFileIsRefused) {
    DynamicLibrary library;
    EXPECT_FALSE(DynamicLibrary::try_load("/nowhere/missing.so", "", library));
    EXPECT_EQ(library.handle(), nullptr);
    try {
        DynamicLibrary::load("/nowhere/missing.so", "");
        FAIL() << "nothing thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "DynamicLibrary::load");
    }
}

TEST(DynamicLibrary, TracesWhatItTries) {
    const ChildResult child = run_in_child([] {
        trace::enable();
        DynamicLibrary first;
        DynamicLibrary second;
        DynamicLibrary::try_load(kLibrary, "", first);
        DynamicLibrary::try_load(kLibrary, "", second);
        DynamicLibrary::try_load("/nowhere/missing.so", "", second);
    });
    EXPECT_EQ(child.out,
              "Try get module...\r\nNo existed module...\r\n"
              "Try get module...\r\nUsing existed module...\r\n"
              "Try get module...\r\nNo existed module...\r\nNo module...\r\nNo: '/nowhere/missing.so'\r\n");
}

TEST(DynamicLibrary, SymbolsAndTheirErrors) {
    DynamicLibrary library;
    try {
        library.get_symbol("anything");
        FAIL() << "nothing thrown";
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "Library was not opened!");
    }
    library = DynamicLibrary::load(kLibrary, "");
    EXPECT_NE(library.get_symbol("coreclr_wrap_load"), nullptr);
    try {
        library.get_symbol("no_such_symbol");
        FAIL() << "nothing thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "No such symbol: no_such_symbol");
    }
}
