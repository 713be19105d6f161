// SPDX-License-Identifier: GPL-3.0-or-later
// What anybody may send to the tracker's ports: OSC packets, and the datagrams of the other port, on which the same bytes
// are tried. Only what becomes a direction goes on to the plug-ins.
#include "Fuzzed.h"

#include "track/Dialects.h"
#include "track/OpenTrack.h"
#include "track/OscParser.h"

#include <cmath>
#include <vector>

namespace {

using namespace orvane::kestrum::track;

void promiseRotation(const std::optional<Rotation>& rotation) {
    if (!rotation)
        return;
    const double length = rotation->w * rotation->w + rotation->x * rotation->x + rotation->y * rotation->y +
                          rotation->z * rotation->z;
    test::promise(std::abs(length - 1) < 1e-6, "a direction is a rotation and nothing else");
    for (const float element : linkMatrix(*rotation))
        test::promise(std::abs(element) <= 1.00001f, "plug-ins get numbers that turn a head");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    static DialectReader reader;
    static OscParser parser([](std::string_view address, std::span<const double> values) {
        if (const Dialect* const dialect = findDialect(address))
            promiseRotation(reader.read(*dialect, {Input::osc, dialect->family, 0, 0}, values));
    });
    const std::span datagram(bytes, count);
    promiseRotation(readOpenTrack(std::as_bytes(datagram), {}));
    std::vector<std::byte> packet(std::as_bytes(datagram).begin(), std::as_bytes(datagram).end());
    parser.parse(packet);
    return 0;
}
