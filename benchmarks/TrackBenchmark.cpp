// SPDX-License-Identifier: GPL-3.0-or-later
// "kestrum track" as it runs: how long a packet takes from the sender to the record that plug-ins read, and what the
// program costs. Needs a free core to watch the record, and the machine's one link.
#include "track/DatagramSender.h"

#include "ipc/OrvaneParameterFactory.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <csignal>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

/// What a process has taken of one core so far, in seconds.
double processorTime(pid_t id) {
    std::ifstream file("/proc/" + std::to_string(id) + "/schedstat");
    double nanoseconds = 0;
    file >> nanoseconds;
    return nanoseconds * 1e-9;
}

/// The program in folders of its own, so that the user's tracker is not in its way.
class Program {
public:
    Program() {
        if (mkdtemp(folder.data()) == nullptr)
            throw std::runtime_error("There is no room in /tmp: make some.");
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0)
            throw std::runtime_error("There is no pipe: end other programs first.");
        id = fork();
        if (id == 0) {
            setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
            setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
            dup2(ends[1], STDOUT_FILENO);
            execl(KESTRUM_PROGRAM, KESTRUM_PROGRAM, "track", "--osc-port", "0", "--opentrack-port", "0",
                  nullptr);
            _exit(127);
        }
        close(ends[1]);
        for (char letter = 0; said.find("The link is up.") == std::string::npos;) {
            if (read(ends[0], &letter, 1) != 1) {
                end();
                throw std::runtime_error("The program has not started: is another tracker running?");
            }
            said.push_back(letter);
        }
    }
    ~Program() { end(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    double processorTime() const { return ::processorTime(id); }

    std::uint16_t oscPort() const { return portAfter("OSC on UDP port "); }
    std::uint16_t openTrackPort() const { return portAfter("opentrack on UDP port "); }

private:
    void end() const {
        kill(id, SIGTERM);
        waitpid(id, nullptr, 0);
        std::error_code failure;
        std::filesystem::remove_all(folder, failure);
    }

    std::uint16_t portAfter(const std::string& words) const {
        return static_cast<std::uint16_t>(std::stoi(said.substr(said.find(words) + words.size())));
    }

    std::string folder = "/tmp/kestrum-benchmark-XXXXXX";
    std::string said;
    pid_t id = -1;
};

/// One way of telling a yaw, as often as it is asked to.
class Sender {
public:
    Sender(const char* name, std::uint16_t port) : name(name), socket(port) {}
    virtual ~Sender() = default;
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;

    virtual void send(double yaw) const = 0;

    const char* const name;

protected:
    const test::Sender socket;
};

class OpenTrackSender final : public Sender {
public:
    explicit OpenTrackSender(std::uint16_t port) : Sender("opentrack", port) {}
    void send(double yaw) const override {
        const std::array<double, 6> pose{0, 0, 0, yaw, 0, 0};
        socket.send(pose.data(), sizeof(pose));
    }
};

class OscSender final : public Sender {
public:
    explicit OscSender(std::uint16_t port) : Sender("OSC", port) {}
    void send(double yaw) const override { socket.message("/ypr", {-yaw, 0, 0}); }
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
    std::printf(
        "%9s, %4.0f packets a second: median %.3f ms, 99 of 100 below %.3f ms, worst %.3f ms, %d not seen "
        "in time; "
        "%.2f %% of a core\n",
        sender.name, 1e6 / static_cast<double>(interval.count()), share(0.5), share(0.99), late.back(), lost,
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
    std::printf(
        "%9s, a flood of %.0f packets a second: %.0f changes of the record a second; %.0f %% of a core\n",
        sender.name, packets / 2.0, changes / 2.0, 100 * (program.processorTime() - processorBefore) / 2);
}

/// A process that waits for datagrams and takes them, and does no more: what the system itself costs.
class BareReceiver {
public:
    BareReceiver() {
        const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        auto* const any =
            reinterpret_cast<sockaddr*>(&address); // NOLINT(cppcoreguidelines-pro-type-reinterpret-cast)
        if (bind(descriptor, any, length) != 0 || getsockname(descriptor, any, &length) != 0)
            throw std::runtime_error("There is no UDP port: end other programs first.");
        port = ntohs(address.sin_port);
        id = fork();
        if (id == 0) {
            std::array<char, 64> bytes{};
            for (pollfd waiting{descriptor, POLLIN, 0};;) {
                poll(&waiting, 1, -1);
                while (recv(descriptor, bytes.data(), bytes.size(), MSG_DONTWAIT) >= 0)
                    ;
            }
        }
        close(descriptor);
    }
    ~BareReceiver() {
        kill(id, SIGKILL);
        waitpid(id, nullptr, 0);
    }
    BareReceiver(const BareReceiver&) = delete;
    BareReceiver& operator=(const BareReceiver&) = delete;

    double processorTime() const { return ::processorTime(id); }

    std::uint16_t port = 0;

private:
    pid_t id = -1;
};

/// The share of a core in per cent, when nobody watches and the sender sleeps between its packets as real ones do.
template <typename Receiver>
double costOf(const Receiver& receiver, const Sender& sender, int rate) {
    const double before = receiver.processorTime();
    const auto start = Clock::now();
    for (int packet = 0; packet < 5 * rate; ++packet) {
        sender.send(packet % 2 == 0 ? 20 : -20);
        std::this_thread::sleep_until(start + (packet + 1) * microseconds(1000000 / rate));
    }
    return 100 * (receiver.processorTime() - before) /
           std::chrono::duration<double>(Clock::now() - start).count();
}

/// With a program of its own, as no sender should meet what the one before has left.
template <typename Kind>
void measure(std::uint16_t (Program::*portOf)() const) {
    const Program program;
    const Kind sender((program.*portOf)());
    const auto client = OrvaneIPC::OrvaneParameterFactory().createClient();
    auto& record = client->getHeadRotationClient();
    for (int packet = 0; packet < 100; ++packet) {
        sender.send(0);
        usleep(4000);
    }
    const BareReceiver bare;
    const Kind bareSender(bare.port);
    for (const int rate : {60, 250})
        std::printf("%9s, %4d packets a second, unwatched: %.2f %% of a core; a program that only receives: "
                    "%.2f %%\n",
                    sender.name, rate, costOf(program, sender, rate), costOf(bare, bareSender, rate));
    for (const int rate : {60, 250})
        measureLatency(program, sender, record, 10 * rate, microseconds(1000000 / rate));
    measureFlood(program, sender, record);
}

} // namespace

int main() {
    try {
        measure<OpenTrackSender>(&Program::openTrackPort);
        measure<OscSender>(&Program::oscPort);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "track_benchmark: %s\n", error.what());
        return 1;
    }
}
