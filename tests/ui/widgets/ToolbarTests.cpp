// SPDX-License-Identifier: GPL-3.0-or-later
#include "Resources.h"
#include "ui/toolbar/BrevikTool.h"
#include "ui/toolbar/Manual.h"
#include "ui/toolbar/WebAddresses.h"
#include "ui/widgets/OffScreen.h"

#include <gmock/gmock.h>

#include <memory>

namespace {

using BrevikPluginTools::BrevikTool;
using BrevikPluginTools::LorimondToolbarComponent;

class Toolbar : public ::testing::Test {
protected:
    Toolbar() {
        editor->setBounds(0, 0, 1080, 636);
        tool->attach(*editor, "https://a.example.org/", "https://b.example.org/",
                     "https://c.example.org/?d=e&f=g");
    }
    LorimondToolbarComponent& toolbar() { return test::child<LorimondToolbarComponent>(*editor); }
    juce::HyperlinkButton& link(const char* name) {
        return test::child<juce::HyperlinkButton>(toolbar(), name);
    }

    std::unique_ptr<BrevikTool> tool = std::make_unique<BrevikTool>("Orvane KESTRUM");
    std::unique_ptr<juce::Component> editor = std::make_unique<juce::Component>();
};

TEST_F(Toolbar, LiesBelowTheViewAndMakesTheEditorHigher) {
    EXPECT_EQ(editor->getBounds(), juce::Rectangle<int>(0, 0, 1080, 660));
    EXPECT_EQ(toolbar().getBounds(), juce::Rectangle<int>(0, 636, 1080, 24));
    EXPECT_TRUE(toolbar().isVisible());
}

TEST_F(Toolbar, HasTheLogoAtTheLeftAndHelpAtTheRight) {
    EXPECT_EQ(test::child<juce::ImageButton>(toolbar(), "LorimondLogo").getBounds(),
              juce::Rectangle<int>(0, 0, 120, 24));
    auto& help = test::child<juce::ImageButton>(toolbar(), "LorimondHelp");
    EXPECT_EQ(help.getBounds(), juce::Rectangle<int>(1056, 0, 24, 24));
    toolbar().setSize(10, 24);
    EXPECT_EQ(help.getX(), 0);
}

TEST_F(Toolbar, KeepsItsLinksOutOfSightWithTheirAddressesAsTooltips) {
    const std::pair<const char*, const char*> links[]{{"lorimond", BrevikPluginTools::web::seller},
                                                      {"OrvaneProductInfo", "https://a.example.org/"},
                                                      {"OrvaneDownloadUpdates", "https://b.example.org/"},
                                                      {"Orvane", "https://c.example.org/?d=e&f=g"}};
    for (const auto& [name, address] : links) {
        EXPECT_FALSE(link(name).isVisible()) << name;
        EXPECT_EQ(link(name).getURL().toString(true), address);
        EXPECT_EQ(link(name).getTooltip(), address);
    }
}

TEST_F(Toolbar, IsBlackUnderTheLogoAndTheHelpButton) {
    juce::Image expected(juce::Image::ARGB, 1080, 24, true);
    juce::Graphics g(expected);
    g.fillAll(juce::Colours::black);
    g.drawImage(test::decoded(resources::toolbar_logo_png, resources::toolbar_logo_pngSize), {0, 0, 120, 24});
    g.drawImage(test::decoded(resources::toolbar_help_png, resources::toolbar_help_pngSize),
                {1056, 0, 24, 24});
    EXPECT_TRUE(test::samePixels(test::shot(toolbar()), expected));
}

TEST_F(Toolbar, ShowsPressedPicturesWhileItsButtonsArePressed) {
    auto& logo = test::child<juce::ImageButton>(toolbar(), "LorimondLogo");
    juce::Image expected(juce::Image::ARGB, 120, 24, true);
    juce::Graphics g(expected);
    g.drawImage(test::decoded(resources::toolbar_logo_down_png, resources::toolbar_logo_down_pngSize),
                {0, 0, 120, 24});
    logo.setState(juce::Button::buttonDown);
    EXPECT_TRUE(test::samePixels(test::shot(logo), expected));
}

TEST_F(Toolbar, ClicksTheSellersLinkForTheLogo) {
    test::Clicks clicks;
    auto& seller = link("lorimond");
    seller.setURL(juce::URL()); // no browser from a test
    seller.addListener(&clicks);
    toolbar().buttonClicked(&test::child<juce::ImageButton>(toolbar(), "LorimondLogo"));
    juce::MessageManager::getInstance()->runDispatchLoopUntil(20); // clicks from code are posted
    EXPECT_EQ(clicks.names, juce::StringArray("lorimond"));
    seller.removeListener(&clicks);
}

TEST_F(Toolbar, DiesWithItsEditor) {
    juce::Component::SafePointer<LorimondToolbarComponent> alive(&toolbar());
    editor.reset();
    EXPECT_EQ(alive.getComponent(), nullptr);
}

TEST_F(Toolbar, DiesWithTheToolThatMadeIt) {
    tool.reset();
    EXPECT_EQ(editor->getNumChildComponents(), 0);
}

TEST_F(Toolbar, IsOneForEachEditor) {
    juce::Component second;
    second.setBounds(0, 0, 500, 100);
    tool->attach(second, {}, {}, {});
    EXPECT_NE(&test::child<LorimondToolbarComponent>(second), &toolbar());
    EXPECT_EQ(second.getHeight(), 124);
}

TEST(WebAddresses, HaveTheirForms) {
    using namespace BrevikPluginTools::web;
    EXPECT_THAT(seller, ::testing::EndsWith(".example.org/"));
    EXPECT_THAT(productInfo, ::testing::EndsWith("/plugins/orvane_kestrum"));
    EXPECT_THAT(downloads, ::testing::EndsWith("/downloads/orvane_kestrum"));
    EXPECT_THAT(maker,
                ::testing::EndsWith(".example.org/?utm_campaign=orvane-products&utm_source=orvane-kestrum"
                                    "&utm_medium=plugin&utm_content=banner"));
}

TEST(Manual, LiesUnderTheProductsNameTwiceOnceAsFolderAndOnceInItsOwn) {
    EXPECT_EQ(BrevikPluginTools::manualFile(juce::File("/programs"), "Orvane KESTRUM").getFullPathName(),
              "/programs/Lorimond/Orvane KESTRUM/Orvane KESTRUM Manual.pdf");
}

#if JUCE_LINUX
TEST(Manual, IsLookedForWhereProgramsKeepWhatTheyShare) {
    EXPECT_EQ(BrevikPluginTools::programsDirectory().getFullPathName(), "/usr/share");
}

/// The desktop's opener is a stand-in that notes what it is to open.
TEST(Manual, IsOpenedByTheDesktop) {
    const juce::TemporaryFile folder;
    const auto& place = folder.getFile();
    ASSERT_TRUE(place.createDirectory());
    const auto manual = place.getChildFile("The Product Manual.pdf");
    const auto noted = place.getChildFile("noted");
    const auto opener = place.getChildFile("xdg-open");
    const auto part = noted.getFullPathName() + ".part";
    const juce::String script =
        "#!/bin/sh\nprintf %s \"$1\" > " + part + "\nmv " + part + " " + noted.getFullPathName() + "\n";
    ASSERT_TRUE(manual.create());
    ASSERT_TRUE(opener.replaceWithText(script, false, false, "\n"));
    ASSERT_TRUE(opener.setExecutePermission(true));
    const juce::String path = juce::SystemStats::getEnvironmentVariable("PATH", {});
    setenv("PATH", (place.getFullPathName() + ":" + path).toRawUTF8(), 1);
    BrevikPluginTools::openManual(manual);
    for (const auto end = juce::Time::getMillisecondCounter() + 10000;
         !noted.existsAsFile() && juce::Time::getMillisecondCounter() < end;)
        juce::Thread::sleep(5);
    setenv("PATH", path.toRawUTF8(), 1);
    EXPECT_EQ(noted.loadFileAsString(), manual.getFullPathName());
    place.deleteRecursively();
}
#endif

TEST(Manual, IsNotMissedAloud) {
    BrevikPluginTools::openManual(juce::File("/nowhere/at/all.pdf"));
    EXPECT_EQ(juce::ModalComponentManager::getInstance()->getNumModalComponents(), 0); // no message
}

} // namespace
