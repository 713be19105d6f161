// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/TogglePresenter.h"

#include "core/PushLatest.h"

#include <utility>

namespace orvane::kestrum::core {

TogglePresenter::TogglePresenter(IToggleValue* value, std::unique_ptr<IToggle> givenToggle)
    : value(value), toggle(std::move(givenToggle)) {
    const bool shown = value->getValue();
    toggle->setValue(shown);
    toggle->addListener(this);
    value->addListener(this);
    if (value->getValue() != shown) // set by another thread, which found nobody to tell
        TogglePresenter::modelChanged();
}

TogglePresenter::~TogglePresenter() {
    toggle->removeListener(this);
    value->removeListener(this);
}

void TogglePresenter::modelChanged() {
    pushLatest(*value, [this](bool held) { toggle->setValue(held); });
}

void TogglePresenter::viewChanged() { value->setValue(toggle->getValue()); }

} // namespace orvane::kestrum::core
