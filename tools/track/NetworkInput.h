// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Dialects.h"
#include "track/OscParser.h"
#include "track/Readiness.h"
#include "track/Sample.h"
#include "track/SenderTable.h"
#include "track/UdpSocket.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane::kestrum::track {

struct NetworkOptions {
    std::optional<std::uint16_t> oscPort;       ///< Empty: no OSC. 0: any free port.
    std::optional<std::uint16_t> openTrackPort; ///< Likewise.
    Reach reach = Reach::thisMachine;
    Correction correction;
};

/// What came in since the last look.
struct Received {
    std::vector<Sample> samples; ///< Oldest first.
    bool recentre = false;       ///< Somebody asked for it, before, between or after the samples.
    std::uint64_t unusable = 0;  ///< Packets that are no OSC, and messages whose numbers are no direction.
    std::string unknownAddress;  ///< One of those that tell no direction; printable.
};

/// The ports on which senders are heard.
///
/// Thread  one.
class NetworkInput {
public:
    /// @throws TrackError when a port cannot be had.
    explicit NetworkInput(const NetworkOptions& options);

    /// Takes all that waits on those descriptors() that are ready, but no more than a fraction of a second's flood. Never
    /// waits.
    Received receive(const Readiness& readiness);

    /// To wait for, with a Readiness.
    std::vector<int> descriptors() const;

    std::optional<std::uint16_t> oscPort() const;
    std::optional<std::uint16_t> openTrackPort() const;
    Reach reach() const { return options.reach; }

private:
    void takeMessage(std::string_view address, std::span<const double> values);
    void takeOpenTrack(const Datagram& datagram);

    NetworkOptions options;
    DialectReader reader;
    std::unique_ptr<UdpSocket> osc;
    std::unique_ptr<UdpSocket> openTrack;
    SenderTable oscSenders;
    SenderTable openTrackSenders;
    OscParser parser;
    Source sender; ///< Of the datagram that is being taken apart.
    Received received;
};

} // namespace orvane::kestrum::track
