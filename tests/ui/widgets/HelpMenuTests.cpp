// SPDX-License-Identifier: GPL-3.0-or-later
// Needs a display, real or not: the framework asks it where a menu may lie.
#include "ui/toolbar/BrevikTool.h"
#include "ui/widgets/OffScreen.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>

namespace {

class Framework final : public ::testing::Environment {
public:
    void SetUp() override { framework = std::make_unique<juce::ScopedJuceInitialiser_GUI>(); }
    void TearDown() override { framework.reset(); }

private:
    std::unique_ptr<juce::ScopedJuceInitialiser_GUI> framework;
};
const auto* const framework = ::testing::AddGlobalTestEnvironment(new Framework); // owned by the test library

int openMenus() { return juce::ModalComponentManager::getInstance()->getNumModalComponents(); }

class HelpMenu : public ::testing::Test {
protected:
    HelpMenu() {
        editor->setBounds(0, 0, 1080, 636);
        tool->attach(*editor, {}, {}, {});
        for (auto* const candidate : toolbar().getChildren())
            if (auto* const link = dynamic_cast<juce::HyperlinkButton*>(candidate)) {
                link->setURL(juce::URL()); // no browser from a test
                link->addListener(&clicks);
            }
    }
    void TearDown() override { juce::MessageManager::getInstance()->runDispatchLoopUntil(20); }

    BrevikPluginTools::LorimondToolbarComponent& toolbar() {
        return test::child<BrevikPluginTools::LorimondToolbarComponent>(*editor, {});
    }

    /// Clicks on help, does something while the menu is open, and returns when the click does.
    void openAnd(const std::function<void()>& action) {
        int open = -1;
        juce::MessageManager::callAsync([&] {
            open = openMenus();
            action();
        });
        auto& bar = toolbar();
        bar.buttonClicked(&test::child<juce::ImageButton>(bar, "LorimondHelp"));
        EXPECT_EQ(open, 1);
        juce::MessageManager::getInstance()->runDispatchLoopUntil(20);
        EXPECT_EQ(openMenus(), 0);
    }

    std::unique_ptr<BrevikPluginTools::BrevikTool> tool =
        std::make_unique<BrevikPluginTools::BrevikTool>("No Such Product");
    std::unique_ptr<juce::Component> editor = std::make_unique<juce::Component>();
    test::Clicks clicks;
};

void choose(int entry) {
    juce::ModalComponentManager::getInstance()->getModalComponent(0)->exitModalState(entry);
}

TEST_F(HelpMenu, LeavesEverythingAsItWasWhenItIsDismissed) {
    const auto bounds = editor->getBounds();
    const int children = editor->getNumChildComponents();
    openAnd([] { juce::PopupMenu::dismissAllActiveMenus(); });
    EXPECT_TRUE(clicks.names.isEmpty());
    EXPECT_EQ(editor->getBounds(), bounds);
    EXPECT_EQ(editor->getNumChildComponents(), children);
}

TEST_F(HelpMenu, OpensTheSellersMakersProductsAndDownloadPages) {
    const std::pair<int, const char*> entries[]{
        {2, "OrvaneProductInfo"}, {3, "OrvaneDownloadUpdates"}, {4, "lorimond"}, {5, "Orvane"}};
    for (const auto& [entry, name] : entries) {
        clicks.names.clear();
        openAnd([entry = entry] { choose(entry); });
        EXPECT_EQ(clicks.names, juce::StringArray(name)) << entry;
    }
}

TEST_F(HelpMenu, SaysNothingAboutAMissingManual) {
    openAnd([] { choose(1); });
    EXPECT_TRUE(clicks.names.isEmpty());
}

TEST_F(HelpMenu, LiesInsideTheEditor) {
    juce::Rectangle<int> area;
    openAnd([&] {
        auto* const menu = juce::ModalComponentManager::getInstance()->getModalComponent(0);
        EXPECT_EQ(menu->getParentComponent(), editor.get());
        area = menu->getBounds();
        juce::PopupMenu::dismissAllActiveMenus();
    });
    EXPECT_FALSE(area.isEmpty());
    EXPECT_TRUE(editor->getLocalBounds().contains(area)) << area.toString();
}

TEST_F(HelpMenu, ClosesWithAnEditorThatIsDeletedUnderIt) {
    openAnd([&] { editor.reset(); });
}

TEST_F(HelpMenu, ClosesWithAToolbarThatIsDeletedUnderIt) {
    openAnd([&] { tool.reset(); });
    EXPECT_EQ(editor->getNumChildComponents(), 0);
}

TEST_F(HelpMenu, SurvivesTheEditorsDeathAfterAChoiceThatIsNotYetActedOn) {
    openAnd([&] {
        choose(2);
        editor.reset();
    });
}

} // namespace
