#include "host/host_environment.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "host/family_module/family_module.h"
#include "host/host_exceptions.h"
#include "host/pal.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace {

constexpr char kWrapName[] = "libvelbor.embed.coreclrwrap.so";
constexpr char kDebugWrapName[] = "libvelbor.embed.coreclrwrap.debug.so";
constexpr char kNetcoreVariable[] = "NETCORE_WRAPPER_NETCORE_DIR_velbor";
constexpr char kAssemblyVariable[] = "NETCORE_WRAPPER_ASSEMBLY_DIR_velbor";

std::string this_folder() {
    return pal::path_get_directory(pal::get_entry_point_exe());
}

// A folder with runtime folders in it, and the log of the calls that its wrap libraries receive.
class HostEnvironmentTest : public testing::Test {
protected:
    HostEnvironmentTest() {
        unsetenv(kNetcoreVariable);
        unsetenv(kAssemblyVariable);
        unsetenv("COREHOST_TRACE");
        setenv("FAKE_WRAP_LOG", log_path().c_str(), 1);
    }

    std::string log_path() const { return folder.path() + "/log"; }
    std::string log() const { return read_text(log_path()); }

    // Puts a wrap library into a subfolder, without the symbol `missing`.
    std::string add_runtime(const std::string& name, const std::string& missing = "none",
                            const std::string& wrap_name = kWrapName) const {
        const std::string path = folder.add_folder(name);
        std::filesystem::copy_file(std::string(FAKE_WRAP_FOLDER "/fake_wrap_") + missing + ".so",
                                   path + "/" + wrap_name);
        return path;
    }

    // Runs `body` in a child; gives the child's standard output.
    std::string succeed(const std::function<void()>& body) const {
        const ChildResult child = run_in_child(body);
        EXPECT_EQ(child.exit_code, 0) << child.err;
        EXPECT_EQ(child.signal, 0);
        return child.out;
    }

    const TemporaryFolder folder;
};

HostEnvironment* start(const char* netcore_dir, const char* assembly_dir) {
    return HostEnvironment::instance("3.1", false, "velbor", "voxlar", netcore_dir, assembly_dir);
}

void expect_start_to_throw(const std::string& netcore_dir, const std::string& text) {
    const ChildResult child = run_in_child([&] { start(netcore_dir.c_str(), "/app"); });
    EXPECT_EQ(child.exit_code, 70);
    EXPECT_EQ(child.err, text);
}

}  // namespace

TEST_F(HostEnvironmentTest, TheFirstLoaderStartsTheRuntimeWithFivePropertiesAndShutsItDownOnce) {
    const std::string runtime = add_runtime("netcore10.0");
    succeed([&] {
        HostEnvironment* host = start(runtime.c_str(), "/app");
        require(host->is_domain_ready(), "ready");
        require(host->netcore_dir() == runtime, "the folder as it was given");
        require(host->entry_point_exe() == pal::get_entry_point_exe(), "the executable");
        require(start("/elsewhere", "/other") == host, "one object");
        require(HostEnvironment::instance(0, 0, 0, 0, 0, 0) == host, "zeros give it back");
        require(host->app_folders() == "/app:" + runtime, "a repeated call changes nothing");
        require(!host->create_default_app_domain(), "the domain is there already");
    });
    const std::string folders = "/app:" + runtime;
    EXPECT_EQ(log(), "load " + runtime + "/libcoreclr.so\n" +                                       //
                         "initialize " + pal::get_entry_point_exe() + " VelborCLRHostDomain 5\n" +  //
                         "  TRUSTED_PLATFORM_ASSEMBLIES=[]\n" +                                     //
                         "  APP_PATHS=[" + folders + "]\n" +                                        //
                         "  APP_NI_PATHS=[" + folders + "]\n" +                                     //
                         "  NATIVE_DLL_SEARCH_DIRECTORIES=[" + folders + "]\n" +                    //
                         "  AppDomainCompatSwitch=[UseLatestBehaviorWhenTFMNotSpecified]\n" +       //
                         "shutdown\n");
}

TEST_F(HostEnvironmentTest, TheVariableNamesTheFolderOfRuntimeFolders) {
    add_runtime("root/netcore3.1");
    const std::string newest = add_runtime("root/netcore6.0");
    setenv(kNetcoreVariable, (folder.path() + "/root").c_str(), 1);
    succeed([&] { require(start(nullptr, "/app")->netcore_dir() == newest, "the highest version"); });
}

