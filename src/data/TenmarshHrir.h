// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "data/IHrirReader.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace orvane {

/// The measured head of the running rate, and a synthetic one beside it: a pair of impulses per direction
/// that carry only a time and a level difference.
///
/// Shape   responses on a grid of 73 azimuths (-180 to +180) by 37 elevations (-90 to +90), 5 degrees apart.
///         A direction truncates to its cell.
/// Thread  load() on setup threads, serialised by a mutex. Lookups from any thread, wait-free: they read an
///         immutable table through an atomic pointer, which is stored (release) after the table is complete
///         and loaded (acquire) once per lookup.
///
/// Tables live as long as the store, one per rate and content, because nobody can tell when the last lookup
/// of another instance has left one. Coming back to an earlier rate reads its file again, as the data folder
/// may have changed, and finds the table that is already there. So no lookup is torn or touches freed memory
/// while another instance loads.
///
/// Instances at different rates take turns: the last load() wins. A renderer that was built for one rate and
/// meets the table of another gets as much of it as its buffer holds.
class TenmarshHrir final : public IHrir {
public:
    explicit TenmarshHrir(std::unique_ptr<IHrirReader> reader);
    ~TenmarshHrir() override;
    TenmarshHrir(const TenmarshHrir&) = delete;
    TenmarshHrir& operator=(const TenmarshHrir&) = delete;

    void load(std::int32_t sampleRate, const std::string& dataDirectory) override;
    std::int32_t bandLimitFactor() const noexcept ORVANE_REALTIME override;
    std::uint64_t length() const noexcept ORVANE_REALTIME override;
    std::uint64_t generation() const noexcept ORVANE_REALTIME override;
    std::uint32_t cell(std::int32_t azimuthDegrees,
                       std::int32_t elevationDegrees) const noexcept ORVANE_REALTIME override;

    /// Copies the smaller of length() and the buffer's length. Leaves the samples behind that as they are
    /// (the renderers clear their buffers first), and before the first load the whole of `out`
    /// (and the generation is that of the empty store).
    std::uint64_t getResponse(SampleBuffer& out, std::int32_t azimuthDegrees, std::int32_t elevationDegrees,
                              bool simple) const noexcept ORVANE_REALTIME override;

private:
    struct Table;

    const Table* keep(std::unique_ptr<const Table> table);

    std::unique_ptr<IHrirReader> reader;
    std::uint64_t emptyGeneration = newHrirGeneration(); ///< Before the first load.
    std::atomic<const Table*> current{nullptr};          ///< One of `tables`.
    std::mutex loadMutex;
    std::vector<std::unique_ptr<const Table>> tables; ///< Guarded by `loadMutex`; only ever grows.
};

/// The store of the process, shared by all instances; made on first use.
///
/// @param reader taken by the first call; later ones discard theirs.
IHrir* processWideHrir(std::unique_ptr<IHrirReader> reader);

} // namespace orvane
