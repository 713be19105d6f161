// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SpatialPosition.h"
#include "ipc/OrvaneParameterFactory.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <lo/lo.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test {

/// No link before a test and none after it, as a program that was killed leaves its own, and a test that ends in the
/// middle kills its programs.
class CleanLink {
public:
    CleanLink() { remove(); }
    ~CleanLink() { remove(); }
    CleanLink(const CleanLink&) = delete;
    CleanLink& operator=(const CleanLink&) = delete;

private:
    static void remove() { shm_unlink("/OrvaneSharedMemory"); }
};

/// A sender of datagrams on this machine.
class Sender {
public:
    explicit Sender(std::uint16_t port) : socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)); // NOLINT
    }
    ~Sender() { close(socket); }
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;

    void send(const void* bytes, std::size_t count) const {
        [[maybe_unused]] const ssize_t sent = ::send(socket, bytes, count, 0);
    }

    /// An OSC message of floats, as liblo writes it.
    void message(const std::string& address, const std::vector<double>& values) const {
        lo_message message = lo_message_new();
        for (const double value : values)
            lo_message_add_float(message, static_cast<float>(value));
        std::size_t count = 0;
        void* const bytes = lo_message_serialise(message, address.c_str(), nullptr, &count);
        send(bytes, count);
        std::free(bytes);
        lo_message_free(message);
    }

private:
    int socket;
};

/// The plug-in's end of the link.
class Listener {
public:
    Listener() : client(OrvaneIPC::OrvaneParameterFactory().createClient()) {}

    bool connected() const { return client->isConnected(); }
    bool active() const { return client->getHeadRotationClient().isActive(); }

    /// Where a source straight ahead is heard.
    double azimuthOfAhead() const { return seen({0, 0, 1}).azimuth; }
    double elevationOfAhead() const { return seen({0, 0, 1}).elevation; }
    double elevationOfRight() const { return seen({0, 90, 1}).elevation; }

    orvane::HeadRotationMatrix matrix() const { return client->getHeadRotationClient().getRotation(); }

private:
    orvane::SpatialPosition seen(orvane::SpatialPosition position) const {
        position.rotate(client->getHeadRotationClient().getRotation());
        return position;
    }

    std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> client;
};

} // namespace test
