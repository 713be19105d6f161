// SPDX-License-Identifier: GPL-3.0-or-later
// "kestrum track" as it runs: how long a packet takes from the sender to the record that plug-ins read, and what the
// program costs. Needs a free core to watch the record, and the machine's one link.
#include "ipc/OrvaneParameterFactory.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

/// The program in folders of its own, so that the user's tracker is not in its way.
class Program {
public:
    Program() {
        char folder[] = "/tmp/kestrum-benchmark-XXXXXX";
        if (mkdtemp(folder) == nullptr)
            throw std::runtime_error("There is no room in /tmp: make some.");
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0)
            throw std::runtime_error("There is no pipe: end other programs first.");
        id = fork();
        if (id == 0) {
            setenv("XDG_RUNTIME_DIR", folder, 1);
            setenv("XDG_CONFIG_HOME", folder, 1);
            dup2(ends[1], STDOUT_FILENO);
            execl(KESTRUM_PROGRAM, KESTRUM_PROGRAM, "track", "--osc-port", "0", "--opentrack-port", "0",
                  nullptr);
            _exit(127);
        }
        close(ends[1]);
        const std::string words = "opentrack on UDP port ";
        std::string said;
        for (char letter = 0; said.find("The link is up.") == std::string::npos;) {
            if (read(ends[0], &letter, 1) != 1)
                throw std::runtime_error("The program has not started: is another tracker running?");
            said.push_back(letter);
        }
        port = static_cast<std::uint16_t>(std::stoi(said.substr(said.find(words) + words.size())));
    }
    ~Program() {
        kill(id, SIGTERM);
        waitpid(id, nullptr, 0);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Of one core, in seconds.
    double processorTime() const {
        std::ifstream file("/proc/" + std::to_string(id) + "/stat");
        std::string text{std::istreambuf_iterator<char>(file), {}};
        std::vector<double> fields;
        const char* rest = text.c_str() + text.rfind(')') + 3; // behind the state
        for (char* end = nullptr; fields.size() < 14; rest = end)
            fields.push_back(std::strtod(rest, &end));
        return (fields[10] + fields[11]) / static_cast<double>(sysconf(_SC_CLK_TCK));
    }

    std::uint16_t port = 0;

private:
    pid_t id = -1;
};

class Sender {
public:
    explicit Sender(std::uint16_t port) : socket(::socket(AF_INET, SOCK_DGRAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)); // NOLINT
    }
    ~Sender() { close(socket); }
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;

    void send(double yaw) const {
        const std::array<double, 6> pose{0, 0, 0, yaw, 0, 0};
        [[maybe_unused]] const ssize_t sent = ::send(socket, pose.data(), sizeof(pose), 0);
    }

private:
    int socket;
};

/// Sends `count` packets, `interval` apart, and watches each reach the record.
void measureLatency(const Program& program, const Sender& sender, OrvaneIPC::IHeadRotationClient& record,
                    int count, microseconds interval) {
    std::vector<double> late;
    int lost = 0;
    const double processorBefore = program.processorTime();
    const auto start = Clock::now();
    for (int packet = 0; packet < count; ++packet) {
        while (Clock::now() < start + packet * interval)
            ;
        const auto before = record.getRotation();
        const auto sent = Clock::now();
        sender.send(packet % 2 == 0 ? 20 : -20);
        while (record.getRotation() == before && Clock::now() < sent + interval)
            ;
        const double milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - sent).count();
        if (record.getRotation() == before)
            ++lost;
        else
            late.push_back(milliseconds);
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const double processor = program.processorTime() - processorBefore;
    std::ranges::sort(late);
    const auto share = [&late](double part) {
        return late[static_cast<std::size_t>(part * static_cast<double>(late.size() - 1))];
    };
    std::printf("%4.0f packets a second: median %.3f ms, 99 of 100 below %.3f ms, worst %.3f ms, %d not seen "
                "in time; "
                "%.2f %% of a core\n",
                1e6 / static_cast<double>(interval.count()), share(0.5), share(0.99), late.back(), lost,
                100 * processor / seconds);
}

void measureFlood(const Program& program, const Sender& sender, OrvaneIPC::IHeadRotationClient& record) {
    const double processorBefore = program.processorTime();
    const auto start = Clock::now();
    auto last = record.getRotation();
    int packets = 0, changes = 0;
    while (Clock::now() < start + std::chrono::seconds(2)) {
        sender.send(++packets % 100 * 0.5);
        const auto now = record.getRotation();
        changes += now != last ? 1 : 0;
        last = now;
    }
    std::printf("a flood of %.0f packets a second: %.0f changes of the record a second; %.0f %% of a core\n",
                packets / 2.0, changes / 2.0, 100 * (program.processorTime() - processorBefore) / 2);
}

} // namespace

int main() {
    try {
        const Program program;
        const Sender sender(program.port);
        const auto client = OrvaneIPC::OrvaneParameterFactory().createClient();
        auto& record = client->getHeadRotationClient();
        for (int packet = 0; packet < 100; ++packet) {
            sender.send(0);
            usleep(4000);
        }
        for (const int rate : {60, 250})
            measureLatency(program, sender, record, 10 * rate, microseconds(1000000 / rate));
        measureFlood(program, sender, record);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "track_benchmark: %s\n", error.what());
        return 1;
    }
}
