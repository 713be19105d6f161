// SPDX-License-Identifier: GPL-3.0-or-later
// Writes what a VST3 module says of itself as JSON, in the form that hosts read instead of loading the
// module:
//     module_info MODULE.so VERSION > moduleinfo.json
#include "VstModule.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using nlohmann::ordered_json;
using Steinberg::PClassInfo2;
using Steinberg::PFactoryInfo;

/// A field of fixed size, up to its first zero byte.
template <std::size_t size>
std::string text(const char (&field)[size]) {
    return {std::begin(field), std::find(std::begin(field), std::end(field), '\0')};
}

std::string hexadecimal(const Steinberg::TUID& id) {
    std::string digits;
    for (const char byte : id) {
        constexpr const char* symbols = "0123456789ABCDEF";
        digits += symbols[static_cast<unsigned char>(byte) >> 4];
        digits += symbols[static_cast<unsigned char>(byte) & 15];
    }
    return digits;
}

/// "Fx|Spatial" as a list.
ordered_json subCategories(const std::string& joined) {
    auto list = ordered_json::array();
    for (std::size_t start = 0; start < joined.size();) {
        const std::size_t end = std::min(joined.find('|', start), joined.size());
        list.push_back(joined.substr(start, end - start));
        start = end + 1;
    }
    return list;
}

ordered_json describe(const PFactoryInfo& info) {
    const auto flag = [&](Steinberg::int32 bit) { return (info.flags & bit) != 0; };
    return {{"Vendor", text(info.vendor)},
            {"URL", text(info.url)},
            {"E-Mail", text(info.email)},
            {"Flags",
             {{"Unicode", flag(PFactoryInfo::kUnicode)},
              {"Classes Discardable", flag(PFactoryInfo::kClassesDiscardable)},
              {"Component Non Discardable", flag(PFactoryInfo::kComponentNonDiscardable)}}}};
}

ordered_json describe(const PClassInfo2& info) {
    return {{"CID", hexadecimal(info.cid)},
            {"Category", text(info.category)},
            {"Name", text(info.name)},
            {"Vendor", text(info.vendor)},
            {"Version", text(info.version)},
            {"SDKVersion", text(info.sdkVersion)},
            {"Sub Categories", subCategories(text(info.subCategories))},
            {"Class Flags", info.classFlags},
            {"Cardinality", info.cardinality},
            {"Snapshots", ordered_json::array()}};
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::cerr << "usage: module_info MODULE.so VERSION\n";
        return 2;
    }
    try {
        const VstModule module(arguments[1]);
        auto classes = ordered_json::array();
        for (const PClassInfo2& info : module.classes())
            classes.push_back(describe(info));
        const std::string name =
            classes.empty() ? std::string() : classes.front().at("Name").get<std::string>();
        const ordered_json document{{"Name", name},
                                    {"Version", arguments[2]},
                                    {"Factory Info", describe(module.factoryInfo())},
                                    {"Classes", classes}};
        std::cout << document.dump(2) << '\n';
    } catch (const std::exception& error) {
        std::cerr << "module_info: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
