/** What comes from outside may be anything: no input stops the plug-in, leaves the engine with a parameter that is not a
    number within its range, or the preset with a name that is no text. */
#include "product/AmbrelAudioProcessor.h"
#include "reverb/Reverberation.h"
#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#if !JUCE_WINDOWS
#include <sys/stat.h>
#include <unistd.h>
#endif

using vesk::audio::Reverberation;

namespace
{
std::string repeat(const char* text, int count)
{
    return juce::String::repeatedString(text, count).toStdString();
}

class BadInputTest : public ::testing::Test
{
protected:
    void expectSound(const std::string& after)
    {
        auto& engine = *plugIn.getBaseProcessor();
        for (int id = 0; id < Reverberation::numParameters; ++id)
        {
            float low = 0.0f, high = 0.0f;
            engine.getParameterRange(id, low, high);
            const float value = engine.getParameterValue(id);
            EXPECT_TRUE(value >= low && value <= high) << id << ": " << value << " after " << after;
        }
        for (int index = 0; index < plugIn.getNumParameters(); ++index)
            EXPECT_TRUE(std::isfinite(plugIn.getParameter(index))) << index << " after " << after;
        expectText(plugIn.getCurrentPresetName(), after);
    }

    static void expectText(const juce::String& text, const std::string& after)
    {
        const auto* bytes = text.toRawUTF8();
        EXPECT_TRUE(juce::CharPointer_UTF8::isValidString(bytes, static_cast<int>(std::strlen(bytes))))
            << after;
    }

    void restore(const std::string& block, const std::string& what)
    {
        plugIn.setStateInformation(block.data(), static_cast<int>(block.size()));
        expectSound(what);
    }

    bool import(const std::string& content, const std::string& what)
    {
        bool accepted = false;
        file.replaceWithData(content.data(), content.size());
        try
        {
            accepted = plugIn.importFromPresetFile(file);
        }
        catch (const std::out_of_range&) // an unknown parameter
        {
        }
        expectSound(what);
        return accepted;
    }

    /** Calls run with the text cut at each length, and with each of its bits flipped. */
    template <typename Run>
    void damage(const std::string& whole, Run run)
    {
        for (std::size_t length = 0; length < whole.size(); ++length)
            run(whole.substr(0, length), "cut at " + std::to_string(length));
        for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit)
        {
            auto flipped = whole;
            flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
            run(flipped, "flipped bit " + std::to_string(bit));
        }
    }

    AmbrelAudioProcessor plugIn;
    TemporaryFolder folder;
    const juce::File file = folder.get("preset.xml");
};
} // namespace

TEST_F(BadInputTest, StateBlocks)
{
    juce::MemoryBlock stored;
    plugIn.getStateInformation(stored);
    const std::string whole(static_cast<const char*>(stored.getData()), stored.getSize());

    damage(whole, [&](const auto& block, const auto& what) { restore(block, what); });
    restore(std::string(100'000'000, '\0'), "zeros");
    restore(whole.substr(0, whole.size() - 4) + "\xf0", "a name that breaks off within a character");
    restore(whole.substr(0, whole.size() - 4) + "\xc0\x80zero", "a name with a zero in two bytes");
    EXPECT_EQ(plugIn.getCurrentPresetName(), "Default h");
    for (const float value : {NAN, INFINITY, -INFINITY, -0.0f, 1e-40f, 3e38f})
    {
        auto odd = whole;
        std::memcpy(odd.data() + 20, &value, sizeof(value));
        restore(odd, std::to_string(value));
    }

    restore(whole, "all of these");
    juce::MemoryBlock again;
    plugIn.getStateInformation(again);
    EXPECT_EQ(again, stored);
}

