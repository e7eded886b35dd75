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

/** The library passes over what it cannot read, and the last of equal keys wins. */
TEST_P(TranslationsTest, EveryLineIsReadAsItStands)
{
    juce::MemoryBlock bytes;
    ASSERT_TRUE(file.loadFileAsData(bytes));
    EXPECT_TRUE(juce::CharPointer_UTF8::isValidString(static_cast<const char*>(bytes.getData()),
                                                      static_cast<int>(bytes.getSize())));

    const std::regex line(R"re((//.*|language: [A-Z][a-z]+|countries:( [a-z]{2})+)?)re");
    const std::regex pair(R"re("(?:[^"\\]|\\["n])+" = "(?:[^"\\]|\\["n])+")re");
    int pairs = 0;
    for (const auto& text : juce::StringArray::fromLines(file.loadFileAsString()))
        if (!std::regex_match(text.toStdString(), line))
        {
            ++pairs;
            EXPECT_TRUE(std::regex_match(text.toStdString(), pair)) << text;
        }
    EXPECT_EQ(pairs, mappings.size());
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

        EXPECT_EQ(translation.trim(), translation);
        if (text.length() == 1 || !text.containsAnyOf("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"))
        {
            EXPECT_EQ(translation, text);
        }
    }
}

TEST_P(TranslationsTest, LiesWhereThePlugInLooks)
{
    const auto folder = PlugInPlaces("Ambrel", "Ambrel").getResourceFolder();
    EXPECT_TRUE(folder.getChildFile(file.getFileName()).hasIdenticalContentTo(file));
    EXPECT_EQ(file.getParentDirectory().getNumberOfChildFiles(juce::File::findFilesAndDirectories),
              static_cast<int>(std::size(languages)))
        << "some are not tested";
}

INSTANTIATE_TEST_SUITE_P(Languages, TranslationsTest, ::testing::ValuesIn(languages),
                         [](const auto& language) { return language.param; });

/** Whoever opens a page sees it whole, without a network, and the two tell the same. */
TEST(HelpPagesTest, AreCompleteInThemselves)
{
    const auto collect = [](const juce::XmlElement& root)
    {
        std::vector<const juce::XmlElement*> elements{&root};
        for (std::size_t position = 0; position < elements.size(); ++position)
            for (const auto* child : elements[position]->getChildIterator())
                elements.push_back(child);
        return elements;
    };

    const TestPlugIn plugIn("Ambrel", "Ambrel");
    juce::StringArray structures;
    for (const auto* language : {"en", "de"})
    {
        const juce::File page(plugIn.getHelpFilePath(language));
        EXPECT_TRUE(page.hasIdenticalContentTo(
            getSourceRoot().getChildFile("resources/help/Ambrel_" + juce::String(language) + "/ambrel.html")))
            << page.getFullPathName();

        juce::XmlDocument document(page);
        const auto root = document.getDocumentElement();
        ASSERT_NE(root, nullptr) << document.getLastParseError();
        EXPECT_EQ(root->getStringAttribute("lang"), language);

        const auto elements = collect(*root);
        juce::StringArray anchors;
        juce::StringArray structure;
        for (const auto* element : elements)
        {
            anchors.add("#" + element->getStringAttribute("id"));
            if (!element->isTextElement() && element->getTagName() != "kbd" && element->getTagName() != "b")
                structure.add(element->getTagName() + anchors[anchors.size() - 1]);
        }
        for (const auto* element : elements)
        {
            EXPECT_TRUE(element->getStringAttribute("src", "data:").startsWith("data:"));
            EXPECT_TRUE(anchors.contains(element->getStringAttribute("href", "#")));
            EXPECT_NE(element->getTagName(), "script");
        }
        structures.add(structure.joinIntoString(" "));
    }
    EXPECT_EQ(structures[0], structures[1]);
    EXPECT_EQ(plugIn.getHelpFilePath("fr"), plugIn.getHelpFilePath("en"));
    juce::LocalisedStrings::setCurrentMappings(nullptr);
}
