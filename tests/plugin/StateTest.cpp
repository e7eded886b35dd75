#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <vector>

namespace
{
using Bytes = std::vector<char>;

/** A state block of the test plug-in, put together field by field. */
struct Block : Bytes
{
    Block(const std::string& magic, int version) { text(magic).integer(version); }

    Block& text(const std::string& characters)
    {
        insert(end(), characters.begin(), characters.end());
        return *this;
    }
    Block& integer(int value) { return text({reinterpret_cast<const char*>(&value), sizeof(value)}); }
    Block& entry(int id, float value) { return integer(id).integer(std::bit_cast<int>(value)); }
    Block& marker() { return text("\x3e\x47\x43\x09\x4a\xaf\x04\x87"); }
    Block& name(const std::string& presetName) { return text(presetName + '\0'); }
};

/** A block up to its count. */
Block header(int count) { return Block("KSEVTSET", 0x10003).integer(count); }

class StateTest : public ::testing::Test
{
protected:
    TestPlugIn plugIn;
    FakeEngine& engine = plugIn.engine;
    CountingListener listener{plugIn};
    TemporaryFolder folder;
};
} // namespace

TEST_F(StateTest, RestoresWhatItStoredInTheDocumentedBytes)
{
    engine.values = {50.0f, 440.0f, 1.0f, -3.0f};
    plugIn.setCurrentPresetName(juce::String::fromUTF8("Gr\xc3\xbc\xc3\x9f"));
    juce::MemoryBlock block("old", 3);
    plugIn.getStateInformation(block);
    const Bytes expected =
        header(3).entry(0, 50.0f).entry(1, 440.0f).entry(2, 1.0f).marker().name("Gr\xc3\xbc\xc3\x9f");
    EXPECT_EQ(Bytes(block.begin(), block.end()), expected);

    engine.values = {1.0f, 30.0f, 0.0f, 5.0f};
    plugIn.setCurrentPresetName({});
    plugIn.setStateInformation(block.getData(), static_cast<int>(block.getSize()));
    EXPECT_EQ(engine.values, (std::vector<float>{50.0f, 440.0f, 1.0f, 5.0f})) << "hidden parameters stay";
    EXPECT_EQ(plugIn.getCurrentPresetName(), juce::String::fromUTF8("Gr\xc3\xbc\xc3\x9f"));
    EXPECT_EQ(engine.effectuations, 1);
    EXPECT_EQ(listener.heard, std::vector<int>{-1});
}

TEST_F(StateTest, TreatsOddBlocksAsDocumented)
{
    struct Row
    {
        const char* what;
        Bytes bytes;
        bool accepted;
        float amount; ///< value of parameter 0 afterwards, 25 before
        const char* name;
    };
    Bytes shortened = header(1);
    shortened.pop_back();
    Bytes cut = header(2).entry(0, 40.0f);
    cut.insert(cut.end(), 5, 0);

    const Row rows[] = {
        {"empty", {}, false, 25.0f, "old"},
        {"15 bytes", shortened, false, 25.0f, "old"},
        {"magic", Block("VESKTSET", 1).integer(1).entry(0, 1.0f), false, 25.0f, "old"},
        {"plug-in", Block("KSEVRBMA", 1).integer(1).entry(0, 1.0f), false, 25.0f, "old"},
        {"other version", Block("KSEVTSET", 99).integer(1).entry(0, 30.0f), true, 30.0f, "old"},
        {"hidden parameter", header(1).entry(3, 1.0f), true, 25.0f, "old"},
        {"no trailer", header(1).entry(0, 60.0f), true, 60.0f, "old"},
        {"marker alone", header(1).entry(0, 60.0f).marker(), true, 60.0f, "old"},
        {"wrong marker", header(1).entry(0, 60.0f).text("12345678new"), true, 60.0f, "old"},
        {"negative count", header(-1).entry(0, 60.0f), true, 25.0f, "old"},
        {"huge count", header(0x7fffffff).entry(0, 60.0f), true, 25.0f, "old"},
        {"count beyond the end", cut, true, 40.0f, "old"},
        {"skipped list, then trailer", header(99).marker().name("new"), true, 25.0f, "new"},
        {"unknown parameter", header(3).entry(0, 70.0f).entry(9, 1.0f).entry(0, 80.0f), false, 70.0f, "old"}};

    for (const auto& row : rows)
    {
        engine.values[0] = 25.0f;
        engine.effectuations = 0;
        listener.heard.clear();
        plugIn.setCurrentPresetName("old");
        juce::MemoryInputStream input(row.bytes.data(), row.bytes.size(), false);
        EXPECT_EQ(plugIn.setParameterSettings(input), row.accepted) << row.what;
        EXPECT_EQ(engine.values[0], row.amount) << row.what;
        EXPECT_EQ(engine.effectuations, row.accepted ? 1 : 0) << row.what;
        EXPECT_EQ(listener.heard.size(), row.accepted ? 1u : 0u) << row.what;
        EXPECT_EQ(plugIn.getCurrentPresetName(), row.name) << row.what;
    }
}

