#include "editor/AboutDialog.h"
#include "editor/themes/DarkTheme.h"
#include "editor/themes/SteelTheme.h"
#include "tests/editor/EditorTools.h"

namespace
{
struct MenuListener : public PlugInEditorHeader::Listener
{
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

    juce::Button& button(const juce::String& name) { return findChild<juce::Button>(header, name); }

    AmbrelWithPresets processor;
    BasePluginEditor editor;
    PlugInEditorHeader header;
};
} // namespace

TEST_F(HeaderTest, layoutFollowsWidthTitleAndOffset)
{
    struct Row
    {
        const char* name;
        int fromRight, width;
    };
    const Row rows[] = {{"nextPresetButton", 216, 24}, {"undoButton", 176, 24}, {"redoButton", 152, 24},
                        {"aSettingsButton", 120, 24},  {"copyButton", 96, 24},  {"bSettingsButton", 72, 24},
                        {"menuButton", 40, 32}};
    const int title = static_cast<int>(juce::Font(24.0f, juce::Font::bold).getStringWidthFloat("Ambrel"));
    using Rectangle = juce::Rectangle<int>;
    for (const int width : {640, 900})
        for (const int offset : {0, 25})
        {
            header.enablePresets(true, offset);
            header.setSize(width - 1, 56);
            header.setSize(width, 56);
            for (const auto& row : rows)
                EXPECT_EQ(button(row.name).getBounds(), Rectangle(width - row.fromRight, 8, row.width, 24))
                    << row.name << " in " << width;

            const int left = title + offset + 152;
            EXPECT_EQ(button("logoButton").getBounds(), Rectangle(8, -1, 83, 42));
            EXPECT_EQ(button("previousPresetButton").getBounds(), Rectangle(left, 8, 24, 24));
            EXPECT_EQ(button("currentPresetButton").getBounds(),
                      Rectangle::leftTopRightBottom(left + 24, 8, width - 216, 32));
        }

    juce::LookAndFeel_V4 plain;
    header.enablePresets(false, 0);
    header.setLookAndFeel(&plain);
    EXPECT_EQ(button("previousPresetButton").getX(), 272) << "without a theme the title counts as 120 wide";
    EXPECT_FALSE(button("currentPresetButton").isVisible());
    const auto picture = header.createComponentSnapshot(header.getLocalBounds());
    EXPECT_EQ(picture.getPixelAt(150, 20), juce::Colours::white);
    header.setLookAndFeel(nullptr);
}

TEST_F(HeaderTest, everyButtonCanBeReachedAndReadOut)
{
    juce::StringArray titles;
    for (auto* child : header.getChildren())
    {
        EXPECT_TRUE(juce::CharacterFunctions::isLetter(child->getTitle()[0])) << child->getName();
        EXPECT_FALSE(child->getMouseClickGrabsKeyboardFocus()) << "the keyboard is the host's";
        EXPECT_TRUE(child->getWantsKeyboardFocus()) << "the tab key gets there";
        titles.addIfNotAlreadyThere(child->getTitle());
    }
    EXPECT_EQ(titles.size(), 10);

    bool onItself = true, onChildren = false;
    header.getInterceptsMouseClicks(onItself, onChildren);
    EXPECT_TRUE(!onItself && onChildren);
}

