// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SampleBuffer.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace orvane {

/// Results of the clarity stage, kept for whoever draws the same direction again.
///
/// Shape   setCount sets of wayCount entries; an entry is [2][2 * length] samples. A cell has one set, in which
///         other amounts and generations compete with it: what came first goes first.
/// Thread  constructed off the audio thread, where all memory is taken and touched. find(), contains() and
///         store() from any number of threads, wait-free: they neither lock nor wait nor allocate.
///
/// Each entry is guarded by a sequence number, odd while somebody writes. A reader that sees it odd, or sees
/// it change while it copies, has found nothing; a writer that sees it odd, or loses the race for it, does not
/// store. Everything else is atomic words, stored with release and loaded with acquire order: a reader that got
/// one word of a later write then also sees that write's sequence number, so a torn copy never passes.
class ClarityTable {
public:
    /// What a result depends on besides its length. The generation is never 0.
    struct Key {
        std::uint64_t generation = 0; ///< Of the set that the response came from.
        std::uint32_t cell = 0;       ///< See IHrir::cell().
        bool simple = false;          ///< The synthetic responses.
        float amount = 0;             ///< Compared by bits.
    };

    static constexpr std::size_t gridCells = 73 * 37; ///< Of a store with 5 degrees to a cell.

    ClarityTable(std::uint64_t length, std::size_t setCount, std::size_t wayCount);

    /// The module's table for responses of `length` samples, one set to a cell of the grid, 2 to 4 entries each.
    ///
    /// Thread  any but the audio thread; takes a mutex, and fills some ten megabytes with zeros when the table
    ///         does not exist yet. The one asked for last is kept when nobody uses it any more.
    static std::shared_ptr<ClarityTable> forLength(std::uint64_t length);

    /// Copies a kept result over the smaller length of the two; without one, what is in `out` is anything.
    ///
    /// Shape   out [2][any]
    bool find(const Key& key, SampleBuffer& out) const noexcept ORVANE_REALTIME;

    bool contains(const Key& key) const noexcept ORVANE_REALTIME;

    /// Keeps a result, unless somebody else is writing in its place or has kept it already.
    ///
    /// Shape   result [2][2 * length]
    void store(const Key& key, const SampleBuffer& result) noexcept ORVANE_REALTIME;

    std::uint64_t length() const noexcept ORVANE_REALTIME { return responseLength; }
    std::size_t bytes() const noexcept; ///< Of all entries; constant.

private:
    using Word = std::atomic<std::uint64_t>;

    struct Header {
        Word sequence{0};
        Word generation{0}; ///< Shifted up by one, the lowest bit says whether simple; 0 in an empty entry.
        Word cellAndAmount{0};
    };

    std::size_t firstOf(const Key& key) const noexcept ORVANE_REALTIME;
    void copyOut(std::size_t entry, SampleBuffer& out) const noexcept ORVANE_REALTIME;

    std::uint64_t responseLength;
    std::size_t setCount;
    std::size_t wayCount;
    std::size_t entryWords;                             ///< Two samples to a word.
    std::unique_ptr<Header[]> headers;                  ///< [setCount * wayCount]
    std::unique_ptr<std::atomic<std::uint32_t>[]> next; ///< [setCount], counts the entries written.
    std::unique_ptr<Word[]> words;                      ///< [setCount * wayCount][entryWords], ear after ear.
};

} // namespace orvane
