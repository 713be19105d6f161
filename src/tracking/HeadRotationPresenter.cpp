// SPDX-License-Identifier: GPL-3.0-or-later
#include "tracking/HeadRotationPresenter.h"

#include "base/SpatialPosition.h"
#include "core/PushLatest.h"
#include "ipc/IHeadRotationClient.h"
#include "ipc/IOrvaneParameterClient.h"

#include <utility>

namespace orvane::kestrum::core {

HeadRotationPresenter::HeadRotationPresenter(IHeadRotationAccessor* accessor,
                                             std::unique_ptr<ITimer> givenTimer, ISliderValue* value,
                                             std::unique_ptr<ISlider> givenSlider)
    : accessor(accessor), timer(std::move(givenTimer)), value(value), slider(std::move(givenSlider)) {
    const float shown = value->getValue();
    slider->setValue(shown);
    slider->addListener(this);
    value->addListener(this);
    timer->addListener(this);
    if (value->getValue() != shown) // set by another thread, which found nobody to tell
        HeadRotationPresenter::modelChanged();
}

HeadRotationPresenter::~HeadRotationPresenter() {
    slider->removeListener(this);
    value->removeListener(this);
    timer->removeListener(this);
}

void HeadRotationPresenter::viewChanged() {
    if (!active) // the dial is disabled otherwise, but may still move under way
        value->setValue(slider->getValue());
}

void HeadRotationPresenter::modelChanged() {
    pushLatest(*value, [this](float held) { slider->setValue(held); });
}

void HeadRotationPresenter::timerCallback() {
    const bool before = std::exchange(active, trackerIsActive());
    if (!before && active)
        slider->setEnabled(false);
    else if (before && active)
        followTracker();
    else if (before && !active)
        giveDialBack();
}

bool HeadRotationPresenter::trackerIsActive() const {
    auto* const client = accessor->getParameterClient();
    return client != nullptr && client->getHeadRotationClient().isActive();
}

void HeadRotationPresenter::followTracker() {
    // Deliberate: the point lies one degree above the horizon.
    SpatialPosition ahead(1.0f, 0.0f, 1.0f);
    HeadRotationMatrix rotation;
    accessor->getHeadRotation(rotation);
    ahead.rotate(rotation);
    const float azimuth = 0.0f - ahead.getAzimuth(); // not the plain negative, whose zero has a sign
    slider->setValue(azimuth);
    value->setValue(azimuth);
}

void HeadRotationPresenter::giveDialBack() {
    slider->setEnabled(true);
    slider->setValue(0.0f);
    value->setValue(0.0f);
}

} // namespace orvane::kestrum::core
