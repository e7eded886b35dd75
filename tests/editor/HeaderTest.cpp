#include "editor/AboutDialog.h"
#include "editor/themes/DarkTheme.h"
#include "editor/themes/SteelTheme.h"
#include "tests/editor/EditorTools.h"

#include <map>

namespace
{
class MenuListener : public PlugInEditorHeader::Listener
{
public:
    MenuListener(juce::String& sharedLog, juce::String ownName) : log(sharedLog), name(std::move(ownName)) {}

    void menuCommand(int id) override
    {
        log << name << id << " ";
        if (leaves != nullptr)
            leaves->removeListener(this);
    }

    juce::String& log;
    juce::String name;
    PlugInEditorHeader* leaves = nullptr;
};

/** A framework editor with a header, as any product could have it. */
class HeaderTest : public ::testing::Test
{
protected:
    HeaderTest() : editor(&processor)
    {
        editor.addAndMakeVisible(header);
        header.attach(&editor, &processor);
        header.setSize(640, 56);
    }

    juce::Rectangle<int> boundsOf(const juce::String& name)
    {
        return findChild<juce::Component>(header, name).getBounds();
    }

    AmbrelWithPresets processor;
    BasePluginEditor editor;
    PlugInEditorHeader header;
};
} // namespace

TEST_F(HeaderTest, layoutFollowsWidthTitleAndOffset)
{
    for (const int width : {640, 900})
        for (const int offset : {0, 25})
        {
            header.enablePresets(true, offset);
            header.setSize(width - 1, 56);
            header.setSize(width, 56);
            const int title =
                static_cast<int>(juce::Font(24.0f, juce::Font::bold).getStringWidthFloat("Ambrel"));
            const std::map<juce::String, juce::Rectangle<int>> expected{
                {"logoButton", {8, -1, 83, 42}},
                {"previousPresetButton", {title + offset + 152, 8, 24, 24}},
                {"currentPresetButton", {title + offset + 176, 8, width - 392 - title - offset, 24}},
                {"nextPresetButton", {width - 216, 8, 24, 24}},
                {"undoButton", {width - 176, 8, 24, 24}},
                {"redoButton", {width - 152, 8, 24, 24}},
                {"aSettingsButton", {width - 120, 8, 24, 24}},
                {"copyButton", {width - 96, 8, 24, 24}},
                {"bSettingsButton", {width - 72, 8, 24, 24}},
                {"menuButton", {width - 40, 8, 32, 24}}};
            for (const auto& [name, bounds] : expected)
                EXPECT_EQ(boundsOf(name), bounds) << name << " " << boundsOf(name).toString();
            EXPECT_EQ(boundsOf("currentPresetButton").getRight(), boundsOf("nextPresetButton").getX());
        }

    juce::LookAndFeel_V4 plain;
    header.enablePresets(false, 0);
    header.setLookAndFeel(&plain);
    EXPECT_EQ(boundsOf("previousPresetButton").getX(), 272) << "without a theme the title counts as 120 wide";
    EXPECT_FALSE(findChild<juce::Component>(header, "currentPresetButton").isVisible());
    const auto picture = header.createComponentSnapshot(header.getLocalBounds());
    EXPECT_EQ(picture.getPixelAt(150, 20), juce::Colours::white);
    header.setLookAndFeel(nullptr);
}

TEST_F(HeaderTest, everyButtonHasATooltipAndANameThatCanBeRead)
{
    int buttons = 0;
    juce::StringArray titles;
    for (auto* child : header.getChildren())
    {
        auto* button = dynamic_cast<juce::Button*>(child);
        ASSERT_NE(button, nullptr);
        ++buttons;
        EXPECT_TRUE(button->getTooltip().isNotEmpty()) << button->getName();
        EXPECT_TRUE(juce::CharacterFunctions::isLetter(button->getTitle()[0])) << button->getName();
        EXPECT_FALSE(button->getMouseClickGrabsKeyboardFocus()) << "the keyboard is the host's";
        EXPECT_TRUE(button->getWantsKeyboardFocus()) << "the tab key gets there";
        titles.addIfNotAlreadyThere(button->getTitle());
    }
    EXPECT_EQ(buttons, 10);
    EXPECT_EQ(titles.size(), 10);

    bool onItself = true, onChildren = false;
    header.getInterceptsMouseClicks(onItself, onChildren);
    EXPECT_FALSE(onItself);
    EXPECT_TRUE(onChildren);
}

