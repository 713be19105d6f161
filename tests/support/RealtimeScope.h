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
    std::uint64_t throws = 0;      ///< exceptions, caught or not
    std::uint64_t systemCalls = 0; ///< 1 when there was any: what follows the first is not counted

    std::uint64_t total() const noexcept {
        return allocations + frees + locks + waits + throws + systemCalls;
    }
};

/// Counts, for the constructing thread only, the calls above from construction to destruction. Scopes do not
/// nest.
///
/// The counting hooks replace the C library's functions in every program that links this library, so they
/// also see calls from inside other libraries. Under AddressSanitizer and ThreadSanitizer the sanitizer owns
/// these functions; there `countingWorks` is false and the counts stay 0.
///
/// System calls are seen by the kernel's dispatch of them to their own thread (Linux 5.11, x86-64), whichever library
/// makes them; elsewhere that one count stays 0 and seesSystemCalls() is false.
class RealtimeScope {
public:
    RealtimeScope() noexcept;
    ~RealtimeScope();
    RealtimeScope(const RealtimeScope&) = delete;
    RealtimeScope& operator=(const RealtimeScope&) = delete;

    RealtimeViolations violations() const noexcept;

    static const bool countingWorks;
    static bool seesSystemCalls() noexcept;
};

inline bool operator==(const RealtimeViolations& a, const RealtimeViolations& b) noexcept {
    return a.allocations == b.allocations && a.frees == b.frees && a.locks == b.locks && a.waits == b.waits &&
           a.throws == b.throws && a.systemCalls == b.systemCalls;
}

inline std::ostream& operator<<(std::ostream& stream, const RealtimeViolations& v) {
    return stream << v.allocations << " allocations, " << v.frees << " frees, " << v.locks << " locks, "
                  << v.waits << " waits, " << v.throws << " throws, " << v.systemCalls << " system calls";
}

} // namespace test
