// SPDX-License-Identifier: GPL-3.0-or-later
// Plays noise through a whole engine and ends: for scripts that compare the user time of whole programs.
// play_benchmark LAYOUT SCENE BLOCK SECONDS
#include "EngineRun.h"
#include "Measure.h"
#include "support/FlushDenormals.h"

#include <cstdlib>
#include <exception>
#include <iostream>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 5) {
        std::cerr << "usage: play_benchmark LAYOUT SCENE BLOCK SECONDS\n";
        return 2;
    }
    try {
        const test::FlushDenormals flush;
        const auto blockSize = std::strtoull(arguments[3], nullptr, 10);
        bench::HeadAndRooms data;
        const bench::EngineChoice choice{arguments[1], arguments[2], bench::Reverb::ofScene, blockSize, {}};
        bench::expectSoundOfPlainPath(choice, data);
        bench::EngineRun(choice, data).share(std::strtod(arguments[4], nullptr));
        return 0;
    } catch (const std::exception& problem) {
        std::cerr << "play_benchmark: " << problem.what() << ".\n";
        return 1;
    }
}
