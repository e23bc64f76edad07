#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "support/temporary_folder.h"

/// What a child process left behind.
struct ChildResult {
    int exit_code = -1;  ///< -1 when a signal ended it
    int signal = 0;      ///< the signal that ended it, 0 for none
    std::string out;
    std::string err;
};

inline std::string read_text(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// Runs `body` in a forked child that then ends through `exit`, so that its exit handlers and the destructors
/// of its static objects run. For cases that change what a process has only one of: its environment
/// variables, its singletons, its streams, its runtime. A child that is not done after `seconds` is killed by
/// SIGALRM. An exception that leaves `body` is written to the child's standard error stream and gives exit
/// code 70.
inline ChildResult run_in_child(const std::function<void()>& body, unsigned seconds = 60) {
    const TemporaryFolder folder;
    const std::string out_path = folder.path() + "/out";
    const std::string err_path = folder.path() + "/err";
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(seconds);
        if (std::freopen(out_path.c_str(), "w", stdout) == nullptr ||
            std::freopen(err_path.c_str(), "w", stderr) == nullptr) {
            _exit(71);
        }
        try {
            body();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s", error.what());
            std::exit(70);
        }
        std::exit(0);
    }
    EXPECT_GT(child, 0);
    int status = 0;
    waitpid(child, &status, 0);
    ChildResult result;
    result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.out = read_text(out_path);
    result.err = read_text(err_path);
    return result;
}

/// In a child: ends it with exit code 1 and the reason when the condition does not hold.
inline void require(bool condition, const std::string& what) {
    if (!condition) {
        std::fprintf(stderr, "not so: %s\n", what.c_str());
        std::exit(1);
    }
}
