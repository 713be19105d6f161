// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ClarityTable.h"

#include <algorithm>
#include <bit>
#include <map>
#include <mutex>

namespace orvane {

namespace {

constexpr std::size_t memoryLimit = 25'000'000; // bytes, unless two entries to a cell need more
constexpr std::size_t fewestWays = 2;           // two amounts at a time: an old engine's and a new one's
constexpr std::size_t mostWays = 4;

std::uint64_t generationWord(const ClarityTable::Key& key) noexcept {
    return key.generation << 1U | (key.simple ? 1U : 0U);
}

std::uint64_t cellWord(const ClarityTable::Key& key) noexcept {
    return std::uint64_t{std::bit_cast<std::uint32_t>(key.amount)} << 32U | key.cell;
}

/// Two samples as they lie in a word, and back.
std::uint64_t packed(float first, float second) noexcept {
    return std::uint64_t{std::bit_cast<std::uint32_t>(second)} << 32U | std::bit_cast<std::uint32_t>(first);
}
float firstIn(std::uint64_t word) noexcept { return std::bit_cast<float>(static_cast<std::uint32_t>(word)); }
float secondIn(std::uint64_t word) noexcept {
    return std::bit_cast<float>(static_cast<std::uint32_t>(word >> 32U));
}

constexpr auto acquire = std::memory_order_acquire;
constexpr auto release = std::memory_order_release;
constexpr auto relaxed = std::memory_order_relaxed;

} // namespace

ClarityTable::ClarityTable(std::uint64_t length, std::size_t setCount, std::size_t wayCount)
    : responseLength(length),
      setCount(setCount),
      wayCount(wayCount),
      entryWords(2 * length),
      headers(std::make_unique<Header[]>(setCount * wayCount)),
      next(std::make_unique<std::atomic<std::uint32_t>[]>(setCount)),
      words(std::make_unique<Word[]>(setCount * wayCount * entryWords)) {}

std::shared_ptr<ClarityTable> ClarityTable::forLength(std::uint64_t length) {
    static std::mutex mutex;
    static std::map<std::uint64_t, std::weak_ptr<ClarityTable>> tables;
    static std::shared_ptr<ClarityTable> latest;
    const std::lock_guard lock(mutex);
    std::shared_ptr<ClarityTable> table = tables[length].lock();
    if (table == nullptr) {
        const std::size_t wayBytes = gridCells * 2 * length * sizeof(Word);
        const std::size_t ways = std::clamp(memoryLimit / wayBytes, fewestWays, mostWays);
        table = std::make_shared<ClarityTable>(length, gridCells, ways);
        tables[length] = table;
    }
    latest = table;
    return table;
}

bool ClarityTable::find(const Key& key, SampleBuffer& out) const noexcept {
    const std::size_t first = firstOf(key);
    for (std::size_t entry = first; entry < first + wayCount; ++entry) {
        const Header& header = headers[entry];
        const std::uint64_t sequence = header.sequence.load(acquire);
        if (header.generation.load(acquire) != generationWord(key) ||
            header.cellAndAmount.load(acquire) != cellWord(key))
            continue;
        if (sequence % 2 != 0)
            return false;
        copyOut(entry, out);
        return header.sequence.load(relaxed) == sequence;
    }
    return false;
}

bool ClarityTable::contains(const Key& key) const noexcept {
    const Header* const first = headers.get() + firstOf(key);
    return std::any_of(first, first + wayCount, [&](const Header& header) {
        return header.generation.load(relaxed) == generationWord(key) &&
               header.cellAndAmount.load(relaxed) == cellWord(key);
    });
}

void ClarityTable::store(const Key& key, const SampleBuffer& result) noexcept {
    if (contains(key))
        return;
    const std::size_t set = firstOf(key) / wayCount;
    const std::size_t entry = set * wayCount + next[set].fetch_add(1, relaxed) % wayCount;
    Header& header = headers[entry];
    std::uint64_t sequence = header.sequence.load(relaxed);
    if (sequence % 2 != 0 ||
        !header.sequence.compare_exchange_strong(sequence, sequence + 1, acquire, relaxed))
        return;
    header.generation.store(generationWord(key), release);
    header.cellAndAmount.store(cellWord(key), release);
    Word* word = words.get() + entry * entryWords;
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        const float* const samples = result.channelPointers[ear];
        for (std::uint64_t i = 0; i < responseLength; ++i)
            (word++)->store(packed(samples[2 * i], samples[2 * i + 1]), release);
    }
    header.sequence.store(sequence + 2, release);
}

std::size_t ClarityTable::bytes() const noexcept {
    const std::size_t entryBytes = sizeof(Header) + entryWords * sizeof(Word);
    return setCount * (wayCount * entryBytes + sizeof(next[0]));
}

std::size_t ClarityTable::firstOf(const Key& key) const noexcept { return key.cell % setCount * wayCount; }

void ClarityTable::copyOut(std::size_t entry, SampleBuffer& out) const noexcept {
    const std::uint64_t count = std::min(out.numSamples, 2 * responseLength);
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        const Word* const source = words.get() + entry * entryWords + ear * responseLength;
        float* const target = out.channelPointers[ear];
        for (std::uint64_t i = 0; i < count / 2; ++i) {
            const std::uint64_t word = source[i].load(acquire);
            target[2 * i] = firstIn(word);
            target[2 * i + 1] = secondIn(word);
        }
        if (count % 2 != 0)
            target[count - 1] = firstIn(source[count / 2].load(acquire));
    }
}

} // namespace orvane
