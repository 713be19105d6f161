// SPDX-License-Identifier: GPL-3.0-or-later
#include "kestrum/Completion.h"

#include "kestrum/CommandTree.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace orvane::kestrum::pages {

namespace {

/// The part of the script that is the same for every program. The functions of the tables come before it.
constexpr const char* engine = R"bash(
_kestrum() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=kestrum place=0 index word kind
    # "--scene=Club" arrives as three words.
    [[ $current == "=" ]] && current=
    [[ $previous == "=" ]] && previous=${COMP_WORDS[COMP_CWORD - 2]}
    for ((index = 1; index < COMP_CWORD; ++index)); do
        word=${COMP_WORDS[index]}
        if [[ " $(_kestrum_commands "$command") " == *" $word "* ]]; then
            command+=" $word"
            place=0
        elif [[ $word != -* && $word != "=" && -z $(_kestrum_kind "$command" "${COMP_WORDS[index - 1]}") &&
                ${COMP_WORDS[index - 1]} != "=" ]]; then
            place=$((place + 1))
        fi
    done
    kind=$(_kestrum_kind "$command" "$previous")
    if [[ -z $kind && $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_kestrum_options "$command")" -- "$current")
        return
    fi
    [[ -n $kind ]] || kind=$(_kestrum_kind "$command" "$place")
#What is typed may be quoted; readline quotes what it is given.
    current=${current#[\"\']}
    current=${current//\\/}
    case $kind in
    files) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    folders) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    "" | other) mapfile -t COMPREPLY < <(compgen -W "$(_kestrum_commands "$command")" -- "$current") ;;
    *)
        compopt -o filenames
        COMPREPLY=()
        while IFS= read -r word; do
            [[ $word == "$current"* ]] && COMPREPLY+=("$word")
        done < <(_kestrum_choices "$kind")
        ;;
    esac
}
complete -F _kestrum kestrum
)bash";

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

/// What the value of an option or argument of a command is: "files", "folders", "other", or the name of its choices.
std::string kindOf(const Command& command, const CLI::Option& option, const std::vector<std::string>& names,
                   const Choices& choices) {
    for (const std::string& name : names) {
        if (std::string listing = command.spelled(" ") + " " + name; choices.listings.contains(listing))
            return listing;
        if (choices.names.contains(name))
            return name;
    }
    const std::string name = option.get_positional() ? option.get_name(true) : std::string();
    const auto says = [words = name + " " + option.get_type_name()](const char* word) {
        return words.find(word) != std::string::npos;
    };
    if (says("DIR") || says("FOLDER"))
        return "folders";
    if (says("FILE") || says("PATH") || name == "IN" || name == "OUT")
        return "files";
    return "other";
}

/// Cases "kestrum data:--out") echo folders, and "kestrum data:0" for the first argument.
void writeKinds(const std::vector<Command>& commands, const Choices& choices, std::ostream& script) {
    script << "_kestrum_kind() {\n    case \"$1:$2\" in\n";
    for (const Command& command : commands) {
        for (const CLI::Option* const option : shownOptions(*command.app)) {
            if (option->get_items_expected_max() == 0)
                continue;
            const auto names = spellingsOf(*option);
            for (const std::string& name : names)
                script << "    " << quoted(command.spelled(" ") + ":" + name) << ") echo "
                       << quoted(kindOf(command, *option, names, choices)) << " ;;\n";
        }
        int place = 0;
        for (const CLI::Option* const positional : shownPositionals(*command.app))
            script << "    " << quoted(command.spelled(" ") + ":" + std::to_string(place++)) << ") echo "
                   << quoted(kindOf(command, *positional, {positional->get_name(true)}, choices)) << " ;;\n";
    }
    script << "    esac\n}\n";
}

void writeCommands(const std::vector<Command>& commands, std::ostream& script) {
    script << "_kestrum_commands() {\n    case $1 in\n";
    for (const Command& command : commands) {
        std::vector<std::string> names;
        for (const CLI::App* const below : shownSubcommands(*command.app))
            names.push_back(below->get_name());
        if (!names.empty())
            script << "    " << quoted(command.spelled(" ")) << ") echo " << quoted(joined(names)) << " ;;\n";
    }
    script << "    esac\n}\n";
}

void writeOptions(const std::vector<Command>& commands, std::ostream& script) {
    script << "_kestrum_options() {\n    case $1 in\n";
    for (const Command& command : commands) {
        std::vector<std::string> names;
        for (const CLI::Option* const option : shownOptions(*command.app))
            for (const std::string& name : spellingsOf(*option))
                names.push_back(name);
        script << "    " << quoted(command.spelled(" ")) << ") echo " << quoted(joined(names)) << " ;;\n";
    }
    script << "    esac\n}\n";
}

void writeChoices(const Choices& choices, std::ostream& script) {
    script << "_kestrum_choices() {\n    case $1 in\n";
    for (const auto& [name, values] : choices.names) {
        script << "    " << quoted(name) << ") printf '%s\\n'";
        for (const std::string& value : values)
            script << " " << quoted(value);
        script << " ;;\n";
    }
    for (const auto& [name, listing] : choices.listings)
        script << "    " << quoted(name) << ") " << listing << " ;;\n";
    script << "    esac\n}\n";
}

} // namespace

std::string quoted(const std::string& text) {
    std::string word = "'";
    for (const char character : text) {
        if (character == '\'')
            word += "'\\''";
        else
            word += character;
    }
    return word + "'";
}

std::string bashCompletion(const CLI::App& program, const Choices& choices) {
    const auto commands = commandsOf(program);
    std::ostringstream script;
    script << "# Completion of kestrum for bash, made from the program's own options; do not edit.\n";
    writeCommands(commands, script);
    writeOptions(commands, script);
    writeKinds(commands, choices, script);
    writeChoices(choices, script);
    script << engine;
    return script.str();
}

} // namespace orvane::kestrum::pages
