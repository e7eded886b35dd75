// The texts of all themes. The suite's name has it run once more without any font.

#include "editor/themes/DarkTheme.h"
#include "editor/themes/ReverbTheme.h"
#include "editor/themes/SteelTheme.h"
#include "tests/editor/EditorTools.h"

#include <functional>

namespace
{
constexpr const char* themeNames[] = {"dark", "steel", "reverb"};

std::unique_ptr<BaseTheme> makeTheme(const std::string& name)
{
    if (name == "dark")
        return std::make_unique<DarkTheme>();
    if (name == "steel")
        return std::make_unique<SteelTheme>();
    return std::make_unique<ReverbTheme>();
}

/** A theme as the default look, which is where typefaces come from. */
struct ThemeInUse
{
    explicit ThemeInUse(const std::string& name) : theme(makeTheme(name))
    {
        juce::LookAndFeel::setDefaultLookAndFeel(theme.get());
        juce::Typeface::clearTypefaceCache();
    }

    ~ThemeInUse()
    {
        juce::LookAndFeel::setDefaultLookAndFeel(nullptr);
        juce::Typeface::clearTypefaceCache();
    }

    const std::unique_ptr<BaseTheme> theme;
};
} // namespace

TEST(Themes, TextsShowInMenusTooltipsAndButtons)
{
    const juce::Rectangle<int> area(200, 30);
    using Draw = std::function<void(BaseTheme&, juce::Graphics&, const juce::String&)>;
    const std::pair<const char*, Draw> places[] = {
        {"menu", [&](auto& theme, auto& g, auto& text)
         { theme.drawPopupMenuItem(g, area, false, true, false, false, false, text, {}, nullptr, nullptr); }},
        {"tooltip", [](auto& theme, auto& g, auto& text) { theme.drawTooltip(g, text, 200, 30); }},
        {"button", [&](auto&, auto& g, auto& text)
         {
             juce::TextButton button(text);
             button.setBounds(area);
             button.paintEntireComponent(g, false);
         }}};

    for (const std::string name : themeNames)
    {
        SCOPED_TRACE(name);
        // A window that is being opened measures its title before its theme is the default.
        EXPECT_GT(makeTheme(name)->getTitleWidth("Veskora"), 50.0f);

        const ThemeInUse inUse(name);
        const auto measure = [](const juce::Font& font) { return font.getStringWidthFloat("Veskora"); };
        EXPECT_GT(measure({"No Such Typeface", 20.0f, juce::Font::plain}), 40.0f);
        EXPECT_GT(measure(juce::Font(20.0f, juce::Font::bold)), 1.01f * measure(juce::Font(20.0f)));

        for (const auto& [place, draw] : places)
        {
            const auto render = [&, &drawPlace = draw](const juce::String& text)
            {
                juce::Image image(juce::Image::ARGB, area.getWidth(), area.getHeight(), true);
                juce::Graphics g(image);
                g.fillAll(juce::Colours::grey);
                drawPlace(*inUse.theme, g, text);
                return image;
            };
            const auto without = render(" "), with = render("Veskora");
            int written = 0;
            for (int y = 0; y < area.getHeight(); ++y)
                for (int x = 0; x < area.getWidth(); ++x)
                    written += difference(with.getPixelAt(x, y), without.getPixelAt(x, y)) > 60 ? 1 : 0;
            EXPECT_GT(written, 50) << place;
        }
    }
}