TEST_F(HostEnvironmentTest, AnOlderRuntimeFolderIsChosenWhenOnlyItHoldsTheWrapLibrary) {
    const std::string older = add_runtime("root/netcore3.1");
    folder.add_folder("root/netcore6.0");
    folder.add_file("root/netcore9.0");
    std::filesystem::create_directory_symlink(older, folder.path() + "/root/netcore8.0");
    setenv(kNetcoreVariable, (folder.path() + "/root").c_str(), 1);
    succeed([&] { require(start(nullptr, "/app")->netcore_dir() == older, "the one with the file"); });
}

TEST_F(HostEnvironmentTest, AWrapLibraryInTheNamedFolderItselfIsNotUsed) {
    setenv(kNetcoreVariable, add_runtime("root").c_str(), 1);
    const ChildResult child = run_in_child([] {
        HostEnvironment host;
        try {
            host.initialize("3.1", false, "velbor", "voxlar", nullptr, nullptr);
        } catch (const std::runtime_error& error) {
            std::printf("%s|%s", error.what(), host.netcore_dir().c_str());
        }
    });
    EXPECT_EQ(child.out, "DynamicLibrary::load|" + this_folder());
    EXPECT_EQ(log(), "");
}

TEST_F(HostEnvironmentTest, WithoutVariablesTheFolderOfTheExecutableServes) {
    for (const char* value : {"", static_cast<const char*>(nullptr)}) {
        const ChildResult child = run_in_child([&] {
            if (value != nullptr) {
                setenv(kNetcoreVariable, value, 1);
                setenv(kAssemblyVariable, value, 1);
            }
            HostEnvironment host;
            try {
                host.initialize("3.1", false, "velbor", "voxlar", nullptr, nullptr);
            } catch (const std::runtime_error&) {
                std::printf("%s|%s", host.netcore_dir().c_str(), host.app_folders().c_str());
            }
        });
        EXPECT_EQ(child.out, this_folder() + "|" + this_folder());
    }
}

TEST_F(HostEnvironmentTest, TheFamilyWordEndsTheVariablesNames) {
    const std::string runtime = add_runtime("root/netcore10.0");
    setenv("NETCORE_WRAPPER_NETCORE_DIR_others", (folder.path() + "/root").c_str(), 1);
    succeed([&] {
        HostEnvironment host;
        host.initialize("3.1", false, "others", "voxlar", nullptr, "/app");
        require(host.netcore_dir() == runtime, "found through the family's own variable");
    });
}

TEST_F(HostEnvironmentTest, AssemblyFoldersEndInPydrawingAndTheRuntimeFolder) {
    const std::string runtime = add_runtime("netcore10.0");
    for (const char* name : {"assemblies/a", "assemblies/b", "assemblies/pydrawing"}) {
        folder.add_folder(name);
    }
    const std::string root = folder.path() + "/assemblies";
    setenv(kAssemblyVariable, root.c_str(), 1);
    const std::string folders =
        succeed([&] { std::printf("%s", start(runtime.c_str(), nullptr)->app_folders().c_str()); });
    EXPECT_TRUE(folders.ends_with(":" + root + "/pydrawing:" + runtime)) << folders;
    EXPECT_NE(folders.find(root + "/a:"), std::string::npos) << folders;
    EXPECT_NE(folders.find(root + "/b:"), std::string::npos) << folders;
    EXPECT_EQ(std::count(folders.begin(), folders.end(), ':'), 3) << folders;
}

TEST_F(HostEnvironmentTest, AnAssemblyRootThatCannotBeOpenedLeavesTheRuntimeFolderAlone) {
    const std::string runtime = add_runtime("netcore10.0");
    setenv(kAssemblyVariable, "/nowhere/at/all", 1);
    succeed([&] { require(start(runtime.c_str(), nullptr)->app_folders() == runtime, "one folder"); });
}

TEST_F(HostEnvironmentTest, TheRuntimeFolderStandsInTheListOnce) {
    const std::string runtime = add_runtime("netcore10.0");
    succeed([&] { require(start(runtime.c_str(), runtime.c_str())->app_folders() == runtime, "once"); });
}

TEST_F(HostEnvironmentTest, CompleteAppFoldersAppendsOnce) {
    std::vector<std::string> folders{"/a"};
    HostEnvironment::complete_app_folders(folders, "/runtime");
    HostEnvironment::complete_app_folders(folders, "/runtime");
    HostEnvironment::complete_app_folders(folders, "/a");
    EXPECT_EQ(folders, (std::vector<std::string>{"/a", "/runtime"}));
}

