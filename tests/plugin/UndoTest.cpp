#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

namespace
{
class UndoTest : public ::testing::Test
{
protected:
    void set(float value) { plugIn.engine.values[0] = value; }
    float get() const { return plugIn.engine.values[0]; }
    void expectLists(std::size_t undoCount, std::size_t redoCount) const
    {
        EXPECT_EQ(plugIn.undoStates.size(), undoCount);
        EXPECT_EQ(plugIn.redoStates.size(), redoCount);
    }

    TestPlugIn plugIn;
};
} // namespace

TEST_F(UndoTest, GoesBackAndForth)
{
    plugIn.setCurrentPresetName("first");
    for (const float value : {1.0f, 2.0f, 3.0f})
    {
        set(value);
        plugIn.addUndoState();
    }
    set(4.0f);
    plugIn.setCurrentPresetName("last");
    plugIn.engine.values[3] = 5.0f;

    CountingListener listener;
    plugIn.addListener(&listener);
    for (const float value : {3.0f, 2.0f, 1.0f, 1.0f})
    {
        plugIn.undo();
        EXPECT_EQ(get(), value);
    }
    expectLists(0, 3);
    EXPECT_EQ(listener.heard, (std::vector<int>{-1, -1, -1}));
    EXPECT_EQ(plugIn.getCurrentPresetName(), "first");
    EXPECT_EQ(plugIn.engine.values[3], 5.0f) << "hidden parameters are not undone";

    for (const float value : {2.0f, 3.0f, 4.0f, 4.0f})
    {
        plugIn.redo();
        EXPECT_EQ(get(), value);
    }
    expectLists(3, 0);
    EXPECT_EQ(plugIn.getCurrentPresetName(), "last");

    plugIn.undo();
    plugIn.addUndoState();
    expectLists(3, 0);
    plugIn.removeListener(&listener);
}

TEST_F(UndoTest, SwitchingTwiceReturnsToTheStart)
{
    set(1.0f);
    plugIn.switchToAlternateSettings();
    EXPECT_EQ(get(), 1.0f) << "the empty slot changes nothing, and is filled";
    EXPECT_GT(plugIn.alternateSettings.getSize(), 0u);

    set(2.0f);
    plugIn.switchToAlternateSettings();
    EXPECT_EQ(get(), 1.0f);
    plugIn.switchToAlternateSettings();
    EXPECT_EQ(get(), 2.0f);

    plugIn.copyToAlternate();
    plugIn.switchToAlternateSettings();
    EXPECT_EQ(get(), 2.0f);
    expectLists(0, 0);
}
