// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Fonts.h"
#include "ui/widgets/OffScreen.h"

#include <gmock/gmock.h>

namespace {

using namespace orvane;

TEST(Fonts, AreTheThreeThatAreCompiledIn) {
    EXPECT_EQ(fonts::latoMedium()->getName(), "Lato");
    EXPECT_EQ(fonts::latoMedium()->getStyle(), "Medium");
    EXPECT_EQ(fonts::latoRegular()->getName(), "Lato");
    EXPECT_EQ(fonts::latoRegular()->getStyle(), "Regular");
    EXPECT_EQ(fonts::heeboRegular()->getName(), "Heebo");
    EXPECT_EQ(fonts::heeboRegular()->getStyle(), "Regular");
}

TEST(Fonts, AreMadeOnce) {
    EXPECT_EQ(fonts::latoMedium(), fonts::latoMedium());
    EXPECT_EQ(fonts::latoRegular(), fonts::latoRegular());
    EXPECT_EQ(fonts::heeboRegular(), fonts::heeboRegular());
}

} // namespace