TEST_F(HostEnvironmentTest, DebugTakesTheDebugLibraryAndDebugFolders) {
    // The folder is still chosen by the release form of the library.
    const std::string with_release = add_runtime("root/netcore3.1");
    add_runtime("root/netcore3.1", "none", kDebugWrapName);
    add_runtime("root/netcore6.0", "none", kDebugWrapName);
    folder.add_folder("assemblies/a/debug");
    folder.add_folder("assemblies/b");
    setenv(kNetcoreVariable, (folder.path() + "/root").c_str(), 1);
    setenv(kAssemblyVariable, (folder.path() + "/assemblies").c_str(), 1);
    succeed([&] {
        HostEnvironment* host = HostEnvironment::instance("3.1", true, "velbor", "voxlar", nullptr, nullptr);
        require(std::string(host->get_libcoreclr_wrap_name()) == kDebugWrapName, "the name");
        require(host->netcore_dir() == with_release, "the folder with the release form");
        require(host->app_folders() == folder.path() + "/assemblies/a/debug:" + with_release, "folders");
        void* handle = nullptr;
        require(pal::get_module(with_release + "/" + kDebugWrapName, &handle), "the debug form is loaded");
        require(!pal::get_module(with_release + "/" + kWrapName, &handle), "the release form is not");
    });
}

TEST_F(HostEnvironmentTest, TheReleaseNameIsTheUsualOne) {
    EXPECT_STREQ(HostEnvironment().get_libcoreclr_wrap_name(), kWrapName);
}

TEST_F(HostEnvironmentTest, AMissingWrapLibraryThrows) {
    expect_start_to_throw("/nowhere/at/all", "DynamicLibrary::load");
}

TEST_F(HostEnvironmentTest, EachMissingSymbolIsNamed) {
    for (const char* name : {"initialize", "create_delegate", "shutdown", "is_domain_initialized", "load"}) {
        expect_start_to_throw(add_runtime(name, name), std::string("No such symbol: coreclr_wrap_") + name);
        EXPECT_EQ(log(), "") << name;
    }
}

TEST_F(HostEnvironmentTest, AWrapLibraryThatCannotLoadTheRuntimeThrows) {
    setenv("FAKE_WRAP_LOAD", "0", 1);
    const std::string runtime = add_runtime("netcore10.0");
    expect_start_to_throw(runtime, "init coreclr wap");
    EXPECT_EQ(log(), "load " + runtime + "/libcoreclr.so\n");
    unsetenv("FAKE_WRAP_LOAD");
}

TEST_F(HostEnvironmentTest, ARuntimeThatDoesNotStartThrowsItsStatus) {
    setenv("FAKE_WRAP_INITIALIZE", "0x80131506", 1);
    const std::string runtime = add_runtime("netcore10.0");
    expect_start_to_throw(runtime, "coreclr_initialize failed - status:0x80131506");
    EXPECT_EQ(log().find("shutdown"), std::string::npos) << "nothing started, nothing to shut down";
    succeed([&] {
        try {
            start(runtime.c_str(), "/app");
        } catch (const HostException& error) {
            require(error.error_code() == 0x80131506U, "the status is the code");
            require(!HostEnvironment::instance(0, 0, 0, 0, 0, 0)->is_domain_ready(), "not ready");
            return;
        }
        require(false, "nothing thrown");
    });
    unsetenv("FAKE_WRAP_INITIALIZE");
}

TEST_F(HostEnvironmentTest, DelegatesAreForwarded) {
    const std::string runtime = add_runtime("netcore10.0");
    succeed([&] {
        HostEnvironment* host = start(runtime.c_str(), "/app");
        void* delegate = nullptr;
        require(host->try_create_delegate("Assembly", "Type", "Method", &delegate) == 0, "status 0");
        require(delegate != nullptr, "a pointer");
        setenv("FAKE_WRAP_CREATE_DELEGATE", "0x80131522", 1);
        require(host->try_create_delegate("A", "T", "M", &delegate) == static_cast<std::int32_t>(0x80131522U),
                "the status comes back");
    });
    EXPECT_NE(log().find("create_delegate Assembly Type Method\n"), std::string::npos) << log();
}

TEST_F(HostEnvironmentTest, AnObjectThatWasNeverBoundAnswersAFailure) {
    const HostEnvironment host;
    void* delegate = nullptr;
    EXPECT_LT(host.try_create_delegate("Assembly", "Type", "Method", &delegate), 0);
    EXPECT_EQ(delegate, nullptr);
}

