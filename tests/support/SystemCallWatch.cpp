// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SystemCallWatch.h"

#include <csignal>
#include <pthread.h>
#include <sys/prctl.h>
#include <ucontext.h>

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) &&                \
    !defined(KESTRUM_MEMCHECK)

namespace {

// From the kernel's interface; the C library's header of the day may not have them yet.
constexpr int setDispatch = 59;
constexpr unsigned long dispatchOn = 1;
constexpr char allow = 0;
constexpr char block = 1;
constexpr long long instructionLength = 2; // of the machine's system call

struct ThreadWatch {
    volatile char selector = allow; ///< The kernel reads it at every system call of the thread.
    volatile std::sig_atomic_t seen = 0;
    bool installed = false;
    bool works = false;
};
__attribute__((tls_model("initial-exec"))) thread_local constinit ThreadWatch watch;

/// Runs instead of the call: notes it, ends the watch, and steps back so that it is made after all.
void noteSystemCall(int, siginfo_t*, void* context) {
    watch.selector = allow;
    watch.seen = 1;
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    registers[REG_RIP] -= instructionLength;
}

/// A forked process starts without the dispatch.
void forget() noexcept {
    watch.selector = allow;
    watch.installed = false;
}

void install() noexcept {
    static const int forgetting = pthread_atfork(nullptr, nullptr, forget);
    watch.installed = forgetting == 0;
    struct sigaction action {};
    action.sa_sigaction = noteSystemCall;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    // The selector is read by the kernel through this address; the handler's own calls find it open.
    watch.works = watch.installed && sigaction(SIGSYS, &action, nullptr) == 0 &&
                  prctl(setDispatch, dispatchOn, 0UL, 0UL, &watch.selector) == 0;
}

} // namespace

namespace test {

bool canWatchSystemCalls() noexcept {
    if (!watch.installed)
        install();
    return watch.works;
}

void watchSystemCalls() noexcept {
    const bool works = canWatchSystemCalls();
    watch.seen = 0;
    if (works)
        watch.selector = block;
}

void endSystemCallWatch() noexcept { watch.selector = allow; }

bool madeSystemCall() noexcept { return watch.seen != 0; }

} // namespace test

#else

namespace test {

bool canWatchSystemCalls() noexcept { return false; }
void watchSystemCalls() noexcept {}
void endSystemCallWatch() noexcept {}
bool madeSystemCall() noexcept { return false; }

} // namespace test

#endif
