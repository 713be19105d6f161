// SPDX-License-Identifier: GPL-3.0-or-later
// The two menus and the diagrams. Expected texts, headings and file names are written out by hand.
#include "Resources.h"
#include "engine/assembly/ComponentFactory.h"
#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"
#include "parameters/core/SupportedLayouts.h"
#include "ui/LayoutImages.h"
#include "ui/SelectorMenus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum;

const core::ISupportedLayouts& layouts() {
    static const core::SupportedLayouts table{core::ComponentFactory()};
    return table;
}

/// The rows of a menu as they look, headings in brackets.
std::vector<std::string> rows(juce::ComboBox& comboBox) {
    std::vector<std::string> texts;
    for (juce::PopupMenu::MenuItemIterator item(*comboBox.getRootMenu()); item.next();) {
        const auto text = item.getItem().text.toStdString();
        texts.push_back(item.getItem().isSectionHeader ? "[" + text + "]" : text);
    }
    return texts;
}

class Menus : public ::testing::Test {
private:
    juce::ScopedJuceInitialiser_GUI framework;
};

TEST_F(Menus, TheLayoutsStandUnderTheirHeadingsInTheOrderOfTheTable) {
    juce::ComboBox comboBox;
    fillSpeakerSetup(comboBox, layouts(), 16);
    EXPECT_THAT(rows(comboBox),
                ::testing::ElementsAre("[Mono/Stereo]", "Mono Input", "Mono Summed", "Stereo", "Stereo Wide",
                                       "[Horizontal Plane]", "LRCS", "Quad", "4.0", "5.0 Film", "5.0 ITU",
                                       "5.1 Film", "5.1 ITU", "5.1 ITU Logic", "6.0", "6.1", "7.0", "7.1",
                                       "7.1 SDDS", "7.1 SDDS Logic", "[With Heights]", "5.0.2", "5.1.2",
                                       "5.0.4", "5.1.4", "7.0.2", "7.1.2", "7.0.4", "7.1.4", "9.1.2", "9.1.6",
                                       "8.0", "9.1", "11.1", "13.1"));
}

TEST_F(Menus, TheScenesStandUnderTheirHeadingsInTheOrderOfTheTable) {
    juce::ComboBox comboBox;
    fillScene(comboBox);
    EXPECT_THAT(rows(comboBox),
                ::testing::ElementsAre("[Mix]", "Mix Room A", "Mix Room B", "Mix Room Large", "Analytic Dry",
                                       "Analytic Position", "[Check]", "Live Venue", "Stadium",
                                       "Acoustic Venue", "Club Large", "Club", "Car", "Van", "Cinema",
                                       "Home Theater", "Living Room", "Kitchen"));
}

TEST_F(Menus, AnItemIsChosenByTheIdentifierOfItsName) {
    juce::ComboBox comboBox;
    fillScene(comboBox);
    EXPECT_EQ(comboBox.getNumItems(), 16) << "headings are no items";
    comboBox.setSelectedId(static_cast<int>(0x1AC2A1C3), juce::dontSendNotification);
    EXPECT_EQ(comboBox.getText(), juce::String("Mix Room A"));
}

TEST_F(Menus, OnlyLayoutsWithMoreChannelsThanTheBusAreGreyed) {
    for (const int inputs : {0, 1, 2, 6, 8, 16}) {
        juce::ComboBox comboBox;
        fillSpeakerSetup(comboBox, layouts(), inputs);
        layouts().forEach([&](const core::ISupportedLayouts::Properties& layout) {
            EXPECT_EQ(comboBox.isItemEnabled(std::bit_cast<int>(layout.id)),
                      static_cast<int>(layout.channelCount) <= inputs)
                << layout.name << " on " << inputs;
        });
    }
}

std::string fileOf(const LayoutImage& image) {
    for (int i = 0; i < resources::namedResourceListSize; ++i) {
        int size = 0;
        if (resources::getNamedResource(resources::namedResourceList[i], size) == image.data &&
            size == image.size)
            return resources::originalFilenames[i];
    }
    return "no compiled-in picture";
}

TEST(Diagrams, EveryLayoutHasTheOneOfItsName) {
    const std::map<std::string, std::string> others{{"2.0 +/-0°", "1.0.png"},
                                                    {"2.0 +/-30°", "2.0_+-_30.png"},
                                                    {"2.0 +/-45°", "2.0_+-_45.png"},
                                                    {"LRCS", "LCRS.png"}};
    int count = 0;
    layouts().forEach([&](const core::ISupportedLayouts::Properties& layout) {
        auto expected = layout.name + ".png";
        std::ranges::replace(expected, ' ', '_');
        if (const auto other = others.find(layout.name); other != others.end())
            expected = other->second;
        EXPECT_EQ(fileOf(layoutImage(layout.id)), expected);
        ++count;
    });
    EXPECT_EQ(count, 32);
}

TEST(Diagrams, AnUnknownLayoutIsRefused) {
    try {
        layoutImage(core::selectorId("LCRS"));
        FAIL() << "has a diagram";
    } catch (const std::out_of_range& refused) {
        EXPECT_STREQ(refused.what(), "invalid unordered_map<K, T> key");
    }
}

} // namespace
