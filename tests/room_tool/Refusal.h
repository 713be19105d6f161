// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/DataError.h"

#include <functional>
#include <string>

namespace test {

/// What work says that it refuses.
inline std::string refusal(const std::function<void()>& work) {
    try {
        work();
    } catch (const orvane::kestrum::tools::DataError& error) {
        return error.what();
    }
    return "nothing refused";
}

} // namespace test
