// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/IPresenter.h"
#include "core/ISlider.h"
#include "core/ListenerSides.h"
#include "parameters/core/ISliderValue.h"

#include <memory>

namespace orvane::kestrum::core {

/// Joins a slider to its value. Each side takes over from the other; that setting what is there already is silent
/// ends the loop.
class SliderPresenter final : public IPresenter,
                              private ValueListener<ISliderValue>,
                              private ViewListener<ISlider> {
public:
    /// @param value borrowed, outlives the presenter.
    SliderPresenter(ISliderValue* value, std::unique_ptr<ISlider> slider);
    ~SliderPresenter() override;
    SliderPresenter(const SliderPresenter&) = delete;
    SliderPresenter& operator=(const SliderPresenter&) = delete;

private:
    void modelChanged() override;
    void viewChanged() override;

    ISliderValue* value;
    std::unique_ptr<ISlider> slider;
};

} // namespace orvane::kestrum::core
