// The wrap library over the real runtime. A process has one runtime, so each case runs in a child of its own.

#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "host/host_environment.h"
#include "host/pal.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr char kWrapPath[] = WRAP_FOLDER "/libvelbor.embed.coreclrwrap.so";
constexpr char kDebugWrapPath[] = WRAP_FOLDER "/libvelbor.embed.coreclrwrap.debug.so";
constexpr char kRuntime[] = RUNTIME_FOLDER "/libcoreclr.so";
constexpr char kPathVariable[] = "VELBOR_CORECLR_PATH";
constexpr char kCoreLibrary[] = "System.Private.CoreLib";
constexpr std::int32_t kWrongState = static_cast<std::int32_t>(0x8007139FU);
constexpr std::int32_t kInvalidArgument = static_cast<std::int32_t>(0x80070057U);

// The five symbols, as a host calls them.
struct Wrap {
    explicit Wrap(const char* path = kWrapPath) : library(dlopen(path, RTLD_NOW | RTLD_GLOBAL)) {
        require(library != nullptr, std::string(path) + " loads");
        bind(load, "coreclr_wrap_load");
        bind(initialize, "coreclr_wrap_initialize");
        bind(create_delegate, "coreclr_wrap_create_delegate");
        bind(shutdown, "coreclr_wrap_shutdown");
        bind(is_domain_initialized, "coreclr_wrap_is_domain_initialized");
    }

    template <typename Function>
    void bind(Function& function, const char* name) {
        function = reinterpret_cast<Function>(dlsym(library, name));
        require(function != nullptr, name);
    }

    std::int32_t start(const std::string& folders = "/nowhere") const {
        const char* keys[] = {"TRUSTED_PLATFORM_ASSEMBLIES", "APP_PATHS", "APP_NI_PATHS",
                              "NATIVE_DLL_SEARCH_DIRECTORIES", "AppDomainCompatSwitch"};
        const char* values[] = {"", folders.c_str(), folders.c_str(), folders.c_str(),
                                "UseLatestBehaviorWhenTFMNotSpecified"};
        return initialize(kWrapPath, "VelborCLRHostDomain", 5, keys, values);
    }

    void load_and_start() const {
        require(load(kRuntime) != 0, "the runtime loads");
        require(start() == 0, "the runtime starts");
    }

    template <typename Function>
    Function method(const char* type, const char* name) const {
        void* delegate = nullptr;
        require(create_delegate(kCoreLibrary, type, name, &delegate) == 0 && delegate != nullptr, name);
        return reinterpret_cast<Function>(delegate);
    }

    void* library;
    std::int32_t (*load)(const char*);
    std::int32_t (*initialize)(const char*, const char*, int, const char**, const char**);
    std::int32_t (*create_delegate)(const char*, const char*, const char*, void**);
    std::int32_t (*shutdown)();
    std::int32_t (*is_domain_initialized)();
};

void expect_success(const std::function<void()>& body) {
    const ChildResult child = run_in_child(body);
    EXPECT_EQ(child.exit_code, 0) << child.err;
    EXPECT_EQ(child.signal, 0);
    EXPECT_EQ(child.err, "");
}

void expect_refused_load(const std::string& path, const std::string& reason) {
    const ChildResult child = run_in_child([&] {
        const Wrap wrap;
        require(wrap.load(path.c_str()) == 0, "refused");
        require(wrap.is_domain_initialized() == 0, "no domain");
    });
    EXPECT_EQ(child.exit_code, 0);
    EXPECT_EQ(child.err, "velbor: cannot load the .NET runtime: " + reason + "\n");
}

// A folder that stands for the runtime's own: a copy of the runtime library and links to everything else but
// `left_out`.
class RuntimeFarm {
public:
    explicit RuntimeFarm(const std::string& left_out) {
        fs::copy_file(kRuntime, library());
        for (const auto& entry : fs::directory_iterator(RUNTIME_FOLDER)) {
            const std::string name = entry.path().filename();
            if (name != "libcoreclr.so" && name != left_out) {
                fs::create_symlink(entry.path(), folder.path() + "/" + name);
            }
        }
    }

    std::string library() const { return folder.path() + "/libcoreclr.so"; }

private:
    const TemporaryFolder folder;
};

std::string elf_header(unsigned char elf_class, Elf64_Half machine) {
    Elf64_Ehdr header{};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = elf_class;
    header.e_machine = machine;
    return {reinterpret_cast<const char*>(&header), sizeof(header)};
}

Elf64_Half own_machine() {
    Elf64_Ehdr header{};
    std::ifstream("/proc/self/exe", std::ios::binary).read(reinterpret_cast<char*>(&header), sizeof(header));
    return header.e_machine;
}

