// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace test {

/// A program "kestrum" with each kind of option and argument once, and something hidden of each.
class SampleProgram {
public:
    SampleProgram() {
        app.set_version_flag("--version", "1");
        CLI::App* const draw = app.add_subcommand("draw", "Draws the room.");
        draw->add_option("IN", text, "What to draw")->type_name("FILE")->required();
        draw->add_option("SHAPE", text, "How")->type_name("NAME");
        draw->add_option("-s,--scene", text, "Room, such as \"Mix Room\"")->type_name("NAME")->group("Sound");
        draw->add_option("--out", text, "Folder")->type_name("DIR");
        draw->add_option("--size", size, "Size")->type_name("N")->capture_default_str();
        draw->add_flag("--raw", raw, "Draw nothing but lines");
        draw->add_option("--secret", text, "Hidden option")->group("");
        draw->footer("Examples:\n  kestrum draw a.wav --scene \"Mix Room\"\n  kestrum draw .hidden\n\n"
                     ".A line that begins with a dot\nand a back\\slash.");
        CLI::App* const tidy = app.add_subcommand("tidy", "Tidies up.");
        tidy->add_subcommand("all", "Tidies everything.");
        app.add_subcommand("internal", "Hidden command.")->group("");
    }

    CLI::App app{"Draws and tidies.", "kestrum"};

private:
    std::string text;
    int size = 12;
    bool raw = false;
};

} // namespace test
