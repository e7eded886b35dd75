#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
juce::File home() { return juce::File::getSpecialLocation(juce::File::userHomeDirectory); }

/** A file in the resource folder of the test program, deleted with this. */
class Resource
{
public:
    Resource(const juce::String& path, const juce::String& content) : file(makeFolder().getChildFile(path))
    {
        file.create();
        file.replaceWithText(content);
    }
    ~Resource() { file.deleteFile(); }

    const juce::File file;

private:
    /** Shared resources beside this program, of the test's own bundle. The folder stays: tests that run at the
        same time share it, and no other bundle looks there. */
    static juce::File makeFolder()
    {
        const auto program = juce::File::getSpecialLocation(juce::File::currentExecutableFile);
        program.getSiblingFile("share/Test Bundle").createDirectory();
        return PlugInPlaces("Test Bundle", "").getResourceFolder();
    }
};
} // namespace

TEST(SettingsTest, VersionCodePacksThreeParts)
{
    const std::pair<const char*, int> rows[] = {
        {"1.0.3", 0x10003}, {"2", 0x20000}, {"1.300.4", (1 << 16) + (300 << 8) + 4}};
    for (const auto& [version, code] : rows)
        EXPECT_EQ(TestPlugIn("b", "p", version).getVersionCode(), code);
}

TEST(SettingsTest, SettingsAreKeptForTheMajorVersion)
{
    {
        TestPlugIn plugIn("My Bundle", "p", "3.1");
        plugIn.settings->setValue("ThemeId", 1);
    }
    EXPECT_EQ(TestPlugIn("My Bundle", "p", "3.2").settings->getIntValue("ThemeId"), 1);
    EXPECT_EQ(TestPlugIn("My Bundle", "p", "4.0").settings->getIntValue("ThemeId"), 0);
#if JUCE_LINUX
    EXPECT_TRUE(home().getChildFile(".config/Veskora/MyBundle3.prop").existsAsFile());
#endif
}

TEST(SettingsTest, AFileBesideTheExecutableWins)
{
    const auto beside =
        juce::File::getSpecialLocation(juce::File::currentExecutableFile).getSiblingFile("Beside1.prop");
    beside.create();
    const TestPlugIn plugIn("Beside", "p");
    EXPECT_EQ(plugIn.settings->getFile(), beside);
    beside.deleteFile();
}

#if JUCE_LINUX
TEST(SettingsTest, UserFoldersFollowTheEnvironment)
{
    const PlugInPlaces places("Bundle", "Plug");
    const auto preset = "Veskora/Plug/Presets";
    EXPECT_EQ(places.getUserPresetFolder(), home().getChildFile(".config").getChildFile(preset));

    const TemporaryFolder configuration;
    setenv("XDG_CONFIG_HOME", configuration.folder.getFullPathName().toRawUTF8(), 1);
    EXPECT_EQ(places.getUserPresetFolder(), configuration.folder.getChildFile(preset));
    setenv("XDG_CONFIG_HOME", "relative/folder", 1);
    EXPECT_EQ(places.getUserPresetFolder(), home().getChildFile(".config").getChildFile(preset));
    unsetenv("XDG_CONFIG_HOME");
}
#endif

TEST(SettingsTest, ResourcesAreFoundByWalkingUp)
{
    const TemporaryFolder root;
    const auto inBundle = root.folder.getChildFile("lib/vst3/X.vst3/Contents/Resources");
    const auto shared = root.folder.getChildFile("share/X");
    shared.createDirectory();
    const auto find = [&](const char* from)
    {
        root.folder.getChildFile(from).createDirectory();
        return PlugInPlaces::findResourceFolder(root.folder.getChildFile(from), "X");
    };

    EXPECT_EQ(find("bin"), shared);
    EXPECT_EQ(find("lib/vst/X"), shared) << "three parents up";
    EXPECT_FALSE(find("a/b/c/d").isDirectory()) << "four parents up is too far";
    inBundle.createDirectory();
    EXPECT_EQ(find("lib/vst3/X.vst3/Contents/x86_64-linux"), inBundle);
    EXPECT_EQ(find("lib/vst3/X.vst3"), inBundle) << "a bundle's own resources come before shared ones";
}

TEST(SettingsTest, HelpFallsBackToEnglish)
{
    const TestPlugIn plugIn;
    const Resource german("TestBundle_de/testplugin.html", "<html/>");
    const auto resources = german.file.getParentDirectory().getParentDirectory();
    EXPECT_EQ(plugIn.getHelpFilePath("de"), german.file.getFullPathName());
    EXPECT_EQ(plugIn.getHelpFilePath("fr"),
              resources.getChildFile("TestBundle_en/testplugin.html").getFullPathName());
    german.file.getParentDirectory().deleteRecursively();
}

TEST(SettingsTest, TranslationOfTheDisplayLanguageIsTakenUp)
{
    const auto language = juce::SystemStats::getDisplayLanguage().upToFirstOccurrenceOf("-", false, false);
    const Resource translation("TestBundle_" + language + ".loc",
                               "language: Test\ncountries: xx\n\n\"Undo\" = \"Zurueck\"\n");
    {
        const TestPlugIn other("Other Bundle");
        EXPECT_EQ(juce::translate("Undo"), "Undo");
    }
    {
        const TestPlugIn plugIn;
        EXPECT_EQ(juce::translate("Undo"), "Zurueck");
    }
    juce::LocalisedStrings::setCurrentMappings(nullptr);
}