volatile sig_atomic_t g_signal = 0;
void remember_signal(int number) {
    g_signal = number;
}

class WrapLibrary : public testing::Test {
protected:
    WrapLibrary() { unsetenv(kPathVariable); }
};

}  // namespace

TEST_F(WrapLibrary, StartsAnswersAndShutsDownOnce) {
    for (const char* path : {kWrapPath, kDebugWrapPath}) {
        expect_success([path] {
            const Wrap wrap(path);
            require(wrap.is_domain_initialized() == 0, "nothing there yet");
            wrap.load_and_start();
            require(wrap.is_domain_initialized() == 1, "there");
            require(wrap.method<int (*)()>("System.Environment", "get_ProcessorCount")() >= 1, "an answer");
            require(wrap.shutdown() == 0, "the shutdown works");
            require(wrap.is_domain_initialized() == 0, "gone");
            require(wrap.shutdown() == 1, "a second one does nothing");
            void* delegate = nullptr;
            require(wrap.create_delegate(kCoreLibrary, "System.Environment", "get_ProcessorCount",
                                         &delegate) == kWrongState,
                    "no delegates after the end");
        });
    }
}

TEST_F(WrapLibrary, ExportsFiveSymbolsAndNoMore) {
    expect_success([] {
        const Wrap wrap;
        require(dlsym(wrap.library, "coreclr_initialize") == nullptr,
                "the runtime's symbols are not its own");
        require(dlsym(RTLD_DEFAULT, "coreclr_initialize") == nullptr, "nothing of the runtime is global");
        wrap.load_and_start();
        require(dlsym(RTLD_DEFAULT, "coreclr_initialize") == nullptr, "nor once it is loaded");
    });
}

TEST_F(WrapLibrary, NothingWorksBeforeTheLoad) {
    const ChildResult child = run_in_child([] {
        const Wrap wrap;
        void* delegate = nullptr;
        require(wrap.create_delegate(kCoreLibrary, "T", "M", &delegate) == kWrongState, "no delegates");
        require(wrap.shutdown() == 1, "no shutdown");
        require(wrap.start() == kWrongState, "no start");
    });
    EXPECT_EQ(child.exit_code, 0);
    EXPECT_EQ(child.err, "velbor: cannot start the .NET runtime: it is not loaded, or was started before\n");
}

TEST_F(WrapLibrary, AMissingFileIsRefused) {
    expect_refused_load("/nowhere/libcoreclr.so", "there is no file '/nowhere/libcoreclr.so'");
}

TEST_F(WrapLibrary, TheVariableNamesTheRuntimeWhereTheFileIsMissing) {
    setenv(kPathVariable, kRuntime, 1);
    expect_success([] { require(Wrap().load("/nowhere/libcoreclr.so") != 0, "found"); });
    setenv(kPathVariable, "/else/libcoreclr.so", 1);
    expect_refused_load("/nowhere/libcoreclr.so",
                        "there is no file '/nowhere/libcoreclr.so', and none '/else/libcoreclr.so' "
                        "(VELBOR_CORECLR_PATH)");
    expect_success([] { require(Wrap().load(kRuntime) != 0, "a file that is there is taken"); });
    unsetenv(kPathVariable);
}

TEST_F(WrapLibrary, LinksToTheRuntimeAreFollowed) {
    const TemporaryFolder folder;
    const std::string file_link = folder.path() + "/libcoreclr.so";
    const std::string folder_link = folder.path() + "/runtime";
    fs::create_symlink(kRuntime, file_link);
    fs::create_directory_symlink(RUNTIME_FOLDER, folder_link);
    for (const std::string& path : {file_link, folder_link + "/libcoreclr.so"}) {
        expect_success([&] {
            const Wrap wrap;
            require(wrap.load(path.c_str()) != 0 && wrap.start() == 0, "starts");
            require(wrap.method<int (*)()>("System.Environment", "get_ProcessorCount")() >= 1, "works");
        });
    }
}

TEST_F(WrapLibrary, ARuntimeWithoutItsCompanionsIsRefused) {
    for (const char* companion : {"libclrjit.so", "System.Private.CoreLib.dll"}) {
        const RuntimeFarm farm(companion);
        expect_refused_load(farm.library(),
                            std::string("'") + companion + "' is not beside '" + farm.library() + "'");
    }
}

TEST_F(WrapLibrary, AFarmThatLacksNothingStarts) {
    const RuntimeFarm farm("");
    expect_success([&] {
        const Wrap wrap;
        require(wrap.load(farm.library().c_str()) != 0 && wrap.start() == 0, "starts");
    });
}

