// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/IBusesLayout.h"
#include "core/IPresenter.h"
#include "core/ISelector.h"
#include "core/ListenerSides.h"
#include "parameters/core/ISelectorValue.h"

#include <memory>

namespace orvane::kestrum::core {

/// Joins the layout selector to its value, and greys out the layouts that have more channels than the bus.
class SpeakerSetupPresenter final : public IPresenter,
                                    private IBusesLayout::BusesLayoutListener,
                                    private ValueListener<ISelectorValue>,
                                    private ViewListener<ISelector> {
public:
    /// @param buses, value borrowed, outlive the presenter.
    /// @param selector comes as it is to be shown: nothing is pushed before something changes.
    SpeakerSetupPresenter(IBusesLayout* buses, ISelectorValue* value, std::unique_ptr<ISelector> selector);
    ~SpeakerSetupPresenter() override;
    SpeakerSetupPresenter(const SpeakerSetupPresenter&) = delete;
    SpeakerSetupPresenter& operator=(const SpeakerSetupPresenter&) = delete;

private:
    void busesLayoutChanged(int inputChannelCount) override;
    void modelChanged() override;
    void viewChanged() override;

    IBusesLayout* buses;
    ISelectorValue* value;
    std::unique_ptr<ISelector> selector;
};

} // namespace orvane::kestrum::core
