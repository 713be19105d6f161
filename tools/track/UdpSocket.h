// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace orvane::kestrum::track {

/// Who may send: programs of this machine, or the network as well.
enum class Reach { thisMachine, network };

/// A datagram as it came in.
struct Datagram {
    std::span<std::byte> bytes; ///< In the socket's buffer, until the next receive(); may be written to.
    std::uint32_t address;      ///< The sender's, IPv4, host order.
    std::uint16_t port;
};

/// A bound UDP port that never waits.
///
/// Thread  one.
class UdpSocket {
public:
    /// @param purpose what the port is for, told when it cannot be had.
    /// @param port 0 takes any free one.
    /// @throws TrackError when the port cannot be had, with the reason.
    UdpSocket(std::string_view purpose, std::uint16_t port, Reach reach);
    ~UdpSocket();
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    /// Empty when nothing waits.
    std::optional<Datagram> receive();

    int descriptor() const { return socket; }
    std::uint16_t port() const { return boundPort; }

private:
    int socket;
    std::uint16_t boundPort = 0;
    alignas(8) std::array<std::byte, 65536> buffer; ///< As long as any datagram.
};

} // namespace orvane::kestrum::track