TEST_F(StateTest, ExportsTheDescribedParametersAndCustomData)
{
    engine.values = {12.5f, 440.0f, 1.0f, -3.0f};
    const auto file = folder.get("My sound.xml");
    ASSERT_TRUE(plugIn.exportToPresetFile(file));
    EXPECT_EQ(plugIn.getCurrentPresetName(), "My sound");

    const auto text = file.loadFileAsString();
    EXPECT_TRUE(text.contains("<Parameter id=\"0\" unit=\"%\" value=\"12.5\" name=\"Amount\"/>")) << text;
    EXPECT_EQ(juce::parseXML(text)->getChildByName("ParameterSettings")->getNumChildElements(), 3);
    EXPECT_FALSE(plugIn.exportToPresetFile(file.getChildFile("below a file.xml")));
    EXPECT_EQ(plugIn.getCurrentPresetName(), "My sound");

    plugIn.customNote = "hello";
    ASSERT_TRUE(plugIn.exportToPresetFile(file));
    plugIn.customNote = {};
    ASSERT_TRUE(plugIn.importFromPresetFile(file));
    EXPECT_EQ(plugIn.customNote, "hello");
}

TEST_F(StateTest, ImportsAnyParameterOnTopOfReset)
{
    engine.values = {80.0f, 440.0f, 1.0f, -3.0f};
    const auto file =
        folder.write("Loud.xml", presetText("<Parameter id='3' value='99'/><Other id='1' value='50'/>"
                                            "<Parameter value='7'/><Parameter id='2'/>"));
    ASSERT_TRUE(plugIn.importFromPresetFile(file));
    EXPECT_EQ(engine.values, (std::vector<float>{25.0f, 50.0f, 0.0f, 18.0f}));
    EXPECT_EQ(engine.effectuations, 1) << "one recomputation, at the end";
    EXPECT_EQ(listener.heard, std::vector<int>{-1});
    EXPECT_EQ(plugIn.getCurrentPresetName(), "Loud");

    plugIn.presetExemptParameters.add(0);
    engine.values[0] = 80.0f;
    ASSERT_TRUE(
        plugIn.importFromPresetFile(folder.write("a.xml", presetText("<Parameter id='0' value='1'/>"))));
    EXPECT_EQ(engine.values[0], 80.0f) << "exempt from presets";
}

TEST_F(StateTest, AnUnknownParameterLeavesTheImportButNotTheProgramChange)
{
    const auto file = folder.write("strange.xml",
                                   presetText("<Parameter id='0' value='33'/><Parameter id='9' value='1'/>"));
    EXPECT_THROW(plugIn.importFromPresetFile(file), std::out_of_range);

    plugIn.factoryPresetFolder = folder.folder;
    plugIn.updatePresetTree();
    plugIn.forgetStateRestore();
    plugIn.setCurrentPresetName("old");
    listener.heard.clear();
    plugIn.setCurrentProgram(0);
    EXPECT_FALSE(engine.pending);
    EXPECT_EQ(engine.values[0], 33.0f);
    EXPECT_EQ(listener.heard, std::vector<int>{-1});
    EXPECT_EQ(plugIn.getCurrentPresetName(), "old");

    // Parameters set afterwards take effect at once again.
    plugIn.setParameter(0, 1.0f);
    EXPECT_FALSE(engine.pending);
}
