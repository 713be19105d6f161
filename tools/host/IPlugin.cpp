// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/IPlugin.h"

#include <algorithm>

namespace orvane::kestrum::host {

const ParameterInfo* findParameter(const IPlugin& plugin, std::string_view name) {
    const auto& all = plugin.parameters();
    const auto found = std::ranges::find(all, name, &ParameterInfo::name);
    return found == all.end() ? nullptr : &*found;
}

} // namespace orvane::kestrum::host
