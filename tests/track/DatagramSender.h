// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <lo/lo.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test {

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

} // namespace test
