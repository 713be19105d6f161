// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/IBackgroundImage.h"
#include "core/IPresenter.h"
#include "core/ISelector.h"
#include "core/ISlider.h"
#include "core/ListenerSides.h"
#include "parameters/core/ISelectorValue.h"

#include <array>
#include <cstdint>
#include <memory>

namespace orvane::kestrum::core {

/// Joins the Scene selector to its value, and shows what a Scene means: rooms without reverb have no ambience to
/// set, and all rooms but those for mixing lie out of focus.
class ScenePresenter final : public IPresenter,
                             private ValueListener<ISelectorValue>,
                             private ViewListener<ISelector> {
public:
    /// @param value borrowed, outlives the presenter.
    /// @param selector comes as it is to be shown: nothing is pushed before one of the two sides reports.
    /// @param ambience only enabled and disabled here.
    ScenePresenter(ISelectorValue* value, std::unique_ptr<ISelector> selector,
                   std::unique_ptr<ISlider> ambience, std::unique_ptr<IBackgroundImage> background);
    ~ScenePresenter() override;
    ScenePresenter(const ScenePresenter&) = delete;
    ScenePresenter& operator=(const ScenePresenter&) = delete;

private:
    void modelChanged() override;
    void viewChanged() override;
    void showConsequences(std::uint32_t id);

    ISelectorValue* value;
    std::unique_ptr<ISelector> selector;
    std::unique_ptr<ISlider> ambience;
    std::unique_ptr<IBackgroundImage> background;
    // Hashed once: a change may arrive on a thread that has no time for it.
    std::array<std::uint32_t, 2> withoutAmbience;
    std::array<std::uint32_t, 5> inFocus;
};

} // namespace orvane::kestrum::core
