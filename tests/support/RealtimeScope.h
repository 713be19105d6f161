// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <ostream>

namespace test {

/// What a thread did inside a RealtimeScope that a block path must not do.
struct RealtimeViolations {
    std::uint64_t allocations = 0; ///< malloc family and operator new
    std::uint64_t frees = 0;       ///< free and operator delete of something
    std::uint64_t locks = 0;       ///< mutex and read-write lock calls, taken or tried
    std::uint64_t waits = 0;       ///< condition variables, semaphores, sleeps, yields

    std::uint64_t total() const noexcept { return allocations + frees + locks + waits; }
};

/// Counts, for the constructing thread only, the calls above from construction to destruction. Scopes do not
/// nest.
///
/// The counting hooks replace the C library's functions in every program that links this library, so they
/// also see calls from inside other libraries. Under AddressSanitizer and ThreadSanitizer the sanitizer owns
/// these functions; there `countingWorks` is false and the counts stay 0.
class RealtimeScope {
public:
    RealtimeScope() noexcept;
    ~RealtimeScope();
    RealtimeScope(const RealtimeScope&) = delete;
    RealtimeScope& operator=(const RealtimeScope&) = delete;

    RealtimeViolations violations() const noexcept;

    static const bool countingWorks;
};

inline bool operator==(const RealtimeViolations& a, const RealtimeViolations& b) noexcept {
    return a.allocations == b.allocations && a.frees == b.frees && a.locks == b.locks && a.waits == b.waits;
}

inline std::ostream& operator<<(std::ostream& stream, const RealtimeViolations& v) {
    return stream << v.allocations << " allocations, " << v.frees << " frees, " << v.locks << " locks, "
                  << v.waits << " waits";
}

} // namespace test
