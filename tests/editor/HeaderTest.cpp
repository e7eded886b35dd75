#include "tests/editor/EditorTools.h"

namespace
{
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

TEST_F(HeaderTest, everyButtonCanBeReachedAndReadOut)
{
    juce::StringArray titles;
    juce::RectangleList<int> taken;
    for (auto* child : header.getChildren())
    {
        EXPECT_TRUE(header.getLocalBounds().contains(child->getBounds().withTop(0))) << child->getName();
        EXPECT_FALSE(taken.intersectsRectangle(child->getBounds())) << child->getName();
        taken.add(child->getBounds());
        EXPECT_TRUE(juce::CharacterFunctions::isLetter(child->getTitle()[0])) << child->getName();
        EXPECT_FALSE(child->getMouseClickGrabsKeyboardFocus()) << "the keyboard is the host's";
        EXPECT_TRUE(child->getWantsKeyboardFocus()) << "the tab key gets there";
        titles.addIfNotAlreadyThere(child->getTitle());
    }
    EXPECT_EQ(titles.size(), 10);
}

TEST_F(HeaderTest, comparisonSwitchesAndCopiesTheSettings)
{
    auto& a = button("aSettingsButton");
    auto& b = button("bSettingsButton");
    auto& copy = button("copyButton");
    const auto expect = [&](float value, bool isOnA, const char* what)
    {
        EXPECT_EQ(processor.getParameter(0), value) << what;
        EXPECT_EQ(a.getToggleState(), isOnA) << what;
        EXPECT_EQ(b.getToggleState(), !isOnA) << what;
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
