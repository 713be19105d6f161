// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/NetworkInput.h"

#include "track/OpenTrack.h"

#include <algorithm>
#include <utility>

namespace orvane::kestrum::track {

namespace {

constexpr int mostDatagramsAtOnce = 256; ///< Then signals, keys and deadlines get their turn.

std::unique_ptr<UdpSocket> openPort(std::string_view purpose, std::optional<std::uint16_t> port,
                                    Reach reach) {
    return port ? std::make_unique<UdpSocket>(purpose, *port, reach) : nullptr;
}

/// As a terminal may show it, whatever a stranger has sent.
std::string printable(std::string_view text) {
    std::string result(text.substr(0, 40));
    std::ranges::replace_if(
        result, [](char letter) { return letter < ' ' || letter > '~'; }, '?');
    return result;
}

} // namespace

NetworkInput::NetworkInput(const NetworkOptions& options)
    : options(options),
      reader(options.correction),
      osc(openPort("OSC (--osc-port)", options.oscPort, options.reach)),
      openTrack(openPort("opentrack (--opentrack-port)", options.openTrackPort, options.reach)),
      parser([this](std::string_view address, std::span<const double> values) {
          takeMessage(address, values);
      }) {}

Received NetworkInput::receive(const Readiness& readiness) {
    received = {};
    const auto drain = [&readiness](UdpSocket* socket, auto take) {
        if (socket == nullptr || !readiness.has(socket->descriptor()))
            return;
        for (int count = 0; count < mostDatagramsAtOnce; ++count) {
            const auto datagram = socket->receive();
            if (!datagram)
                return;
            take(*datagram);
        }
    };
    drain(osc.get(), [this](const Datagram& datagram) {
        sender = {.input = Input::osc,
                  .address = datagram.address,
                  .port = oscSenders.known(datagram.address, datagram.port)};
        if (!parser.parse(datagram.bytes))
            ++received.unusable;
    });
    drain(openTrack.get(), [this](const Datagram& datagram) { takeOpenTrack(datagram); });
    return std::move(received);
}

std::vector<int> NetworkInput::descriptors() const {
    std::vector<int> result;
    for (const auto* const socket : {osc.get(), openTrack.get()})
        if (socket != nullptr)
            result.push_back(socket->descriptor());
    return result;
}

std::optional<std::uint16_t> NetworkInput::oscPort() const {
    return osc ? std::optional(osc->port()) : std::nullopt;
}

std::optional<std::uint16_t> NetworkInput::openTrackPort() const {
    return openTrack ? std::optional(openTrack->port()) : std::nullopt;
}

void NetworkInput::takeMessage(std::string_view address, std::span<const double> values) {
    if (address == "/recenter" || address == "/recentre") {
        // A button sends 1 when it is pressed and 0 when it is let go.
        received.recentre = received.recentre || values.empty() || values.front() != 0;
        return;
    }
    const Dialect* const dialect = findDialect(address);
    if (dialect == nullptr) {
        received.unknownAddress = printable(address);
        return;
    }
    sender.family = dialect->family;
    const auto rotation = reader.read(*dialect, sender, values);
    if (!rotation) {
        ++received.unusable;
        return;
    }
    received.samples.push_back({sender, *rotation});
}

void NetworkInput::takeOpenTrack(const Datagram& datagram) {
    const auto rotation = readOpenTrack(datagram.bytes, options.correction);
    if (!rotation) {
        ++received.unusable;
        return;
    }
    received.samples.push_back({{.input = Input::openTrack,
                                 .address = datagram.address,
                                 .port = openTrackSenders.known(datagram.address, datagram.port)},
                                *rotation});
}

} // namespace orvane::kestrum::track
