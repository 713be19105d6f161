// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/RealtimeScope.h"

#include "support/SystemCallWatch.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <utility>

#include <dlfcn.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <unistd.h>

namespace {

struct ThreadState {
    bool counting = false;
    test::RealtimeViolations violations;
};

// Initial-exec storage: reading it never allocates, which the allocation hooks below rely on.
__attribute__((tls_model("initial-exec"))) thread_local constinit ThreadState state;

// unused where a sanitizer owns the hooks
[[maybe_unused]] void count(std::uint64_t test::RealtimeViolations::*what) noexcept {
    if (state.counting)
        ++(state.violations.*what);
}

} // namespace

namespace test {

RealtimeScope::RealtimeScope() noexcept {
    state.violations = {};
    watchSystemCalls();
    state.counting = true;
}

RealtimeScope::~RealtimeScope() {
    state.counting = false;
    endSystemCallWatch();
}

RealtimeViolations RealtimeScope::violations() const noexcept {
    RealtimeViolations seen = state.violations;
    seen.systemCalls = madeSystemCall() ? 1 : 0;
    return seen;
}

bool RealtimeScope::seesSystemCalls() noexcept { return countingWorks && canWatchSystemCalls(); }

} // namespace test

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(KESTRUM_MEMCHECK)

const bool test::RealtimeScope::countingWorks = false;

#else

const bool test::RealtimeScope::countingWorks = true;

extern "C" {

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the system's own names are reserved ones
// The allocator's own entries, so that the replaced names can forward without a symbol look-up.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* pointer, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* pointer);

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
    count(&test::RealtimeViolations::allocations);
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t number, std::size_t size) {
    count(&test::RealtimeViolations::allocations);
    return __libc_calloc(number, size);
}

__attribute__((visibility("default"))) void* realloc(void* pointer, std::size_t size) {
    count(&test::RealtimeViolations::allocations);
    return __libc_realloc(pointer, size);
}

__attribute__((visibility("default"))) void* memalign(std::size_t alignment, std::size_t size) {
    count(&test::RealtimeViolations::allocations);
    return __libc_memalign(alignment, size);
}

__attribute__((visibility("default"))) void* aligned_alloc(std::size_t alignment, std::size_t size) {
    count(&test::RealtimeViolations::allocations);
    return __libc_memalign(alignment, size);
}

__attribute__((visibility("default"))) int posix_memalign(void** result, std::size_t alignment,
                                                          std::size_t size) {
    count(&test::RealtimeViolations::allocations);
    *result = __libc_memalign(alignment, size);
    return *result != nullptr ? 0 : ENOMEM;
}

__attribute__((visibility("default"))) void free(void* pointer) {
    if (pointer != nullptr)
        count(&test::RealtimeViolations::frees);
    __libc_free(pointer);
}

} // extern "C"

namespace {

/// The next definition of a replaced function. The look-up itself may lock, so it is left out of the count.
template <typename Result, typename... Arguments>
auto original(Result (*)(Arguments...), const char* name) noexcept -> Result (*)(Arguments...) {
    const bool counting = std::exchange(state.counting, false);
    void* const found = dlsym(RTLD_NEXT, name);
    state.counting = counting;
    return reinterpret_cast<Result (*)(Arguments...)>(found);
}

} // namespace

