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
struct Language
{
    const char* code;
    const char* name;
    const char* mainCountry;
};
constexpr Language languages[] = {
    {"de", "German", "de"},     {"fr", "French", "fr"},   {"es", "Spanish", "es"}, {"it", "Italian", "it"},
    {"pt", "Portuguese", "pt"}, {"ja", "Japanese", "jp"}, {"zh", "Chinese", "cn"}};

constexpr const char* helpLanguages[] = {"en", "de"};

juce::File getSourceRoot()
{
    return juce::File::getCurrentWorkingDirectory().getChildFile(__FILE__).getChildFile("../../..");
}

juce::File getTranslation(const juce::File& folder, const Language& language)
{
    return folder.getChildFile("Ambrel_" + juce::String(language.code) + ".loc");
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
std::set<std::string> findTexts(const std::string& code)
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

    std::set<std::string> texts;
    for (const auto& text : found)
        texts.insert(juce::String::fromUTF8(std::regex_replace(text, std::regex("\"\\s*\""), "").c_str())
                         .trim()
                         .unquoted()
                         .replace("\\\"", "\"")
                         .replace("\\n", "\n")
                         .toStdString());
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

std::set<std::string> getKeys(const juce::LocalisedStrings& strings)
{
    std::set<std::string> keys;
    for (const auto& key : strings.getMappings().getAllKeys())
        keys.insert(key.toStdString());
    return keys;
}

int count(const juce::String& text, const juce::String& part)
{
    int found = 0;
    for (int position = text.indexOf(part); position >= 0; position = text.indexOf(position + 1, part))
        ++found;
    return found;
}

class TranslationsTest : public ::testing::TestWithParam<Language>
{
protected:
    const juce::File folder = getSourceRoot().getChildFile("resources/translations");
    const juce::File file = getTranslation(folder, GetParam());
    const juce::LocalisedStrings strings{file, false};
};
} // namespace

TEST_P(TranslationsTest, HasExactlyTheTextsOfTheProgram)
{
    static const auto texts = findTexts(readSources());
    const auto keys = getKeys(strings);

    for (const auto& text : texts)
        EXPECT_TRUE(keys.count(text)) << file.getFileName() << " lacks \"" << text << '"';
    for (const auto& key : keys)
        EXPECT_TRUE(texts.count(key)) << file.getFileName() << " translates \"" << key << "\", which is gone";
}

TEST_P(TranslationsTest, SaysWhichLanguageItIs)
{
    EXPECT_EQ(strings.getLanguageName(), GetParam().name);

    const auto countries = strings.getCountryCodes();
    EXPECT_EQ(countries[0], GetParam().mainCountry);
    for (const auto& country : countries)
        EXPECT_TRUE(country.length() == 2 && country.containsOnly("abcdefghijklmnopqrstuvwxyz")) << country;
    auto unique = countries;
    unique.removeDuplicates(false);
    EXPECT_EQ(unique, countries);
}

/** The library passes over what it cannot read, and the last of equal keys wins. */
TEST_P(TranslationsTest, EveryLineIsReadAsItStands)
{
    juce::MemoryBlock bytes;
    ASSERT_TRUE(file.loadFileAsData(bytes));
    EXPECT_TRUE(juce::CharPointer_UTF8::isValidString(static_cast<const char*>(bytes.getData()),
                                                      static_cast<int>(bytes.getSize())));

    const std::regex pair(R"re("(?:[^"\\]|\\["n])+" = "(?:[^"\\]|\\["n])+")re");
    int pairs = 0;
    for (const auto& line : juce::StringArray::fromLines(file.loadFileAsString()))
    {
        if (line.isEmpty() || line.startsWith("//") || line.startsWith("language: ") ||
            line.startsWith("countries: "))
            continue;
        ++pairs;
        EXPECT_TRUE(std::regex_match(line.toStdString(), pair)) << line;
    }
    EXPECT_EQ(pairs, strings.getMappings().size());
}

TEST_P(TranslationsTest, KeepsPlaceholdersNamesAndSigns)
{
    const auto& mappings = strings.getMappings();
    for (const auto& text : mappings.getAllKeys())
    {
        const auto translation = mappings[text];
        for (const auto* part : {"FLNM", "#NAME", "#VERSION", "Veskora", "Quellar", "\n", "..."})
            EXPECT_EQ(count(translation, part), count(text, part)) << translation << " and " << part;

        EXPECT_EQ(translation.trim(), translation);
        if (text.length() == 1 || !text.containsAnyOf("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"))
        {
            EXPECT_EQ(translation, text);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, TranslationsTest, ::testing::ValuesIn(languages),
                         [](const auto& language) { return language.param.name; });

TEST(TranslationFilesTest, LieWhereThePlugInLooks)
{
    const auto sources = getSourceRoot().getChildFile("resources/translations");
    const auto resources = PlugInPlaces("Ambrel", "Ambrel").getResourceFolder();
    for (const auto& language : languages)
    {
        const auto staged = getTranslation(resources, language);
        EXPECT_TRUE(staged.hasIdenticalContentTo(getTranslation(sources, language)))
            << staged.getFullPathName();
    }
    EXPECT_EQ(sources.getNumberOfChildFiles(juce::File::findFilesAndDirectories),
              static_cast<int>(std::size(languages)));
}

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
    for (const auto* language : helpLanguages)
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
    juce::LocalisedStrings::setCurrentMappings(nullptr);
}
