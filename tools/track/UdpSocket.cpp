// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/UdpSocket.h"

#include "track/TrackError.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvane::kestrum::track {

namespace {

/// The calls take any family's address by this type.
sockaddr* anyAddress(sockaddr_in& address) {
    return reinterpret_cast<sockaddr*>(&address); // NOLINT(cppcoreguidelines-pro-type-reinterpret-cast)
}

std::string refusal(std::string_view purpose, std::uint16_t port, int error) {
    const std::string start = "UDP port " + std::to_string(port) + " for " + std::string(purpose);
    if (error == EADDRINUSE)
        return start + " is taken by another program: end that, or choose another port.";
    if (error == EACCES)
        return start + " may be opened by root only: choose one from 1024 on.";
    return start + " cannot be opened (" + std::generic_category().message(error) +
           "): mend that, or choose another port.";
}

} // namespace

UdpSocket::UdpSocket(std::string_view purpose, std::uint16_t port, Reach reach)
    : socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(reach == Reach::network ? INADDR_ANY : INADDR_LOOPBACK);
    address.sin_port = htons(port);
    socklen_t length = sizeof(address);
    if (socket < 0 || bind(socket, anyAddress(address), length) != 0 ||
        getsockname(socket, anyAddress(address), &length) != 0) {
        const int error = errno;
        if (socket >= 0)
            close(socket);
        throw TrackError(refusal(purpose, port, error));
    }
    boundPort = ntohs(address.sin_port);
}

UdpSocket::~UdpSocket() { close(socket); }

std::optional<Datagram> UdpSocket::receive() {
    sockaddr_in sender{};
    socklen_t length = sizeof(sender);
    const ssize_t count = recvfrom(socket, buffer.data(), buffer.size(), 0, anyAddress(sender), &length);
    if (count < 0)
        return std::nullopt;
    return Datagram{{buffer.data(), static_cast<std::size_t>(count)},
                    ntohl(sender.sin_addr.s_addr),
                    ntohs(sender.sin_port)};
}

} // namespace orvane::kestrum::track
