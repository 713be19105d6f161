// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/PictureSet.h"
#include "pictures/PngFile.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

using namespace orvane::kestrum::pictures;

/// Draws the pictures of resources/ anew: all, or those whose names begin as one of the further arguments.
int main(int argumentCount, char** arguments) {
    if (argumentCount < 2 || std::string(arguments[1]) == "--help") {
        std::puts("usage: draw_pictures RESOURCES [NAME ...]\n\n"
                  "Draws RESOURCES/pictures/*.png with the fonts of RESOURCES/fonts: all of them, or those "
                  "whose names\n"
                  "begin with one of the NAMEs, as in: draw_pictures resources rotary_ layouts/7.1");
        return argumentCount < 2 ? 2 : 0;
    }
    try {
        const std::filesystem::path resources = arguments[1];
        const std::vector<std::string> wanted(arguments + 2, arguments + argumentCount);
        for (const PictureSource& source : pictureSet(resources / "fonts")) {
            const auto begins = [&](const std::string& name) { return source.file.starts_with(name); };
            if (!wanted.empty() && std::ranges::none_of(wanted, begins))
                continue;
            std::printf("%s\n", source.file.c_str());
            writePng(dithered(source.draw()), resources / "pictures" / source.file);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "draw_pictures: %s.\n", error.what());
        return 1;
    }
    return 0;
}
