#include "tests/editor/WindowTest.h"

using HeaderTest = WindowTest;

TEST_F(HeaderTest, comparisonSwitchesAndCopiesTheSettings)
{
    auto& a = findChild<juce::Button>(*header, "aSettingsButton");
    auto& b = findChild<juce::Button>(*header, "bSettingsButton");
    auto& copy = findChild<juce::Button>(*header, "copyButton");
    const auto press = [&](juce::Button& button, float value, bool isOnA, const char* what)
    {
        click(button);
        EXPECT_EQ(processor.getParameter(0), value) << what;
        EXPECT_EQ(a.getToggleState(), isOnA) << what;
        EXPECT_EQ(b.getToggleState(), !isOnA) << what;
    };

    processor.setParameter(0, 0.25f);
    press(copy, 0.25f, true, "A copied");
    processor.setParameter(0, 0.5f);
    press(a, 0.5f, true, "A is on already");
    press(b, 0.25f, false, "B");
    press(b, 0.25f, false, "B is on already");
    press(a, 0.5f, true, "A again");
    press(copy, 0.5f, true, "A copied again");
    press(b, 0.5f, false, "B, now a copy of A");
    EXPECT_TRUE(processor.undoStates.empty());
}

TEST_F(HeaderTest, buttonsUndoRedoAndStepThroughThePresets)
{
    pressHeader("nextPresetButton");
    EXPECT_TRUE(processor.undoStates.empty()) << "no presets, no step";

    processor.addPreset("One", {{2, 1.0}});
    pressHeader("nextPresetButton");
    EXPECT_EQ(processor.getCurrentProgram(), 0) << "the only one, again";
    processor.addPreset("Three", {{2, 3.0}});
    processor.addPreset("Two", {{2, 2.0}});

    std::vector<int> visited;
    for (const auto* step : {"previous", "previous", "next", "next", "next"})
    {
        pressHeader(step + juce::String("PresetButton"));
        visited.push_back(processor.getCurrentProgram());
    }
    EXPECT_EQ(visited, (std::vector<int>{2, 1, 2, 0, 1}));

    const auto last = processor.engineValue(2);
    pressHeader("undoButton");
    EXPECT_NE(processor.engineValue(2), last);
    pressHeader("redoButton");
    EXPECT_EQ(processor.engineValue(2), last);
}
