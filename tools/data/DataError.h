// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

namespace orvane::kestrum::tools {

/// Why a data set could not be made or is not sound: one plain sentence with the remedy.
class DataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace orvane::kestrum::tools
