// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "data/IHrirReader.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace orvane {

/// The store of head-related responses: 73 azimuths from -180 to +180 by 37 elevations from -90 to +90, 5
/// degrees apart, once as measured and once synthetic (one impulse per ear).
///
///     load() ──builds──> immutable table of one rate ──atomic pointer──> length(), getResponse(), ...
///
/// Hand-over: a table is complete before its pointer is stored (release) and is read through one load of that
/// pointer (acquire), so every lookup sees one table whole. Tables are never changed and live as long as the
/// store, one per rate that was ever loaded (at most seven), because a reader on an audio thread cannot be
/// asked whether it is done. Returning to an earlier rate therefore puts its table back into service without
/// reading the file again.
///
/// Plug-in instances at different rates take turns: the last load() wins. Whoever was built for another
/// length gets what fits into its buffer, and silence behind a shorter response.
class TenmarshHrir final : public IHrir {
public:
    explicit TenmarshHrir(std::unique_ptr<IHrirReader> reader) noexcept;
    ~TenmarshHrir() override;

    /// The one store of the process, made at the first call. Safe from several threads at once.
    /// @param reader taken by the first call; later ones discard theirs.
    static TenmarshHrir& processWide(std::unique_ptr<IHrirReader> reader);

    /// @throws also notEnoughSpaceForHRTFsException, when the file has more responses than there are places.
    void load(std::int32_t sampleRate, const std::string& dataDirectory) override;
    std::int32_t bandLimitFactor() const noexcept ORVANE_REALTIME override;
    std::uint64_t length() const noexcept ORVANE_REALTIME override;

    /// Copies the smaller of length() and the buffer's length; what the buffer holds beyond length() becomes
    /// 0, so that no tail of an earlier, longer response stays. Before the first load the whole buffer
    /// becomes 0.
    void getResponse(SampleBuffer& out, std::int32_t azimuthDegrees, std::int32_t elevationDegrees,
                     bool simple) const noexcept ORVANE_REALTIME override;

private:
    struct Table;

    static std::unique_ptr<const Table> readTable(IHrirReader& reader, std::int32_t sampleRate,
                                                  const std::string& dataDirectory);

    std::unique_ptr<IHrirReader> reader;
    std::mutex loadMutex;                             ///< Guards reader and tables.
    std::vector<std::unique_ptr<const Table>> tables; ///< One per loaded rate, in order of first load.
    std::atomic<const Table*> current{nullptr};       ///< Into `tables`; null until the first load.
};

} // namespace orvane
