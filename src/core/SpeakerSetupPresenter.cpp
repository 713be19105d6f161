// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/SpeakerSetupPresenter.h"

#include "base/ISupportedLayouts.h"
#include "core/PushLatest.h"

#include <utility>

namespace orvane::kestrum::core {

SpeakerSetupPresenter::SpeakerSetupPresenter(IBusesLayout* buses, ISelectorValue* value,
                                             std::unique_ptr<ISelector> givenSelector)
    : buses(buses), value(value), selector(std::move(givenSelector)) {
    buses->addBusesLayoutListener(this);
    value->addListener(this);
    selector->addListener(this);
}

SpeakerSetupPresenter::~SpeakerSetupPresenter() {
    selector->removeListener(this);
    value->removeListener(this);
    buses->removeBusesLayoutListener(this);
}

void SpeakerSetupPresenter::busesLayoutChanged(int inputChannelCount) {
    buses->getSupportedLayouts()->forEach([&](const ISupportedLayouts::Properties& layout) {
        selector->setItemEnabled(layout.id, std::cmp_greater_equal(inputChannelCount, layout.channelCount));
    });
}

void SpeakerSetupPresenter::modelChanged() {
    pushLatest(*value, [this](std::uint32_t id) { selector->setValue(id); });
}

void SpeakerSetupPresenter::viewChanged() { value->setValue(selector->getValue()); }

} // namespace orvane::kestrum::core
