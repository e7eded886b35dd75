/**
    Every text that passes juce::translate has a translation in every language, and nothing else has. The texts are
    found in the sources themselves, so a text that is added or changed in the code shows up here.
*/
#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <cctype>
#include <memory>
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

/** What translate is called with where the text comes from elsewhere, and the function that makes those texts. */
constexpr std::pair<const char*, const char*> computedTexts[] = {
    {"section[nameProperty].toString()", "makeFolderNode"}};

juce::File getSourceRoot()
{
    return juce::File::getCurrentWorkingDirectory().getChildFile(__FILE__).getChildFile("../../..");
}

juce::File getTranslation(const juce::File& folder, const Language& language)
{
    return folder.getChildFile("Ambrel_" + juce::String(language.code) + ".loc");
}

/** The position behind the literal, comment or plain character at position. */
std::size_t skipToken(const std::string& source, std::size_t position)
{
    const auto endOf = [&](const char* mark, std::size_t from)
    {
        const auto found = source.find(mark, from);
        return found == std::string::npos ? source.size() : found + std::char_traits<char>::length(mark);
    };
    const char first = source[position];

    if (source.compare(position, 2, "//") == 0)
        return endOf("\n", position);
    if (source.compare(position, 2, "/*") == 0)
        return endOf("*/", position + 2);

    const bool isDigitSeparator =
        first == '\'' && position > 0 && std::isalnum(static_cast<unsigned char>(source[position - 1]));
    if ((first != '"' && first != '\'') || isDigitSeparator)
        return position + 1;

    for (++position; position < source.size() && source[position] != first; ++position)
        if (source[position] == '\\')
            ++position;
    return position + 1;
}

std::string withoutComments(const std::string& source)
{
    std::string code;
    for (std::size_t position = 0; position < source.size();)
    {
        const auto end = skipToken(source, position);
        const bool isComment = source[position] == '/' && end > position + 1;
        code += isComment ? "\n" : source.substr(position, end - position);
        position = end;
    }
    return code;
}

struct Argument
{
    std::vector<std::string> literals; ///< as the compiler joins neighbours
    std::string rest;                  ///< without blanks
};

/** What stands from position up to the bracket or semicolon that ends it. */
Argument readArgument(const std::string& code, std::size_t position)
{
    Argument argument;
    bool isNeighbour = false;
    for (int depth = 0; position < code.size();)
    {
        const char first = code[position];
        const auto end = skipToken(code, position);
        depth += first == '(' ? 1 : first == ')' ? -1 : 0;
        if (depth < 0 || (depth == 0 && first == ';'))
            break;

        if (first == '"')
        {
            const auto text = juce::String::fromUTF8(code.substr(position + 1, end - position - 2).c_str())
                                  .replace("\\\"", "\"")
                                  .replace("\\n", "\n")
                                  .toStdString();
            if (isNeighbour)
                argument.literals.back() += text;
            else
                argument.literals.push_back(text);
            isNeighbour = true;
        }
        else if (!std::isspace(static_cast<unsigned char>(first)))
        {
            argument.rest.append(code, position, end - position);
            isNeighbour = false;
        }
        position = end;
    }
    return argument;
}

/** The arguments of all calls in the code of the functions that the pattern names. */
std::vector<Argument> findCalls(const std::string& code, const std::string& functions)
{
    std::vector<Argument> arguments;
    const std::regex call("(?:^|[^\\w.>])(?:" + functions + ")\\s*\\(");
    for (std::sregex_iterator match(code.begin(), code.end(), call); match != std::sregex_iterator(); ++match)
        arguments.push_back(
            readArgument(code, static_cast<std::size_t>(match->position() + match->length())));
    return arguments;
}

/** What the constants of this name hold. */
std::vector<std::string> findConstants(const std::string& code, const std::string& name)
{
    std::vector<std::string> values;
    const std::regex definition("\\b" + name + "\\s*=\\s*(?=\")");
    for (std::sregex_iterator match(code.begin(), code.end(), definition); match != std::sregex_iterator();
         ++match)
        for (const auto& value :
             readArgument(code, static_cast<std::size_t>(match->position() + match->length())).literals)
            values.push_back(value);
    return values;
}

/** All texts in the code that are shown in the user's language. */
std::set<std::string> findTexts(const std::string& code)
{
    std::set<std::string> texts;
    for (const auto& argument : findCalls(code, "translate|TRANS|NEEDS_TRANS"))
    {
        auto found = argument.literals;
        if (found.empty() && std::regex_match(argument.rest, std::regex("[\\w:]+")))
            found = findConstants(code, argument.rest.substr(argument.rest.rfind(':') + 1));
        for (const auto& [expression, function] : computedTexts)
            if (argument.rest == expression)
                for (const auto& call : findCalls(code, function))
                    found.insert(found.end(), call.literals.begin(), call.literals.end());

        EXPECT_FALSE(found.empty()) << "unknown origin of the text " << argument.rest;
        texts.insert(found.begin(), found.end());
    }
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

TEST(TextScannerTest, FindsTextsInEveryForm)
{
    const std::pair<const char*, std::set<std::string>> rows[] = {
        {R"x(translate("a (b)"); x.translate("method"); // translate("comment"))x", {"a (b)"}},
        {R"x(/* translate("c") */ auto s = "//"; juce::translate ("d" /* e */ "f");)x", {"df"}},
        {R"x(TRANS(big ? "\"big\"" : "small"); f(1'000, '"', translate("n\n")))x",
         {"\"big\"", "small", "n\n"}},
        {"constexpr auto name = \"one\"\n \" two\"; translate(ns::name);", {"one two"}},
        {R"x(makeFolderNode("Folder"); translate(section[nameProperty].toString()))x", {"Folder"}},
    };
    for (const auto& [code, texts] : rows)
        EXPECT_EQ(findTexts(withoutComments(code)), texts) << code;
}

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
