#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

TEST(UndoTest, GoesBackAndForth)
{
    TestPlugIn plugIn;
    auto& values = plugIn.engine.values;
    plugIn.setCurrentPresetName("first");
    for (const float value : {1.0f, 2.0f, 3.0f})
    {
        values[0] = value;
        plugIn.addUndoState();
    }
    values[0] = 4.0f;
    values[3] = 5.0f;
    plugIn.setCurrentPresetName("last");

    const CountingListener listener(plugIn);
    for (const float value : {3.0f, 2.0f, 1.0f, 1.0f})
    {
        plugIn.undo();
        EXPECT_EQ(values[0], value);
    }
    EXPECT_EQ(listener.heard, (std::vector<int>{-1, -1, -1}));
    EXPECT_EQ(plugIn.getCurrentPresetName(), "first");
    EXPECT_EQ(values[3], 5.0f) << "hidden parameters are not undone";

    for (const float value : {2.0f, 3.0f, 4.0f, 4.0f})
    {
        plugIn.redo();
        EXPECT_EQ(values[0], value);
    }
    EXPECT_EQ(plugIn.getCurrentPresetName(), "last");

    plugIn.undo();
    plugIn.addUndoState();
    EXPECT_EQ(plugIn.undoStates.size(), 3u);
    EXPECT_TRUE(plugIn.redoStates.empty());
}
