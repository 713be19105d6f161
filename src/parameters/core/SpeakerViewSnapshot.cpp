// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SpeakerViewSnapshot.h"

#include <cstring>
#include <utility>

namespace orvane::kestrum::core {

SpeakerViewSnapshot::SpeakerViewSnapshot(const ISpeakerParameterSetView* view, const IHrir* hrir) noexcept
    : view(view), hrir(hrir), values(present()) {}

bool SpeakerViewSnapshot::take() noexcept {
    static_assert(sizeof(Values) ==
                      sizeof(HeadRotationMatrix) + sizeof(SpeakerValues) + sizeof(std::uint64_t),
                  "padding would be compared");
    const Values now = present();
    const bool same = std::exchange(taken, true) && std::memcmp(&now, &values, sizeof(Values)) == 0;
    values = now;
    return !same;
}

SpeakerViewSnapshot::Values SpeakerViewSnapshot::present() const noexcept {
    return {.headRotation = view->getHeadRotation(),
            .speaker = speakerValuesOf(*view),
            .generation = hrir->generation()};
}

} // namespace orvane::kestrum::core