// No two threads wait for each other's look-up: it takes the loader's lock, and the loader locks while it holds that.
#    define KESTRUM_FORWARD(category, name, ...)                                                             \
        count(&test::RealtimeViolations::category);                                                          \
        static constinit std::atomic<decltype(original(&(name), #name))> known{nullptr};                     \
        auto* forwarded = known.load(std::memory_order_relaxed);                                             \
        if (forwarded == nullptr)                                                                            \
            known.store(forwarded = original(&(name), #name), std::memory_order_relaxed);                    \
        return forwarded(__VA_ARGS__)

extern "C" void __cxa_throw(void* thrown, void* type, void (*destroy)(void*));

extern "C" {

__attribute__((visibility("default"))) int pthread_mutex_lock(pthread_mutex_t* mutex) {
    KESTRUM_FORWARD(locks, pthread_mutex_lock, mutex);
}

__attribute__((visibility("default"))) int pthread_mutex_trylock(pthread_mutex_t* mutex) {
    KESTRUM_FORWARD(locks, pthread_mutex_trylock, mutex);
}

__attribute__((visibility("default"))) int pthread_mutex_timedlock(pthread_mutex_t* mutex,
                                                                   const timespec* deadline) noexcept {
    KESTRUM_FORWARD(locks, pthread_mutex_timedlock, mutex, deadline);
}

__attribute__((visibility("default"))) int pthread_rwlock_rdlock(pthread_rwlock_t* lock) {
    KESTRUM_FORWARD(locks, pthread_rwlock_rdlock, lock);
}

__attribute__((visibility("default"))) int pthread_rwlock_wrlock(pthread_rwlock_t* lock) {
    KESTRUM_FORWARD(locks, pthread_rwlock_wrlock, lock);
}

__attribute__((visibility("default"))) int pthread_cond_wait(pthread_cond_t* condition,
                                                             pthread_mutex_t* mutex) {
    KESTRUM_FORWARD(waits, pthread_cond_wait, condition, mutex);
}

__attribute__((visibility("default"))) int
pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* deadline) {
    KESTRUM_FORWARD(waits, pthread_cond_timedwait, condition, mutex, deadline);
}

__attribute__((visibility("default"))) int pthread_cond_clockwait(pthread_cond_t* condition,
                                                                  pthread_mutex_t* mutex, clockid_t clock,
                                                                  const timespec* deadline) {
    KESTRUM_FORWARD(waits, pthread_cond_clockwait, condition, mutex, clock, deadline);
}

__attribute__((visibility("default"))) int pthread_cond_signal(pthread_cond_t* condition) {
    KESTRUM_FORWARD(waits, pthread_cond_signal, condition);
}

__attribute__((visibility("default"))) int pthread_cond_broadcast(pthread_cond_t* condition) {
    KESTRUM_FORWARD(waits, pthread_cond_broadcast, condition);
}

__attribute__((visibility("default"))) int sem_wait(sem_t* semaphore) {
    KESTRUM_FORWARD(waits, sem_wait, semaphore);
}

__attribute__((visibility("default"))) int sem_post(sem_t* semaphore) {
    KESTRUM_FORWARD(waits, sem_post, semaphore);
}

__attribute__((visibility("default"))) int nanosleep(const timespec* duration, timespec* rest) {
    KESTRUM_FORWARD(waits, nanosleep, duration, rest);
}

__attribute__((visibility("default"))) int clock_nanosleep(clockid_t clock, int flags,
                                                           const timespec* duration, timespec* rest) {
    KESTRUM_FORWARD(waits, clock_nanosleep, clock, flags, duration, rest);
}

__attribute__((visibility("default"))) int usleep(useconds_t microseconds) {
    KESTRUM_FORWARD(waits, usleep, microseconds);
}

__attribute__((visibility("default"))) int sched_yield() noexcept { KESTRUM_FORWARD(waits, sched_yield); }

// NOLINTEND(readability-inconsistent-declaration-parameter-name)

// NOLINTNEXTLINE(bugprone-reserved-identifier): the language's runtime calls it so
__attribute__((visibility("default"), noreturn)) void __cxa_throw(void* thrown, void* type,
                                                                  void (*destroy)(void*)) {
    count(&test::RealtimeViolations::throws);
    static constinit std::atomic<decltype(original(&__cxa_throw, ""))> known{nullptr};
    auto* forwarded = known.load(std::memory_order_relaxed);
    if (forwarded == nullptr)
        known.store(forwarded = original(&__cxa_throw, "__cxa_throw"), std::memory_order_relaxed);
    forwarded(thrown, type, destroy);
    __builtin_unreachable();
}
} // extern "C"

#endif
