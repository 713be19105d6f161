// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace orvane::kestrum::track {

/// Takes OSC packets apart. Opens no port: whoever has one hands over what came in.
///
/// Bundles are taken apart at once, whatever time they carry: a direction that is told ahead of its time is still
/// the newest there is, and none is ever kept.
class OscParser {
public:
    /// @param address the message's; valid during the call, as are the values.
    /// @param values all arguments; not a number for one that is none.
    using Handler = std::function<void(std::string_view address, std::span<const double> values)>;

    /// @throws TrackError when there is no folder for temporary files.
    explicit OscParser(Handler handler);
    ~OscParser();

    /// @param packet a datagram of any content; its bytes may be swapped in place.
    /// @return false when it is no OSC, or holds a blob, which is no direction.
    bool parse(std::span<std::byte> packet);

private:
    struct Library;
    std::unique_ptr<Library> library;
};

} // namespace orvane::kestrum::track
