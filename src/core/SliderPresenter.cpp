// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/SliderPresenter.h"

#include "core/PushLatest.h"

#include <utility>

namespace orvane::kestrum::core {

SliderPresenter::SliderPresenter(ISliderValue* value, std::unique_ptr<ISlider> givenSlider)
    : value(value), slider(std::move(givenSlider)) {
    const float shown = value->getValue();
    slider->setValue(shown);
    slider->addListener(this);
    value->addListener(this);
    if (value->getValue() != shown) // set by another thread, which found nobody to tell
        SliderPresenter::modelChanged();
}

SliderPresenter::~SliderPresenter() {
    slider->removeListener(this);
    value->removeListener(this);
}

void SliderPresenter::modelChanged() {
    pushLatest(*value, [this](float held) { slider->setValue(held); });
}

void SliderPresenter::viewChanged() { value->setValue(slider->getValue()); }

} // namespace orvane::kestrum::core
