// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/WatchedProcess.h"

#include <array>
#include <csignal>
#include <ctime>
#include <system_error>

#include <cerrno>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

namespace {

using std::chrono::microseconds;
using How = WatchedEnd::How;

microseconds processTime() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return std::chrono::duration_cast<microseconds>(std::chrono::seconds(now.tv_sec) +
                                                    std::chrono::nanoseconds(now.tv_nsec));
}

[[noreturn]] void live(const std::function<int()>& work, int pipe) {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    WatchedEnd end;
    const microseconds before = processTime();
    try {
        end.value = work();
        end.how = How::returned;
        end.cpuTime = processTime() - before;
    } catch (...) {
        end.how = How::threw;
    }
    const bool told = write(pipe, &end, sizeof end) == static_cast<ssize_t>(sizeof end);
    _exit(told ? 0 : 1); // what the test program has registered to run at its end is not the fork's business
}

void require(bool done, const char* what) {
    if (!done)
        throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const WatchedEnd& end) {
    constexpr std::array names{"returned", "threw", "crashed", "hung"};
    return stream << names[static_cast<std::size_t>(end.how)] << " " << end.value << " after "
                  << end.cpuTime.count() << " us of CPU";
}

WatchedEnd watch(const std::function<int()>& work, std::chrono::milliseconds guard) {
    std::array<int, 2> ends{};
    require(pipe(ends.data()) == 0, "no pipe");
    const pid_t child = fork();
    require(child >= 0, "no process");
    if (child == 0) {
        close(ends[0]);
        live(work, ends[1]);
    }
    close(ends[1]);
    pollfd waiting{ends[0], POLLIN, 0};
    WatchedEnd end;
    if (poll(&waiting, 1, static_cast<int>(guard.count())) == 0)
        end.how = How::hung;
    else if (read(ends[0], &end, sizeof end) != static_cast<ssize_t>(sizeof end))
        end = {};
    kill(child, SIGKILL); // has no effect once it has ended
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return end;
}

} // namespace test
