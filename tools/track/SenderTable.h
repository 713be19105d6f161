// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvane::kestrum::track {

/// Tells senders apart by address and port, and yet knows again one that opens a port for every packet.
///
/// A port that is heard for the first time belongs to the sender before it of the same address if that one's port was
/// heard only once as well. A port that comes back is a sender of its own.
class SenderTable {
public:
    /// Notes a datagram.
    /// @return the port by which its sender is known.
    std::uint16_t known(std::uint32_t address, std::uint16_t port);

private:
    struct Sender {
        std::uint32_t address;
        std::uint16_t port;
        std::uint16_t name; ///< The port by which it is known.
        bool lasting;       ///< Heard more than once.
    };

    static constexpr std::size_t most = 16; ///< So that strangers with ever new ports fill no memory.

    std::vector<Sender> senders; ///< The one that was heard last stands last.
};

} // namespace orvane::kestrum::track
