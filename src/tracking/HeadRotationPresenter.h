// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/IHeadRotationAccessor.h"
#include "core/IPresenter.h"
#include "core/ISlider.h"
#include "core/ITimer.h"
#include "core/ListenerSides.h"
#include "parameters/core/ISliderValue.h"

#include <memory>

namespace orvane::kestrum::core {

/// Keeps the dial honest about who turns the head:
///
///     tracker silent   dial <--> value
///     tracker active   tracker --> dial and value, at each tick; the dial is disabled
///     tracker ends     dial and value go back to 0
///
/// The renderers follow the tracker by themselves, with or without a dial on the screen.
///
/// Thread  as IPresenter; the timer on the message thread.
class HeadRotationPresenter final : public IPresenter,
                                    private ViewListener<ISlider>,
                                    private ValueListener<ISliderValue>,
                                    private ITimer::Listener {
public:
    /// @param accessor, value borrowed, outlive the presenter.
    HeadRotationPresenter(IHeadRotationAccessor* accessor, std::unique_ptr<ITimer> timer, ISliderValue* value,
                          std::unique_ptr<ISlider> slider);
    ~HeadRotationPresenter() override;
    HeadRotationPresenter(const HeadRotationPresenter&) = delete;
    HeadRotationPresenter& operator=(const HeadRotationPresenter&) = delete;

private:
    void viewChanged() override;
    void modelChanged() override;
    void timerCallback() override;
    bool trackerIsActive() const;
    void followTracker();
    void giveDialBack();

    IHeadRotationAccessor* accessor;
    std::unique_ptr<ITimer> timer;
    ISliderValue* value;
    std::unique_ptr<ISlider> slider; ///< After the timer, so that it dies first.
    bool active = false;             ///< Whether the tracker was active at the last tick.
};

} // namespace orvane::kestrum::core
