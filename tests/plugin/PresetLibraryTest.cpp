#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

namespace
{
class PresetLibraryTest : public ::testing::Test
{
protected:
    PresetLibraryTest()
    {
        plugIn.factoryPresetFolder = factory.folder;
        plugIn.userPresetFolder = user.folder;
    }

    TemporaryFolder factory;
    TemporaryFolder user;
    TestPlugIn plugIn;
    CountingListener listener{plugIn};
};
} // namespace

TEST_F(PresetLibraryTest, FilesAreNumberedBeforeSubfolders)
{
    plugIn.updatePresetTree();
    EXPECT_EQ(plugIn.getNumPrograms(), 0);
    EXPECT_TRUE(plugIn.getProgramName(0).isEmpty());

    factory.write("B.xml");
    factory.write("Rooms.old/A.xml");
    factory.write("Rooms.old/deeper/C.xml");
    factory.write("readme.txt");
    user.write("Mine.xml");
    plugIn.updatePresetTree();

    ASSERT_EQ(plugIn.getNumPrograms(), 3);
    EXPECT_EQ(plugIn.getProgramName(0), "B");
    EXPECT_EQ(plugIn.getProgramName(1), "A");
    EXPECT_EQ(plugIn.getProgramName(2), "Mine");

    user.folder.getChildFile("Mine.xml").deleteFile();
    plugIn.updatePresetTree();
    EXPECT_EQ(plugIn.getNumPrograms(), 2);
}

/** Right behind a restored state it is taken for the host's echo. */
TEST_F(PresetLibraryTest, ProgramChangeLoadsThePresetWithAnUndoStateBefore)
{
    factory.write("A.xml", presetText("<Parameter id='0' value='66'/>"));
    plugIn.updatePresetTree();
    plugIn.setStateInformation("not a state", 11);
    plugIn.setCurrentProgram(0);
    EXPECT_EQ(plugIn.engine.values[0], 25.0f);
    EXPECT_TRUE(plugIn.undoStates.empty());
    EXPECT_TRUE(listener.heard.empty());

    plugIn.forgetStateRestore();
    plugIn.setCurrentProgram(0);
    EXPECT_EQ(plugIn.engine.values[0], 66.0f);
    EXPECT_EQ(plugIn.getCurrentPresetName(), "A");
    EXPECT_EQ(plugIn.undoStates.size(), 1u);
    EXPECT_EQ(listener.heard, (std::vector<int>{-1, -1}));

    plugIn.setCurrentProgram(7);
    EXPECT_EQ(plugIn.getCurrentProgram(), 7);
    EXPECT_EQ(plugIn.engine.values[0], 66.0f);
    EXPECT_EQ(plugIn.undoStates.size(), 2u);
    EXPECT_EQ(listener.heard.size(), 3u);
}
