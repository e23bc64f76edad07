#pragma once

#include <signal.h>

#include <cstddef>
#include <iterator>

/// Keeps the process's own handlers of the signals by which people and systems stop a program.
///
/// The runtime takes these over when it starts; Python needs them for Ctrl-C. The signals by which the
/// runtime itself works (SIGSEGV, SIGFPE, SIGBUS, SIGILL, SIGTRAP and its real-time signal) are left to it:
/// managed null checks and the suspension of threads live there.
class SignalKeeper {
public:
    SignalKeeper() {
        for (std::size_t i = 0; i < std::size(kSignals); ++i) {
            m_is_kept[i] = sigaction(kSignals[i], nullptr, &m_actions[i]) == 0;
        }
    }

    ~SignalKeeper() {
        for (std::size_t i = 0; i < std::size(kSignals); ++i) {
            if (m_is_kept[i]) {
                sigaction(kSignals[i], &m_actions[i], nullptr);
            }
        }
    }

    SignalKeeper(const SignalKeeper&) = delete;
    SignalKeeper& operator=(const SignalKeeper&) = delete;

private:
    static constexpr int kSignals[] = {SIGINT, SIGQUIT, SIGTERM, SIGABRT};

    struct sigaction m_actions[std::size(kSignals)] = {};
    bool m_is_kept[std::size(kSignals)] = {};
};
