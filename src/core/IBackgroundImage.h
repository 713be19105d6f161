// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

/// The picture behind everything, as presenters see it. Threads as ISlider.
class IBackgroundImage {
public:
    virtual ~IBackgroundImage() = default;

    virtual void setBlurred(bool blurred) = 0;
};

} // namespace orvane::kestrum::core