TEST_F(WrapLibrary, WhatIsNoLibraryIsRefused) {
    const TemporaryFolder folder;
    const std::string text = folder.add_file(
        "text.so", "not a library, but long enough to hold a header: " + std::string(64, '.'));
    const std::string empty = folder.add_file("empty.so");
    expect_refused_load(text, "'" + text + "' is not a shared library");
    expect_refused_load(empty, "'" + empty + "' is not a shared library");
    expect_refused_load(folder.path(), "'" + folder.path() + "' is not a file");
}

TEST_F(WrapLibrary, AnotherArchitectureIsRefused) {
    const TemporaryFolder folder;
    const Elf64_Half machine = own_machine();
    const Elf64_Half other = machine == EM_X86_64 ? EM_AARCH64 : EM_X86_64;
    const std::string own = std::to_string(machine);
    const std::string foreign = folder.add_file("foreign.so", elf_header(ELFCLASS64, other));
    const std::string narrow = folder.add_file("narrow.so", elf_header(ELFCLASS32, EM_386));
    const std::string text = "' is built for another processor architecture (ELF machine ";
    expect_refused_load(foreign,
                        "'" + foreign + text + std::to_string(other) + ", this process is " + own + ")");
    expect_refused_load(narrow, "'" + narrow + text + "3, this process is " + own + ")");
}

TEST_F(WrapLibrary, ALibraryThatDoesNotLoadOrIsNoRuntimeIsRefused) {
    const TemporaryFolder folder;
    folder.add_file("libclrjit.so");
    folder.add_file("System.Private.CoreLib.dll");
    const std::string broken = folder.add_file("libcoreclr.so", elf_header(ELFCLASS64, own_machine()));
    const ChildResult child = run_in_child([&] { require(Wrap().load(broken.c_str()) == 0, "refused"); });
    EXPECT_EQ(child.exit_code, 0);
    EXPECT_TRUE(child.err.starts_with("velbor: cannot load the .NET runtime: " + broken + ": ")) << child.err;

    fs::remove(broken);
    fs::copy_file(kWrapPath, broken);
    expect_refused_load(broken, "'" + broken + "' does not export coreclr_initialize");
}

TEST_F(WrapLibrary, ASecondLoadOfTheSameRuntimeIsFineAndOfAnotherRefused) {
    const RuntimeFarm farm("");
    const ChildResult child = run_in_child([&] {
        const Wrap wrap;
        require(wrap.load(kRuntime) != 0 && wrap.load(kRuntime) != 0, "the same");
        require(wrap.load(farm.library().c_str()) == 0, "another");
        require(wrap.start() == 0, "the first one starts");
        require(wrap.start() == kWrongState, "once");
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    EXPECT_EQ(child.err,
              "velbor: cannot load the .NET runtime: the process has '" + fs::canonical(kRuntime).string() +
                  "' already, not '" + farm.library() + "'\n" +
                  "velbor: cannot start the .NET runtime: it is not loaded, or was started before\n");
}

TEST_F(WrapLibrary, ARelativeAssemblyFolderIsRefusedByName) {
    const ChildResult child = run_in_child([] {
        const Wrap wrap;
        require(wrap.load(kRuntime) != 0, "loads");
        require(wrap.start("/a:some/folder") == kInvalidArgument, "refused");
        require(wrap.is_domain_initialized() == 0, "no domain");
        require(wrap.start("/a") == 0, "it can still start");
    });
    EXPECT_EQ(child.exit_code, 0);
    EXPECT_EQ(
        child.err,
        "velbor: cannot start the .NET runtime: the assembly folder 'some/folder' is not an absolute path\n");
}

TEST_F(WrapLibrary, ARuntimeThatRefusesToStartSaysWhy) {
    setenv("DOTNET_GCHeapHardLimit", "1000", 1);  // 4 KiB
    const ChildResult child = run_in_child([] {
        const Wrap wrap;
        require(wrap.load(kRuntime) != 0, "loads");
        require(wrap.start() == static_cast<std::int32_t>(0x8007000EU), "out of memory");
        require(wrap.shutdown() == 1, "nothing to shut down");
    });
    unsetenv("DOTNET_GCHeapHardLimit");
    EXPECT_EQ(child.exit_code, 0) << child.err;
    EXPECT_TRUE(child.err.starts_with("velbor: the .NET runtime does not start (0x8007000e): ")) << child.err;
    EXPECT_GT(child.err.size(), std::strlen("velbor: the .NET runtime does not start (0x8007000e): \n") + 10);
}

TEST_F(WrapLibrary, MissingAssembliesTypesAndMethodsHaveTheirStatus) {
    const TemporaryFolder folder;
    folder.add_file("Garbage.dll", "no assembly");
    expect_success([&] {
        const Wrap wrap;
        require(wrap.load(kRuntime) != 0 && wrap.start(folder.path()) == 0, "starts");
        const struct {
            const char* assembly;
            const char* type;
            const char* method;
            unsigned status;
        } rows[] = {
            {"Missing", "Type", "Method", 0x80070002U},
            {"Garbage", "Type", "Method", 0x80070002U},
            {kCoreLibrary, "System.Missing", "Method", 0x80131522U},
            {kCoreLibrary, "System.Environment", "Missing", 0x80131513U},
            {kCoreLibrary, "System.Object", "ToString", 0x80131513U},         // not static
            {kCoreLibrary, "System.Threading.Thread", "Sleep", 0x8000211DU},  // overloaded
        };
        for (const auto& row : rows) {
            void* delegate = nullptr;
            const std::int32_t status = wrap.create_delegate(row.assembly, row.type, row.method, &delegate);
            require(status == static_cast<std::int32_t>(row.status),
                    pal::to_error_string_with_status_code(std::string(row.type) + " ", status, ""));
        }
    });
}

TEST_F(WrapLibrary, ProcessSignalsStayWithTheirHandlers) {
    expect_success([] {
        for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGABRT}) {
            struct sigaction action {};
            action.sa_handler = remember_signal;
            require(sigaction(number, &action, nullptr) == 0, "set");
        }
        const Wrap wrap;
        wrap.load_and_start();
        for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGABRT}) {
            raise(number);
            require(g_signal == number, "handled: " + std::to_string(number));
        }
        struct sigaction segv {};
        require(sigaction(SIGSEGV, nullptr, &segv) == 0 && segv.sa_handler != SIG_DFL,
                "SIGSEGV is the runtime's");
        require(wrap.shutdown() == 0, "down");
    });
}

