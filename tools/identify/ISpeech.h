// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/Recording.h"

#include <string>

namespace orvane::kestrum::identify {

/// Says words aloud.
class ISpeech {
public:
    virtual ~ISpeech() = default;
    /// @throws render::RenderError with the remedy when nothing can be said.
    virtual render::Recording say(const std::string& words) = 0;
};

} // namespace orvane::kestrum::identify
