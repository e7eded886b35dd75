/**
    Every text that passes juce::translate has a translation in every language, and nothing else has. The texts are
    found in the sources themselves, so a text that is added or changed in the code shows up here.
*/
#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

namespace
{
constexpr const char* languages[] = {"de", "fr", "es", "it", "pt", "ja", "zh"};

juce::File getSourceRoot()
{
    return juce::File::getCurrentWorkingDirectory().getChildFile(__FILE__).getChildFile("../../..");
}

/** One string literal or several, which the compiler joins. */
const std::string literals = R"re(((?:"(?:[^"\\]|\\.)*"\s*)+))re";

std::string withoutComments(const std::string& source)
{
    static const std::regex stringOrComment(R"re(("(?:[^"\\]|\\.)*")|//[^\n]*|/\*(?:[^*]|\*(?!/))*\*/)re");
    return std::regex_replace(source, stringOrComment, "$1");
}

/** All that the pattern's group matches. */
std::vector<std::string> findAll(const std::string& code, const std::string& pattern)
{
    const std::regex regex(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator match(code.begin(), code.end(), regex); match != std::sregex_iterator();
         ++match)
        found.push_back((*match)[1]);
    return found;
}

/** All texts in the code that are shown in the user's language: what translate is called with, constants that it is
    called with, and the top folders of the presets, whose names come to it from the tree. */
std::set<juce::String> findTexts(const std::string& code)
{
    const std::string call = "\\b(?:translate|TRANS|NEEDS_TRANS)\\s*\\(\\s*";
    auto found = findAll(code, call + literals + "[,)]");
    for (const auto& name : findAll(code, call + "([^\")][^)]*)"))
    {
        const auto origin = name == "section[nameProperty].toString("
                                ? "makeFolderNode\\(" + literals
                                : "\\b" + name.substr(name.rfind(':') + 1) + "\\s*=\\s*" + literals;
        const auto texts = findAll(code, origin);
        EXPECT_FALSE(texts.empty()) << "unknown origin of the text " << name;
        found.insert(found.end(), texts.begin(), texts.end());
    }

    std::set<juce::String> texts;
    for (const auto& text : found)
        texts.insert(juce::String::fromUTF8(std::regex_replace(text, std::regex("\"\\s*\""), "").c_str())
                         .trim()
                         .unquoted()
                         .replace("\\\"", "\"")
                         .replace("\\n", "\n"));
    return texts;
}

std::string readSources()
{
    std::string code;
    for (const auto* folder : {"plugin", "editor", "product"})
        for (const auto& file :
             getSourceRoot().getChildFile(folder).findChildFiles(juce::File::findFiles, true, "*.cpp;*.h"))
            code += withoutComments(file.loadFileAsString().toStdString()) + "\n";
    return code;
}

class TranslationsTest : public ::testing::TestWithParam<const char*>
{
protected:
    const juce::File file =
        getSourceRoot().getChildFile("resources/translations/Ambrel_" + juce::String(GetParam()) + ".loc");
    const juce::LocalisedStrings strings{file, false};
    const juce::StringPairArray& mappings = strings.getMappings();
};
} // namespace

TEST_P(TranslationsTest, HasExactlyTheTextsOfTheProgram)
{
    static const auto texts = findTexts(readSources());
    const auto keys = mappings.getAllKeys();
    for (const auto& text : texts)
        EXPECT_TRUE(keys.contains(text)) << "lacks \"" << text << '"';
    for (const auto& key : keys)
        EXPECT_TRUE(texts.count(key)) << "translates \"" << key << "\", which is gone";
}

TEST_P(TranslationsTest, KeepsPlaceholdersNamesAndSigns)
{
    for (const auto& text : mappings.getAllKeys())
    {
        const auto translation = mappings[text];
        const auto getLengthOfAll = [](const juce::String& whole, const char* part)
        { return whole.length() - whole.replace(part, {}).length(); };
        for (const auto* part : {"FLNM", "#NAME", "#VERSION", "Veskora", "Quellar", "\n", "..."})
            EXPECT_EQ(getLengthOfAll(translation, part), getLengthOfAll(text, part))
                << translation << " and " << part;
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, TranslationsTest, ::testing::ValuesIn(languages),
                         [](const auto& language) { return language.param; });

TEST(HelpPagesTest, ThereIsOneForEveryLanguage)
{
    const TestPlugIn plugIn("Ambrel", "Ambrel");
    EXPECT_TRUE(juce::File(plugIn.getHelpFilePath("en")).existsAsFile());
    EXPECT_NE(plugIn.getHelpFilePath("de"), plugIn.getHelpFilePath("en"));
    EXPECT_EQ(plugIn.getHelpFilePath("fr"), plugIn.getHelpFilePath("en"));
    juce::LocalisedStrings::setCurrentMappings(nullptr);
}
