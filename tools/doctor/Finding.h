// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace orvane::kestrum::doctor {

enum class Verdict {
    good,
    note,    ///< Worth knowing; nothing is wrong.
    warning, ///< Works, but not as it is most likely meant.
    fault,   ///< Something does not work.
};

/// One thing that was looked at.
struct Finding {
    std::string subject; ///< "bundle", "data", "manual", "tracker", "hosts", "sound".
    Verdict verdict = Verdict::good;
    std::string text; ///< One sentence, full stop included.
    std::string
        remedy; ///< The command that mends it, to be pasted into a shell; what no command does stands behind "#".
                ///< Empty where nothing is to be mended.
};

using Findings = std::vector<Finding>;

} // namespace orvane::kestrum::doctor
