/**
    Every text that the sources pass to juce::translate has a translation in every language.
*/
#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

namespace
{
std::set<juce::String> findTexts()
{
    const std::regex jointOfLiterals(R"re(([^\\(])"\s+")re");
    const std::regex call(R"re(\b(?:translate|TRANS|NEEDS_TRANS)\s*\(\s*"((?:[^"\\]|\\.)+)")re");
    std::set<juce::String> texts;
    for (const auto* folder : {"plugin", "editor", "product"})
        for (const auto& file : getSourceFolder(folder).findChildFiles(juce::File::findFiles, true, "*.cpp"))
        {
            const auto code =
                std::regex_replace(file.loadFileAsString().toStdString(), jointOfLiterals, "$1");
            for (std::sregex_iterator match(code.begin(), code.end(), call); match != std::sregex_iterator();
                 ++match)
                texts.insert(juce::String::fromUTF8((*match)[1].str().c_str())
                                 .replace("\\\"", "\"")
                                 .replace("\\n", "\n"));
        }
    return texts;
}
} // namespace

TEST(TranslationsTest, HaveTheTextsOfTheProgramWithTheirPlaceholders)
{
    const auto texts = findTexts();
    EXPECT_GT(texts.size(), 40u);
    const auto files = getSourceFolder("resources/translations").findChildFiles(juce::File::findFiles, false);
    EXPECT_EQ(files.size(), 7);
    const juce::LocalisedStrings other(files[0], false);
    const auto count = [](const juce::String& whole, const char* part)
    { return whole.length() - whole.replace(part, {}).length(); };
    for (const auto& file : files)
    {
        SCOPED_TRACE(file.getFileName());
        const juce::LocalisedStrings strings(file, false);
        const auto& mappings = strings.getMappings();
        for (const auto& text : texts)
            EXPECT_TRUE(mappings.containsKey(text)) << "lacks \"" << text << '"';
        EXPECT_EQ(mappings.size(), other.getMappings().size())
            << "other texts than in " << files[0].getFileName();
        for (const auto& text : mappings.getAllKeys())
            for (const auto* part : {"FLNM", "#NAME", "#VERSION", "Veskora", "Quellar", "\n", "..."})
                EXPECT_EQ(count(mappings[text], part), count(text, part)) << text << " and " << part;
    }
}

TEST(HelpPagesTest, ThereIsOneForEveryLanguage)
{
    const TestPlugIn plugIn("Ambrel", "Ambrel");
    EXPECT_TRUE(juce::File(plugIn.getHelpFilePath("en")).existsAsFile());
    EXPECT_NE(plugIn.getHelpFilePath("de"), plugIn.getHelpFilePath("en"));
    EXPECT_EQ(plugIn.getHelpFilePath("fr"), plugIn.getHelpFilePath("en"));
    juce::LocalisedStrings::setCurrentMappings(nullptr);
}
