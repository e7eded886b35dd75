#include "plugin/FallbackTypeface.h"
#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
juce::File home() { return juce::File::getSpecialLocation(juce::File::userHomeDirectory); }

/** A translation in the resource folder of a bundle beside the test program, which goes away with this. Each test has
    its own bundle, for tests run at the same time. */
class Translation
{
public:
    Translation(const juce::String& bundle, const juce::String& language, const juce::String& undo)
        : file(juce::File::getSpecialLocation(juce::File::currentExecutableFile)
                   .getSiblingFile("share/" + bundle + "/" + bundle + "_" + language + ".loc"))
    {
        file.create();
        file.replaceWithText("language: Test\ncountries: xx\n\n\"Undo\" = \"" + undo + "\"\n");
    }
    ~Translation() { file.getParentDirectory().deleteRecursively(); }

private:
    const juce::File file;
};

/** As a new plug-in of a bundle translates it. */
juce::String translateUndo(const juce::String& bundle)
{
    const TestPlugIn plugIn(bundle);
    const auto undo = juce::translate("Undo");
    juce::LocalisedStrings::setCurrentMappings(nullptr);
    return undo;
}
} // namespace

TEST(SettingsTest, SettingsAreKeptForTheMajorVersion)
{
    TestPlugIn("My Bundle", "p", "3.1").settings->setValue("ThemeId", 1);
    EXPECT_EQ(TestPlugIn("My Bundle", "p", "3.2").settings->getIntValue("ThemeId"), 1);
    EXPECT_EQ(TestPlugIn("My Bundle", "p", "4.0").settings->getIntValue("ThemeId"), 0);
#if JUCE_LINUX
    EXPECT_TRUE(home().getChildFile(".config/Veskora/MyBundle3.prop").existsAsFile());
#endif
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

TEST(SettingsTest, TheEnvironmentTellsTheLanguage)
{
    const Translation german("Environment", "de", "Zurueck");
    const Translation french("Environment", "fr", "Annuler");
    for (const auto& [all, messages, language, undo] : {std::tuple{"", "de_AT.UTF-8", "", "Zurueck"},
                                                        {"fr_FR", "de_AT.UTF-8", "", "Annuler"},
                                                        {"C.UTF-8", "", "pt_BR:fr@euro:de", "Annuler"},
                                                        {"C", "de_DE", "de", "Undo"}})
    {
        setenv("LC_ALL", all, 1);
        setenv("LC_MESSAGES", messages, 1);
        setenv("LANGUAGE", language, 1);
        EXPECT_EQ(translateUndo("Environment"), undo) << all << ", " << messages << ", " << language;
    }
    for (const auto* variable : {"LC_MESSAGES", "LANGUAGE"})
        unsetenv(variable);
    setenv("LC_ALL", "C", 1);
}

TEST(SettingsTest, WhatNoFontCanShowIsNotTranslated)
{
    const auto undo = juce::String::fromUTF8("\xe5\x85\x83\xe3\x81\xab\xe6\x88\xbb\xe3\x81\x99");
    const Translation japanese("Fonts", "ja", undo);
    setenv("LC_ALL", "ja_JP.UTF-8", 1);
    const TemporaryFolder empty;
    setenv("FONTCONFIG_FILE", empty.write("fonts.conf", "<fontconfig/>").getFullPathName().toRawUTF8(), 1);
    EXPECT_EQ(translateUndo("Fonts"), "Undo");
    EXPECT_FALSE(FallbackTypeface::isProvided());
    unsetenv("FONTCONFIG_FILE");

    if (FallbackTypeface::provide("ja"))
    {
        EXPECT_EQ(translateUndo("Fonts"), undo);
        const auto completed = FallbackTypeface::complete(juce::Font().getTypefacePtr());
        juce::Path outlines[2];
        for (const int i : {0, 1})
            completed->getOutlineForGlyph(static_cast<int>(undo[i]), outlines[i]);
        EXPECT_FALSE(outlines[0] == outlines[1]) << "both are boxes";
    }
    setenv("LC_ALL", "C", 1);
}
#endif
