// SPDX-License-Identifier: GPL-3.0-or-later
#include "kestrum/ManPage.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <sstream>

namespace orvane::kestrum::pages {

namespace {

std::string bold(const std::string& text) { return "\\fB" + roff(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + roff(text) + "\\fR"; }

/// "Writes the pages." as the line that apropos shows: "writes the pages".
std::string asShortLine(std::string text) {
    if (text.size() > 1 && std::islower(static_cast<unsigned char>(text[1])) != 0)
        text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    while (!text.empty() && text.back() == '.')
        text.pop_back();
    return text;
}

std::string nameOf(const CLI::Option& positional) { return positional.get_name(true); }

void writeSynopsis(const Command& command, std::ostream& page) {
    page << ".SH SYNOPSIS\n" << bold(command.spelled(" "));
    if (!shownOptions(*command.app).empty())
        page << " [" << italic("OPTIONS") << "]";
    for (const CLI::Option* const positional : shownPositionals(*command.app)) {
        const bool required = positional->get_required();
        page << (required ? " " : " [") << italic(nameOf(*positional)) << (required ? "" : "]");
        if (positional->get_items_expected_max() > 1)
            page << "...";
    }
    if (!shownSubcommands(*command.app).empty())
        page << " " << italic("COMMAND");
    page << "\n";
}

/// The description of an option, with its default where --help tells it.
std::string explained(const CLI::Option& option) {
    std::string text = option.get_description();
    if (!option.get_default_str().empty())
        text += (text.empty() || text.back() == '.' ? " " : ". ") +
                ("Default: " + option.get_default_str() + ".");
    return text;
}

void writeArguments(const CLI::App& app, std::ostream& page) {
    const auto positionals = shownPositionals(app);
    if (positionals.empty())
        return;
    page << ".SH ARGUMENTS\n";
    for (const CLI::Option* const positional : positionals)
        page << ".TP\n" << italic(nameOf(*positional)) << "\n" << roff(explained(*positional)) << "\n";
}

void writeOption(const CLI::Option& option, std::ostream& page) {
    page << ".TP\n";
    std::string between;
    for (const std::string& spelling : spellingsOf(option)) {
        page << between << bold(spelling);
        between = ", ";
    }
    if (option.get_items_expected_max() > 0 && !option.get_type_name().empty())
        page << " " << italic(option.get_type_name());
    page << "\n" << roff(explained(option)) << "\n";
}

/// Group after group, in the order in which --help shows them.
void writeOptions(const CLI::App& app, std::ostream& page) {
    const auto options = shownOptions(app);
    if (options.empty())
        return;
    page << ".SH OPTIONS\n";
    for (const std::string& group : app.get_groups()) {
        const auto belongs = [&group](const CLI::Option* option) { return option->get_group() == group; };
        if (std::ranges::none_of(options, belongs))
            continue;
        if (group != "Options")
            page << ".SS " << roff(group) << "\n";
        for (const CLI::Option* const option : options)
            if (belongs(option))
                writeOption(*option, page);
    }
}

void writeSubcommands(const Command& command, std::ostream& page) {
    const auto below = shownSubcommands(*command.app);
    if (below.empty())
        return;
    page << ".SH COMMANDS\nEach has a page of its own.\n";
    for (const CLI::App* const subcommand : below)
        page << ".TP\n"
             << bold(command.spelled(" ") + " " + subcommand->get_name()) << "\n"
             << roff(subcommand->get_description()) << "\n";
}

std::vector<std::string> paragraphsOf(const std::string& text) {
    std::vector<std::string> paragraphs(1);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty())
            paragraphs.back() += line + "\n";
        else if (!paragraphs.back().empty())
            paragraphs.emplace_back();
    }
    if (paragraphs.back().empty())
        paragraphs.pop_back();
    return paragraphs;
}

void writeExamples(const std::string& paragraph, std::ostream& page) {
    std::istringstream lines(paragraph);
    std::string line;
    std::getline(lines, line); // its heading
    page << ".SH EXAMPLES\n.nf\n";
    while (std::getline(lines, line)) {
        line.erase(0, line.find_first_not_of(' '));
        page << roff(line) << "\n";
    }
    page << ".fi\n";
}

void writeFooter(const std::string& footer, std::ostream& page) {
    bool notes = false;
    for (const std::string& paragraph : paragraphsOf(footer)) {
        if (paragraph.starts_with("Example")) {
            writeExamples(paragraph, page);
            notes = false;
        } else {
            page << (notes ? ".PP\n" : ".SH NOTES\n") << roff(paragraph);
            notes = true;
        }
    }
}

/// The pages one step up and down from a command, and those beside it.
void writeSeeAlso(const Command& command, const std::vector<Command>& all, std::ostream& page) {
    std::string text;
    for (const Command& other : all) {
        const auto common = static_cast<std::size_t>(std::ranges::mismatch(command.words, other.words).in1 -
                                                     command.words.begin());
        const bool above = common == other.words.size() && common + 1 == command.words.size();
        const bool below = common == command.words.size() && common + 1 == other.words.size();
        const bool beside = other.words.size() == command.words.size() && common + 1 == command.words.size();
        if (above || below || beside)
            text += (text.empty() ? ".BR " : " (1),\n.BR ") + roff(other.spelled("-"));
    }
    if (!text.empty())
        page << ".SH SEE ALSO\n" << text << " (1)\n";
}

} // namespace

std::string roff(const std::string& text) {
    std::string escaped;
    bool lineBegins = true;
    for (const char character : text) {
        if (lineBegins && (character == '.' || character == '\''))
            escaped += "\\&";
        switch (character) {
        case '\\':
            escaped += "\\e";
            break;
        case '-':
            escaped += "\\-";
            break;
        default:
            escaped += character;
        }
        lineBegins = character == '\n';
    }
    return escaped;
}

std::string manPageFileName(const Command& command) { return command.spelled("-") + ".1"; }

std::string manPage(const Command& command, const std::vector<Command>& all, const std::string& version) {
    std::string title = command.spelled("-");
    std::ranges::transform(title, title.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    std::ostringstream page;
    page << ".\\\" Made from the text of \"" << command.spelled(" ") << " --help\"; do not edit.\n"
         << ".TH " << roff(title) << " 1 \"\" \"Orvane KESTRUM " << version << "\" \"User Commands\"\n"
         << ".SH NAME\n"
         << roff(command.spelled("-")) << " \\- " << roff(asShortLine(command.app->get_description()))
         << "\n";
    writeSynopsis(command, page);
    page << ".SH DESCRIPTION\n" << roff(command.app->get_description()) << "\n";
    writeArguments(*command.app, page);
    writeSubcommands(command, page);
    writeOptions(*command.app, page);
    writeFooter(command.app->get_footer(), page);
    page << ".SH EXIT STATUS\n"
            "0 when all went well. 1 after a failure, which standard error tells in one sentence. 100 and "
            "more when the "
            "command line is not understood.\n";
    writeSeeAlso(command, all, page);
    return page.str();
}

} // namespace orvane::kestrum::pages
