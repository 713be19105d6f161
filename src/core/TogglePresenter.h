// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/IPresenter.h"
#include "core/IToggle.h"
#include "core/ListenerSides.h"
#include "parameters/core/IToggleValue.h"

#include <memory>

namespace orvane::kestrum::core {

/// Joins a toggle to its value, as SliderPresenter does a slider.
class TogglePresenter final : public IPresenter,
                              private ValueListener<IToggleValue>,
                              private ViewListener<IToggle> {
public:
    /// @param value borrowed, outlives the presenter.
    TogglePresenter(IToggleValue* value, std::unique_ptr<IToggle> toggle);
    ~TogglePresenter() override;
    TogglePresenter(const TogglePresenter&) = delete;
    TogglePresenter& operator=(const TogglePresenter&) = delete;

private:
    void modelChanged() override;
    void viewChanged() override;

    IToggleValue* value;
    std::unique_ptr<IToggle> toggle;
};

} // namespace orvane::kestrum::core