TEST_F(BadInputTest, PresetFiles)
{
    const auto time = [](const std::string& value)
    { return presetText("<Parameter id='2' value='" + value + "'/>"); };
    const auto withType = [&](const std::string& type, const std::string& value)
    { return "<!DOCTYPE p " + type + ">" + time(value); };
    const std::string laughs = "[<!ENTITY a \"ha\"><!ENTITY b \"" + repeat("&a;", 10) + "\"><!ENTITY c \"" +
                               repeat("&b;", 10) + "\"><!ENTITY d \"" + repeat("&c;", 10) + "\">]";
    constexpr int deep = 100'000;
    juce::MemoryOutputStream utf16;
    utf16.writeText(juce::String(time("3")), true, true, nullptr);

    struct Row
    {
        const char* what;
        std::string content;
        float time; ///< afterwards; 0 if the file is refused
    };
    const Row rows[] = {
        {"not a number", time("nan"), 32.0f},
        {"minus infinite", time("-inf"), 0.1f},
        {"empty", time(""), 0.1f},
        {"comma", time("1,5"), 1.0f},
        {"reference", time("&#x34;&#46;5"), 4.5f},

        {"UTF-16", {static_cast<const char*>(utf16.getData()), utf16.getDataSize()}, 3.0f},
        {"UTF-8 with a mark", "\xef\xbb\xbf" + time("3"), 3.0f},
        {"a mark alone", "\xef\xbb\xbf", 0.0f},
        {"Latin-1", presetText("<Parameter name='Gr\xf6\xdf' id='2' value='3'/>"), 3.0f},
        {"breaks off within a character", presetText("<Parameter id='2' value='3\xf0"), 0.0f},
        {"a zero within", time("3") + std::string(1, '\0') + "<", 3.0f},
        {"no settings", "<Preset><Settings/></Preset>", 0.0f},

        {"comments and such",
         "<!-->--><?x ' ?>" + presetText("<!-- <a> -->x<![CDATA[<a>]]><Parameter id='2' value='3'/>"), 3.0f},
        {"quotes", presetText("<a b=\"'</a>'\" c='>'/><Parameter id='2' value='3'/>"), 3.0f},
        {"behind the end", time("3") + "<<<", 3.0f},
        {"deep", presetText(repeat("<a>", deep) + repeat("</a>", deep)), 0.0f},
        {"deep behind comments", presetText(repeat("<a><!--></a>-->", deep / 2)), 0.0f},
        {"deep behind quotes", presetText(repeat("<x><a ! \"<!--\"></a></x>-->", deep / 3)), 0.0f},
        {"many elements", presetText(repeat("<Parameter id='2' value='3'/>", 1'000'000)), 0.0f},
        {"instruction before text", presetText("<?x?>text"), 0.0f},

        {"entities of entities", withType(laughs, "&d;"), 0.0f},
        {"an entity of its own", withType("[<!ENTITY a \"&a;\">]", "&a;"), 0.0f},
        {"an entity in a file", withType("[<!ENTITY a SYSTEM \"/dev/zero\">]", "&a;"), 0.0f},
        {"an unknown entity", time("&<x>;"), 0.0f},
        {"a character that does not exist", time("&#x110000;"), 0.0f},
        {"no character", time("&#;"), 0.0f}};
    CountingListener listener(plugIn);
    auto& engine = *plugIn.getBaseProcessor();
    for (const auto& row : rows)
    {
        const bool isGood = row.time > 0.0f;
        listener.heard.clear();
        engine.setParameterValue(Reverberation::reverbTime, 7.0f, true);
        plugIn.setCurrentPresetName("old");
        EXPECT_EQ(import(row.content, row.what), isGood) << row.what;
        EXPECT_EQ(engine.getParameterValue(Reverberation::reverbTime), isGood ? row.time : 7.0f) << row.what;
        EXPECT_EQ(plugIn.getCurrentPresetName(), isGood ? "preset" : "old") << row.what;
        EXPECT_EQ(listener.heard.size(), isGood ? 1u : 0u) << row.what;
    }
    EXPECT_FALSE(plugIn.importFromPresetFile(file.getSiblingFile("missing.xml")));

    const auto whole =
        presetText("<Parameter id=\"2\" unit=\"s\" value=\"2.4\"/><Parameter id='1' value='-12'/>");
    damage(whole, [&](const auto& content, const auto& what) { import(content, what); });
    EXPECT_TRUE(import(whole, "all of these"));
}

#if !JUCE_WINDOWS
TEST_F(BadInputTest, PresetFolders)
{
    folder.write("text.xml", "no preset");
    folder.get("folder.xml").createDirectory();
    const auto root = folder.path("") + "/";
    for (const auto& [target, name] : {std::pair{"/nonexistent", "nowhere.xml"},
                                       {"round.xml", "round.xml"},
                                       {"/dev/zero", "endless.xml"},
                                       {"..", "parent"},
                                       {"text.xml", "Saal gro\xdf.xml"}})
        ASSERT_EQ(symlink(target, (root + name).c_str()), 0) << name;
    ASSERT_EQ(mkfifo((root + "pipe.xml").c_str(), 0600), 0);
    ASSERT_EQ(mkdir((root + "Gr\xf6\xdf").c_str(), 0700), 0);

    for (const auto& library : {folder.folder, folder.get("missing"), juce::File()})
    {
        plugIn.factoryPresetFolder = plugIn.userPresetFolder = library;
        plugIn.updatePresetTree();
        for (const int program : {-1, plugIn.getNumPrograms(), 0x7fffffff})
            plugIn.setCurrentProgram(program);
        for (int program = 0; program < plugIn.getNumPrograms(); ++program)
        {
            const auto name = plugIn.getProgramName(program);
            expectText(name, name.toStdString());
            plugIn.setCurrentProgram(program);
            expectSound(name.toStdString());
        }
    }
}
#endif

TEST(BadInput, AnEngineThatFailsIsKeptFromTheHost)
{
    TestPlugIn plugIn;
    juce::MemoryBlock state;
    plugIn.getStateInformation(state);
    plugIn.engine.onEffectuate = [] { throw std::runtime_error("no memory"); };
    EXPECT_NO_THROW(plugIn.setStateInformation(state.getData(), static_cast<int>(state.getSize())));
    plugIn.forgetStateRestore();

    const TemporaryFolder folder;
    folder.write("a.xml", presetText("<Parameter id='0' value='33'/>"));
    plugIn.factoryPresetFolder = folder.folder;
    plugIn.updatePresetTree();
    EXPECT_NO_THROW(plugIn.setCurrentProgram(0));
    EXPECT_EQ(plugIn.engine.values[0], 33.0f);
}

TEST(BadInput, SettingsFiles)
{
    const auto file = TestPlugIn("Shared").settings->getFile();
    for (const std::string content : {"", "CPRP\x78\x9c", "<PROPERTIES", "\xf0\xf0"})
    {
        file.replaceWithData(content.data(), content.size());
        {
            const TestPlugIn closedLast("Shared"), closedFirst("Shared");
            closedFirst.settings->setValue("ThemeId", 1);
            closedLast.settings->setValue("ThemeId", 2);
        }
        EXPECT_EQ(TestPlugIn("Shared").settings->getIntValue("ThemeId"), 2)
            << "the last one that writes wins";
    }
    file.deleteFile();
}
