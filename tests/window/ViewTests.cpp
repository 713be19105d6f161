// SPDX-License-Identifier: GPL-3.0-or-later
// Golden: the stored pictures, each looked at before it was stored. What they show is held to numbers elsewhere: places
// and values by the tests of hands, colours and pixel rules by those of the controls.
#include "Views.h"

#include <gtest/gtest.h>

namespace {

using namespace orvane::kestrum::host::test;

class PlainViews : public ::testing::TestWithParam<View> {
    VirtualDisplay display;
};

TEST_P(PlainViews, LookAsTheyDidWhenTheyWereLastLookedAt) {
    expectLooksLike(take(GetParam()), GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(OfTheEditor, PlainViews, ::testing::ValuesIn(plainViews()),
                         [](const auto& instance) {
                             std::string name = instance.param.name;
                             std::erase(name, '-');
                             return name;
                         });

} // namespace