TEST_F(HeaderTest, menuHasCommandsHelpThemesAndAbout)
{
    header.setAdditionalCommand(16385, "Second", false, true);
    header.setAdditionalCommand(16384, "Replaced", true, false);
    header.setAdditionalCommand(16384, "First", true, false);
    EXPECT_EQ(describe(header.getPlugInMenu()), "16384 First\n"
                                                "16385 Second [x] [-]\n"
                                                "----\n"
                                                "8194 Help...\n"
                                                "----\n"
                                                "[>] Themes\n"
                                                "  8224 Simplistic dark [x]\n"
                                                "  8225 Brushed steel\n"
                                                "8193 About Veskora Ambrel...\n");

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
    auto& a = button("aSettingsButton");
    auto& b = button("bSettingsButton");
    auto& copy = button("copyButton");
    const auto arrow = [&]
    {
        copy.setState(juce::Button::buttonNormal); // a click flashes for a moment
        return copy.createComponentSnapshot(copy.getLocalBounds());
    };
    const auto arrowOfA = arrow();
    const auto expect = [&](float value, bool isOnA, const char* what)
    {
        EXPECT_EQ(processor.getParameter(0), value) << what;
        EXPECT_EQ(a.getToggleState(), isOnA) << what;
        EXPECT_EQ(b.getToggleState(), !isOnA) << what;
        EXPECT_EQ(differences(arrow(), arrowOfA).isEmpty(), isOnA) << what;
    };

    processor.setParameter(0, 0.25f);
    click(copy);
    processor.setParameter(0, 0.5f);
    click(a);
    expect(0.5f, true, "A is on already");
    click(b);
    expect(0.25f, false, "B");
    click(b);
    expect(0.25f, false, "B is on already");
    click(a);
    expect(0.5f, true, "A again");
    click(copy);
    expect(0.5f, true, "A copied");
    click(b);
    expect(0.5f, false, "B, now a copy of A");
    EXPECT_TRUE(processor.undoStates.empty());
}

TEST_F(HeaderTest, buttonsUndoRedoAndStepThroughThePresets)
{
    auto& next = button("nextPresetButton");
    auto& previous = button("previousPresetButton");
    click(next);
    EXPECT_TRUE(processor.undoStates.empty()) << "no presets, no step";

    processor.addPreset("One", {{2, 1.0}});
    click(next);
    EXPECT_EQ(processor.getCurrentProgram(), 0) << "the only one, again";
    processor.addPreset("Three", {{2, 3.0}});
    processor.addPreset("Two", {{2, 2.0}});

    std::vector<int> visited;
    for (auto* pressed : {&previous, &previous, &next, &next, &next})
    {
        click(*pressed);
        visited.push_back(processor.getCurrentProgram());
    }
    EXPECT_EQ(visited, (std::vector<int>{2, 1, 2, 0, 1}));

    const auto last = processor.engineValue(2);
    click(button("undoButton"));
    EXPECT_NE(processor.engineValue(2), last);
    click(button("redoButton"));
    EXPECT_EQ(processor.engineValue(2), last);
}

TEST_F(HeaderTest, themeComesFromTheSettingsAndTheMenuAndIsWrittenBack)
{
    const auto expect = [&](const juce::Component& component, bool isSteel, int stored)
    {
        EXPECT_EQ(dynamic_cast<SteelTheme*>(&component.getLookAndFeel()) != nullptr, isSteel) << stored;
        EXPECT_EQ(dynamic_cast<DarkTheme*>(&component.getLookAndFeel()) != nullptr, !isSteel) << stored;
        EXPECT_EQ(processor.settings->getIntValue("ThemeId", 99), stored);
    };
    for (const int stored : {0, 1, 2, -7})
    {
        processor.settings->setValue("ThemeId", stored);
        expect(BasePluginEditor(&processor), stored == 1, stored);
    }

    PlugInEditorHeader::plugInMenuCallback(8225, &header);
    expect(header, true, 1);
    EXPECT_TRUE(describe(header.getPlugInMenu()).contains("8225 Brushed steel [x]"));
    PlugInEditorHeader::plugInMenuCallback(8224, &header);
    expect(header, false, 0);
}

TEST_F(HeaderTest, presetMenuShowsFoldersAndPresets)
{
    processor.factory.write("Hall.xml");
    processor.factory.write("Rooms/Small.xml");
    processor.user.write("Mine.xml");
    editor.updatePresetMenu();
    EXPECT_EQ(describe(editor.getPresetMenu()), "[#] Factory presets\n"
                                                "[>] Rooms\n"
                                                "  8449 Small\n"
                                                "8448 Hall\n"
                                                "[#] User presets\n"
                                                "8450 Mine\n"
                                                "[#] Saving & loading\n"
                                                "8208 Save user preset file...\n"
                                                "8209 Load user preset file...\n");
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