TEST_F(HostEnvironmentTest, ASecondModuleAttachesAndNeverShutsDown) {
    const std::string runtime = add_runtime("netcore10.0");
    succeed([&] {
        start(runtime.c_str(), "/app");
        void* module = dlopen(FAKE_WRAP_FOLDER "/family_module.so", RTLD_NOW | RTLD_LOCAL);
        require(module != nullptr, "the module loads");
        const auto attach = reinterpret_cast<FamilyModuleStart>(dlsym(module, "family_module_start"));
        const FamilyModuleState state = attach(runtime.c_str(), true);
        require(!state.first_load, "found, not loaded");
        require(state.domain_ready, "the domain of the first one");
        require(state.create_delegate_status == 0, "delegates work");
        require(state.shutdown_result == -1, "the shutdown is not its own");
        require(HostEnvironment::instance(0, 0, 0, 0, 0, 0)->is_domain_ready(), "still up");
    });
    std::istringstream lines(log());
    std::string line;
    std::vector<std::string> calls;
    while (std::getline(lines, line)) {
        if (line.front() != ' ') {
            calls.push_back(line.substr(0, line.find(' ')));
        }
    }
    EXPECT_EQ(calls, (std::vector<std::string>{"load", "initialize", "is_domain_initialized",
                                               "create_delegate", "shutdown"}));
}

TEST_F(HostEnvironmentTest, AnAttachToADeadDomainIsNotReady) {
    setenv("FAKE_WRAP_DOMAIN", "0", 1);
    const std::string runtime = add_runtime("netcore10.0");
    succeed([&] {
        start(runtime.c_str(), "/app");
        void* module = dlopen(FAKE_WRAP_FOLDER "/family_module.so", RTLD_NOW | RTLD_LOCAL);
        require(module != nullptr, "the module loads");
        const auto attach = reinterpret_cast<FamilyModuleStart>(dlsym(module, "family_module_start"));
        require(!attach(runtime.c_str(), false).domain_ready, "no domain");
    });
    unsetenv("FAKE_WRAP_DOMAIN");
}

TEST_F(HostEnvironmentTest, ShutdownWorksOnce) {
    const std::string runtime = add_runtime("netcore10.0");
    succeed([&] {
        HostEnvironment* host = start(runtime.c_str(), "/app");
        require(host->try_shutdown_default_app_domain() == 0, "the first one works");
        require(!host->is_domain_ready(), "down");
        require(host->try_shutdown_default_app_domain() == -1, "the second one does nothing");
    });
    const std::string calls = log();
    EXPECT_EQ(calls.find("shutdown"), calls.rfind("shutdown")) << calls;
    EXPECT_EQ(HostEnvironment().try_shutdown_default_app_domain(), -1) << "nothing was started";
}

TEST_F(HostEnvironmentTest, TheLibraryStaysMappedWhenItsObjectIsGone) {
    const std::string runtime = add_runtime("netcore10.0");
    succeed([&] {
        {
            HostEnvironment host;
            host.initialize("3.1", false, "velbor", "voxlar", runtime.c_str(), "/app");
        }
        void* handle = nullptr;
        require(pal::get_module(runtime + "/" + kWrapName, &handle), "mapped");
    });
}

TEST_F(HostEnvironmentTest, TracingTellsEachStep) {
    const std::string runtime = add_runtime("netcore10.0");
    const std::string out = succeed([&] {
        setenv("COREHOST_TRACE", "1", 1);
        start(runtime.c_str(), "/app");
    });
    const std::string folders = "/app:" + runtime;
    std::string expected;
    for (const std::string& line : {
             std::string("CLR host tracing enabled"),
             std::string("Initializing .NET Core host..."),
             "NETCORE_DIR: '" + runtime + "'",
             "PRODUCT_ASSEMBLY_DIR: '" + folders + "'",
             "Loading: '" + runtime + "/" + kWrapName + "'",
             std::string("Try get module..."),
             std::string("No existed module..."),
             std::string("wrap dll loaded"),
             "Loading2: '" + runtime + "/libcoreclr.so'",
             std::string(".NET Core host ready."),
             std::string("Creating default AppDomain..."),
             "APP_PATH: '" + folders + "'",
             "APP_NI_PATHS: '" + folders + "'",
             "NATIVE_DLL_SEARCH_DIRECTORIES: '" + folders + "'",
             std::string("Default AppDomain ready."),
             std::string("Shutdowning .NET Core host..."),
             std::string(".NET Core host is down: 0"),
         }) {
        expected += line + "\r\n";
    }
    EXPECT_EQ(out, expected);
}

TEST_F(HostEnvironmentTest, Texts) {
    EXPECT_STREQ(VelborDomainName, "VelborCLRHostDomain");
    EXPECT_STREQ(HostNotReady, "CLR Host is not ready");
}
