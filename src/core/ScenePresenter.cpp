// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/ScenePresenter.h"

#include "core/PushLatest.h"
#include "parameters/core/SelectorId.h"

#include <algorithm>
#include <utility>

namespace orvane::kestrum::core {

ScenePresenter::ScenePresenter(ISelectorValue* value, std::unique_ptr<ISelector> givenSelector,
                               std::unique_ptr<ISlider> givenAmbience,
                               std::unique_ptr<IBackgroundImage> givenBackground)
    : value(value),
      selector(std::move(givenSelector)),
      ambience(std::move(givenAmbience)),
      background(std::move(givenBackground)),
      withoutAmbience{selectorId("Analytic Dry"), selectorId("Analytic Position")},
      inFocus{selectorId("Mix Room"), selectorId("Mix Room Small"), selectorId("Mix Room Large"),
              withoutAmbience[0], withoutAmbience[1]} {
    value->addListener(this);
    selector->addListener(this);
}

ScenePresenter::~ScenePresenter() {
    selector->removeListener(this);
    value->removeListener(this);
}

void ScenePresenter::modelChanged() {
    pushLatest(*value, [this](std::uint32_t id) {
        selector->setValue(id);
        showConsequences(id);
    });
}

void ScenePresenter::viewChanged() {
    value->setValue(selector->getValue());
    // Of what is held now, which is what was chosen unless another thread has been quicker.
    pushLatest(*value, [this](std::uint32_t id) { showConsequences(id); });
}

void ScenePresenter::showConsequences(std::uint32_t id) {
    ambience->setEnabled(!std::ranges::count(withoutAmbience, id));
    background->setBlurred(!std::ranges::count(inFocus, id));
}

} // namespace orvane::kestrum::core
