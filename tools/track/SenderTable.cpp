// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/SenderTable.h"

#include <algorithm>

namespace orvane::kestrum::track {

std::uint16_t SenderTable::known(std::uint32_t address, std::uint16_t port) {
    const auto same = std::ranges::find_if(senders, [address, port](const Sender& sender) {
        return sender.address == address && sender.port == port;
    });
    if (same != senders.end()) {
        if (!same->lasting)
            same->name = port;
        same->lasting = true;
        std::rotate(same, same + 1, senders.end());
        return senders.back().name;
    }
    const auto before = std::find_if(senders.rbegin(), senders.rend(),
                                     [address](const Sender& sender) { return sender.address == address; });
    const bool goesOn = before != senders.rend() && !before->lasting;
    const std::uint16_t name = goesOn ? before->name : port;
    if (senders.size() == most)
        senders.erase(senders.begin());
    senders.push_back({address, port, name, false});
    return name;
}

} // namespace orvane::kestrum::track
