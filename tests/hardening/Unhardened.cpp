// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdio>
#include <cstring>

int main(int count, char** arguments) {
    char first[64]{};
    if (count > 1)
        std::strncpy(first, arguments[1], sizeof first - 1);
    std::printf("%s\n", first);
    return 0;
}
