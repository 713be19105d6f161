// SPDX-License-Identifier: GPL-3.0-or-later
// Has the fault that its argument names, so that a run that is to find such can be seen to find it.
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string_view>
#include <thread>

namespace {

/// Keeps the compiler from knowing what a pointer leads to.
int* hidden(int* pointer) {
    int* volatile kept = pointer;
    return kept;
}

int leak() {
    *hidden(new int[16]) = 1;
    return 0;
}

int readBeyond() {
    const auto numbers = std::make_unique<int[]>(16);
    return hidden(numbers.get())[16];
}

int readAfterFree() {
    auto number = std::make_unique<int>(7);
    const int* const kept = hidden(number.get());
    number.reset();
    return *kept;
}

int uninitialised() {
    const std::unique_ptr<int[]> numbers(new int[16]);
    return hidden(numbers.get())[3] == 7 ? 1 : 2;
}

int overflow() {
    volatile int number = std::numeric_limits<int>::max();
    number = number + 1;
    return number < 0 ? 1 : 2;
}

int race() {
    int number = 0;
    std::thread other([&] { ++*hidden(&number); });
    ++*hidden(&number);
    other.join();
    return number;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const std::string_view kind = argumentCount == 2 ? arguments[1] : "";
    int result = -1;
    if (kind == "leak")
        result = leak();
    else if (kind == "read-beyond")
        result = readBeyond();
    else if (kind == "read-after-free")
        result = readAfterFree();
    else if (kind == "uninitialised")
        result = uninitialised();
    else if (kind == "overflow")
        result = overflow();
    else if (kind == "race")
        result = race();
    std::printf("%d\n", result);
    return result == -1 ? EXIT_FAILURE : EXIT_SUCCESS;
}