TEST_F(WrapLibrary, ATerminationSignalStillEndsTheProcess) {
    const ChildResult child = run_in_child([] {
        Wrap().load_and_start();
        raise(SIGTERM);
    });
    EXPECT_EQ(child.signal, SIGTERM);
}

TEST_F(WrapLibrary, AForkedChildCannotUseTheRuntimeAndDoesNotShutItDown) {
    expect_success([] {
        const Wrap wrap;
        wrap.load_and_start();
        const pid_t child = fork();
        if (child == 0) {
            alarm(30);
            void* delegate = nullptr;
            const bool refused = wrap.is_domain_initialized() == 0 && wrap.shutdown() == 1 &&
                                 wrap.create_delegate(kCoreLibrary, "System.Environment",
                                                      "get_ProcessorCount", &delegate) == kWrongState;
            std::exit(refused ? 0 : 1);
        }
        int status = -1;
        require(waitpid(child, &status, 0) == child && status == 0, "the child was refused and ended");
        require(wrap.method<int (*)()>("System.Environment", "get_ProcessorCount")() >= 1,
                "the parent works on");
        require(wrap.shutdown() == 0, "and shuts down");
    });
}

TEST_F(WrapLibrary, EnvironmentExitEndsTheProcessThoughTheHostAsksForAShutdown) {
    const ChildResult child = run_in_child([] {
        static const Wrap wrap;
        wrap.load_and_start();
        std::atexit([] { std::printf("shutdown answers %d\n", wrap.shutdown()); });
        wrap.method<void (*)(int)>("System.Environment", "Exit")(7);
    });
    EXPECT_EQ(child.exit_code, 7);
    EXPECT_EQ(child.out, "shutdown answers 1\n");
    EXPECT_EQ(child.err, "");
}

TEST_F(WrapLibrary, HostEnvironmentBringsItUpAndASecondOneAttaches) {
    setenv(kPathVariable, kRuntime, 1);
    expect_success([] {
        HostEnvironment* host =
            HostEnvironment::instance("3.1", false, "velbor", "voxlar", WRAP_FOLDER, "/nowhere");
        require(host->is_domain_ready(), "up");
        HostEnvironment second;
        second.initialize("3.1", false, "velbor", "sibling", WRAP_FOLDER, "/nowhere");
        require(!second.wrap_library().is_first_load(), "attached");
        void* delegate = nullptr;
        for (const HostEnvironment* environment :
             {static_cast<const HostEnvironment*>(host), &std::as_const(second)}) {
            require(environment->try_create_delegate(kCoreLibrary, "System.Environment", "get_ProcessorCount",
                                                     &delegate) == 0,
                    "delegates");
        }
        require(second.try_shutdown_default_app_domain() == -1, "the shutdown is the first one's");
    });
    unsetenv(kPathVariable);
}
