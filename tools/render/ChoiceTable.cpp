// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ChoiceTable.h"

#include "render/RenderError.h"

#include <algorithm>

namespace orvane::kestrum::render {

namespace {

constexpr char lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

} // namespace

bool equalIgnoringCase(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lower, lower);
}

const Choice* ChoiceTable::search(std::string_view name) const {
    // A table name wins over a shown one, should they ever clash.
    for (const auto member : {&Choice::name, &Choice::shownAs})
        for (const Choice& choice : choices)
            if (equalIgnoringCase(choice.*member, name))
                return &choice;
    return nullptr;
}

const Choice& ChoiceTable::find(std::string_view name) const {
    if (const Choice* const found = search(name))
        return *found;
    std::string message = "There is no " + kind + " \"" + std::string(name) + "\"; choose one of: ";
    for (std::size_t index = 0; index < choices.size(); ++index) {
        const Choice& choice = choices[index];
        message += (index == 0 ? "\"" : ", \"") + choice.name + "\"";
        if (choice.shownAs != choice.name)
            message += " (shown as \"" + choice.shownAs + "\")";
    }
    throw RenderError(message + ".");
}

} // namespace orvane::kestrum::render
