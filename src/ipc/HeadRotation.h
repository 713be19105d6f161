// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"
#include "ipc/IHeadRotationClient.h"
#include "ipc/IHeadRotationServer.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace OrvaneIPC {

/// Both ends' access to the record in the shared segment. Has no state of its own, so any number of threads
/// may use one.
class HeadRotation final : public IHeadRotationClient, public IHeadRotationServer {
public:
    /// The record, shared between processes: exactly these 72 bytes, little-endian.
    struct Data {
        std::uint8_t active = 0;      ///< Non-zero: a server drives the rotation.
        std::uint8_t padding[3] = {}; ///< Zero, never read.
        std::uint32_t lock = 0;       ///< Bit 0: held. The other bits stay 0.
        float rotation[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; ///< Row by row.
    };

    /// @param record borrowed, in a mapped segment that outlives this.
    explicit HeadRotation(Data* record) noexcept : data(record) {}

    bool isActive() const noexcept ORVANE_REALTIME override;

    /// Deliberate: there is no way out of the spin. A writer that dies while it copies leaves the lock held
    /// for ever; a replacement server starts a new segment, for new clients.
    orvane::HeadRotationMatrix getRotation() const noexcept ORVANE_REALTIME override;
    void setRotation(const orvane::HeadRotationMatrix& matrix) noexcept override;
    void setActive(bool active) noexcept override;

private:
    Data* data;
};

static_assert(sizeof(HeadRotation::Data) == 72 && alignof(HeadRotation::Data) == 4);
static_assert(offsetof(HeadRotation::Data, active) == 0 && offsetof(HeadRotation::Data, lock) == 4 &&
              offsetof(HeadRotation::Data, rotation) == 8);
static_assert(std::is_trivially_copyable_v<HeadRotation::Data>);

inline constexpr const char* segmentName = "OrvaneSharedMemory";
inline constexpr std::size_t segmentSize = 65536; ///< Bytes, fixed at creation.
inline constexpr const char* headRotationName = "HeadRotation";

} // namespace OrvaneIPC