TEST_F(HeaderTest, menuHasCommandsHelpThemesAndAbout)
{
    EXPECT_EQ(describe(header.getPlugInMenu()), "8194 Help...\n"
                                                "----\n"
                                                "[>] Themes\n"
                                                "  8224 Simplistic dark [x]\n"
                                                "  8225 Brushed steel\n"
                                                "8193 About Veskora Ambrel...\n");

    header.themesEnabled = false;
    header.setAdditionalCommand(16385, "Second", false, true);
    header.setAdditionalCommand(16384, "Replaced", true, false);
    header.setAdditionalCommand(16384, "First", true, false);
    header.enableHelp(false);
    EXPECT_EQ(describe(header.getPlugInMenu()).replace("----\n----\n", "----\n"),
              "16384 First\n"
              "16385 Second [x] [-]\n"
              "----\n"
              "8193 About Veskora Ambrel...\n");
}

TEST_F(HeaderTest, themeCommandsChangeTheEditorAndItsSettings)
{
    PlugInEditorHeader::plugInMenuCallback(8225, &header);
    EXPECT_NE(dynamic_cast<SteelTheme*>(&editor.getLookAndFeel()), nullptr);
    EXPECT_EQ(processor.settings->getIntValue("ThemeId"), 1);
    EXPECT_TRUE(describe(header.getPlugInMenu()).contains("8225 Brushed steel [x]"));
    EXPECT_NE(dynamic_cast<SteelTheme*>(&header.getLookAndFeel()), nullptr);

    PlugInEditorHeader::plugInMenuCallback(8224, &header);
    EXPECT_NE(dynamic_cast<DarkTheme*>(&header.getLookAndFeel()), nullptr);
    EXPECT_EQ(processor.settings->getIntValue("ThemeId"), 0);
}

TEST_F(HeaderTest, unknownCommandsReachTheListenersLastFirst)
{
    juce::String log;
    MenuListener first(log, "first"), second(log, "second"), third(log, "third");
    second.leaves = &header;
    for (auto* listener : {&first, &second, &third, &first})
        header.addListener(listener);
    header.addListener(nullptr);

    PlugInEditorHeader::plugInMenuCallback(16384, &header);
    PlugInEditorHeader::plugInMenuCallback(0, &header);
    PlugInEditorHeader::plugInMenuCallback(16384, nullptr);
    EXPECT_EQ(log, "third16384 second16384 first16384 third0 first0 ");
}

TEST_F(HeaderTest, comparisonSwitchesTheSettingsOnceAndShowsTheCopysDirection)
{
    auto& a = findChild<juce::Button>(header, "aSettingsButton");
    auto& b = findChild<juce::Button>(header, "bSettingsButton");
    auto& copy = findChild<juce::Button>(header, "copyButton");
    const auto arrow = [&]
    {
        copy.setState(juce::Button::buttonNormal); // a click flashes for a moment
        return copy.createComponentSnapshot(copy.getLocalBounds());
    };
    const auto arrowOnA = arrow();
    const auto isArrowOfA = [&]
    {
        const auto now = arrow();
        bool isSame = true;
        forEachPixel(now, now.getBounds(),
                     [&](int x, int y, juce::Colour colour)
                     { isSame = isSame && colour == arrowOnA.getPixelAt(x, y); });
        return isSame;
    };

    processor.setParameter(0, 0.25f);
    click(copy);
    processor.setParameter(0, 0.5f);
    click(a);
    EXPECT_EQ(processor.getParameter(0), 0.5f) << "A is on already";

    click(b);
    EXPECT_EQ(processor.getParameter(0), 0.25f);
    EXPECT_FALSE(a.getToggleState());
    EXPECT_TRUE(b.getToggleState());
    EXPECT_FALSE(isArrowOfA());
    click(b);
    EXPECT_EQ(processor.getParameter(0), 0.25f);

    click(a);
    EXPECT_EQ(processor.getParameter(0), 0.5f);
    EXPECT_TRUE(isArrowOfA());

    click(copy);
    EXPECT_TRUE(isArrowOfA());
    click(b);
    EXPECT_EQ(processor.getParameter(0), 0.5f) << "copied";
    EXPECT_TRUE(processor.undoStates.empty());
}

