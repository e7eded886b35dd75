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

    juce::ValueTree folderNode(int top) const { return plugIn.presetTree.getChild(top); }

    TemporaryFolder factory;
    TemporaryFolder user;
    TestPlugIn plugIn;
};
} // namespace

TEST_F(PresetLibraryTest, EmptyFoldersGiveAnEmptyLibrary)
{
    plugIn.updatePresetTree();
    EXPECT_EQ(plugIn.getNumPrograms(), 0);
    EXPECT_EQ(plugIn.getCurrentProgram(), 0);
    EXPECT_TRUE(plugIn.presetTree.hasType("Root"));
    ASSERT_EQ(plugIn.presetTree.getNumChildren(), 2);
    EXPECT_EQ(folderNode(0)["Name"], juce::var("Factory presets"));
    EXPECT_EQ(folderNode(1)["Name"], juce::var("User presets"));
    EXPECT_TRUE(folderNode(1).hasType("PresetFolder"));
    EXPECT_TRUE(plugIn.getProgramName(0).isEmpty());
}

TEST_F(PresetLibraryTest, FilesAreNumberedBeforeSubfoldersButStandBehindThem)
{
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
    EXPECT_EQ(plugIn.presets[2].path, user.folder.getChildFile("Mine.xml").getFullPathName());

    const auto rooms = folderNode(0).getChild(0);
    EXPECT_TRUE(rooms.hasType("PresetFolder"));
    EXPECT_EQ(rooms["Name"], juce::var("Rooms"));
    EXPECT_EQ(rooms.getNumChildren(), 1);
    EXPECT_EQ(rooms.getChild(0)["Index"], juce::var(1));
    const auto preset = folderNode(0).getChild(1);
    EXPECT_TRUE(preset.hasType("Preset"));
    EXPECT_EQ(preset["Name"], juce::var("B"));
    EXPECT_EQ(preset["Index"], juce::var(0));
}

TEST_F(PresetLibraryTest, ScansAnewAndRemembersTheResetPreset)
{
    factory.write("reset.xml");
    user.write("Other.xml");
    plugIn.updatePresetTree();
    EXPECT_EQ(plugIn.resetPresetIndex, 0);

    user.write("RESET.xml");
    user.folder.getChildFile("Other.xml").deleteFile();
    plugIn.updatePresetTree();
    EXPECT_EQ(plugIn.getNumPrograms(), 2);
    EXPECT_EQ(plugIn.resetPresetIndex, 1) << "the last one scanned wins";

    user.folder.getChildFile("RESET.xml").deleteFile();
    factory.folder.getChildFile("reset.xml").deleteFile();
    plugIn.updatePresetTree();
    EXPECT_EQ(plugIn.resetPresetIndex, 1) << "with none it keeps its last value";
}

TEST_F(PresetLibraryTest, ProgramChangeLoadsThePresetWithAnUndoStateBefore)
{
    factory.write("A.xml", presetText("<Parameter id='0' value='66'/>"));
    plugIn.updatePresetTree();
    plugIn.forgetStateRestore();
    CountingListener listener;
    plugIn.addListener(&listener);

    plugIn.setCurrentProgram(0);
    EXPECT_EQ(plugIn.engine.values[0], 66.0f);
    EXPECT_EQ(plugIn.getCurrentPresetName(), "A");
    EXPECT_EQ(plugIn.undoStates.size(), 1u);
    EXPECT_EQ(listener.heard, (std::vector<int>{-1, -1}));

    plugIn.changeProgramName(0, "X");
    EXPECT_EQ(plugIn.getProgramName(0), "A");

    plugIn.setCurrentProgram(7);
    EXPECT_EQ(plugIn.getCurrentProgram(), 7);
    EXPECT_EQ(plugIn.engine.values[0], 66.0f);
    EXPECT_EQ(plugIn.undoStates.size(), 2u);
    EXPECT_EQ(listener.heard.size(), 3u);
    plugIn.removeListener(&listener);
}

TEST_F(PresetLibraryTest, ProgramChangeRightBehindAStateRestoreIsIgnored)
{
    factory.write("A.xml", presetText("<Parameter id='0' value='66'/>"));
    plugIn.updatePresetTree();
    CountingListener listener;
    plugIn.addListener(&listener);

    plugIn.setStateInformation("not a state", 11);
    plugIn.setCurrentProgram(0);
    EXPECT_EQ(plugIn.engine.values[0], 25.0f);
    EXPECT_TRUE(plugIn.undoStates.empty());
    EXPECT_TRUE(listener.heard.empty());

    plugIn.forgetStateRestore();
    plugIn.setCurrentProgram(0);
    EXPECT_EQ(plugIn.engine.values[0], 66.0f);
    plugIn.removeListener(&listener);
}
