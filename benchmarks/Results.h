// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace bench {

inline std::string number(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}
/// With as many decimals as make three figures.
inline std::string number(double value) {
    return number(value, value < 1 ? 3 : value < 10 ? 2 : value < 100 ? 1 : 0);
}

/// What a program has measured: a table for the page on standard output, and behind `--results FOLDER` files that
/// other programs read: every figure as a line of JSON, those that goals speak of, and columns to plot.
class Results {
public:
    using Figure = std::pair<std::string, double>;

    /// @param program names the files.
    Results(std::string program, int argumentCount, char** arguments) : name(std::move(program)) {
        for (int i = 1; i + 1 < argumentCount; ++i)
            if (std::string(arguments[i]) == "--results")
                folder = arguments[i + 1];
    }

    static void heading(const std::vector<std::string>& columns) {
        line(columns);
        std::cout << '|';
        for (std::size_t i = 0; i < columns.size(); ++i)
            std::cout << (i == 0 ? " --- |" : " ---: |");
        std::cout << '\n';
    }
    static void line(const std::vector<std::string>& cells) {
        std::cout << '|';
        for (const std::string& cell : cells)
            std::cout << ' ' << cell << " |";
        std::cout << std::endl; // a run takes minutes
    }

    /// One measurement for the file of JSON lines.
    void record(const std::string& what, const std::vector<Figure>& figures) const {
        std::string json = "{\"what\": \"" + what + "\"";
        for (const auto& [key, value] : figures)
            json += ", \"" + key + "\": " + number(value, 9);
        append(name + ".json", json + "}");
    }

    /// A figure that a goal speaks of, under the goal's name.
    void goal(const std::string& which, double value) const {
        append("goals.txt", which + " " + number(value, 6));
    }

    /// One row of a file to plot.
    void plot(const std::string& file, const std::string& row) const { append(file + ".txt", row); }

private:
    void append(const std::string& file, const std::string& text) const {
        if (!folder.empty())
            std::ofstream(folder + "/" + file, std::ios::app) << text << '\n';
    }

    std::string name;
    std::string folder; ///< Empty: nothing is written.
};

/// What a program's main() returns: `run` measures, and what it throws is one sentence and status 1.
inline int runProgram(const std::string& program, int argumentCount, char** arguments,
                      void (*run)(const Results&)) {
    try {
        run(Results(program, argumentCount, arguments));
        return 0;
    } catch (const std::exception& problem) {
        std::cerr << program << ": " << problem.what() << ".\n";
        return 1;
    }
}

} // namespace bench