TEST_F(HeaderTest, buttonsUndoRedoAndStepThroughThePresets)
{
    auto& next = findChild<juce::Button>(header, "nextPresetButton");
    auto& previous = findChild<juce::Button>(header, "previousPresetButton");
    click(next);
    EXPECT_TRUE(processor.undoStates.empty()) << "no presets, no step";

    processor.addPreset("One", {{2, 1.0}});
    click(next);
    EXPECT_EQ(processor.getCurrentProgram(), 0) << "the only one, again";
    processor.addPreset("Three", {{2, 3.0}});
    processor.addPreset("Two", {{2, 2.0}});

    std::vector<int> visited;
    for (auto* button : {&previous, &previous, &next, &next, &next})
    {
        click(*button);
        visited.push_back(processor.getCurrentProgram());
    }
    EXPECT_EQ(visited, (std::vector<int>{2, 1, 2, 0, 1}));

    const auto last = processor.engineValue(2);
    click(findChild<juce::Button>(header, "undoButton"));
    EXPECT_NE(processor.engineValue(2), last);
    click(findChild<juce::Button>(header, "redoButton"));
    EXPECT_EQ(processor.engineValue(2), last);

    header.updatePresetName();
    EXPECT_EQ(findChild<juce::Button>(header, "currentPresetButton").getButtonText(),
              processor.getCurrentPresetName());
}

TEST(BaseEditorTest, themeComesFromTheSettingsAndIsWrittenBack)
{
    AmbrelWithPresets processor;
    for (const auto& [stored, isSteel] : std::map<int, bool>{{0, false}, {1, true}, {2, false}, {-7, false}})
    {
        processor.settings->setValue("ThemeId", stored);
        const BasePluginEditor editor(&processor);
        EXPECT_EQ(dynamic_cast<SteelTheme*>(&editor.getLookAndFeel()) != nullptr, isSteel) << stored;
        EXPECT_EQ(dynamic_cast<DarkTheme*>(&editor.getLookAndFeel()) != nullptr, !isSteel) << stored;
        EXPECT_EQ(processor.settings->getIntValue("ThemeId", 99), stored);
    }
}

TEST(BaseEditorTest, presetMenuShowsFoldersAndPresets)
{
    AmbrelWithPresets processor;
    BasePluginEditor editor(&processor);
    const juce::String tail = "[#] Saving & loading\n"
                              "8208 Save user preset file...\n"
                              "8209 Load user preset file...\n";
    EXPECT_EQ(describe(editor.getPresetMenu()), "[#] Factory presets\n[#] User presets\n" + tail);

    processor.factory.write("Hall.xml");
    processor.factory.write("Rooms/Small.xml");
    processor.user.write("Mine.xml");
    editor.updatePresetMenu();
    EXPECT_EQ(describe(editor.getPresetMenu()), "[#] Factory presets\n"
                                                "[>] Rooms\n"
                                                "  8449 Small\n"
                                                "8448 Hall\n"
                                                "[#] User presets\n"
                                                "8450 Mine\n" +
                                                    tail);

    juce::PopupMenu menu;
    editor.loadPresetEntries(
        menu, juce::ValueTree("Root", {}, {juce::ValueTree("Other", {{"Name", "No preset"}})}));
    EXPECT_EQ(describe(menu), "");
}

TEST(AboutDialogTest, showsNameAndVersionAndGoesAtOk)
{
    AboutDialog about;
    about.setPlugInName("Ambrel");
    juce::Component window;
    window.addAndMakeVisible(about);
    EXPECT_EQ(about.getBounds(), juce::Rectangle<int>(400, 240));

    juce::String texts;
    for (auto* child : about.getChildren())
        if (const auto* label = dynamic_cast<juce::Label*>(child))
            texts << "|" << label->getText().upToFirstOccurrenceOf("\n", false, false);
    EXPECT_EQ(texts, "|Version " AMBREL_VERSION "|Copyright Veskora. Free software under|Veskora|Ambrel");

    const auto picture = about.createComponentSnapshot(about.getLocalBounds());
    EXPECT_EQ(picture.getPixelAt(2, 2), juce::Colours::white);
    EXPECT_GT(count(picture, {13, 64, 200, 46}, isDark), 200) << "the product's name";
    EXPECT_EQ(count(picture, {13, 110, 371, 2}, isDark), 0) << "cut at its foot";

    click(findChild<juce::Button>(about, "okButton"));
    EXPECT_FALSE(window.isVisible());
}
