// What the themes draw, measured in rendered pictures. The suite's name has it run once more without any font.

#include "editor/themes/DarkTheme.h"
#include "editor/themes/ReverbTheme.h"
#include "editor/themes/SteelTheme.h"
#include "tests/artwork/Picture.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{
using juce::Colour;
using juce::Image;

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

TEST(Themes, KnobIsFilledUpToItsValue)
{
    constexpr float pi = juce::MathConstants<float>::pi;
    for (const auto& [name, fill] : {std::pair{"reverb", Colour(0xb3d27900)},
                                     {"steel", Colour(0xb3d2691e)},
                                     {"dark", Colour(0xb3eeac18)}})
        for (const float value : {0.2f, 0.5f, 0.9f})
        {
            const ThemeInUse inUse(name);
            juce::Slider slider(juce::Slider::RotaryVerticalDrag, juce::Slider::NoTextBox);
            slider.setSize(280, 280);
            slider.setRange(0.0, 1.0);
            slider.setValue(value, juce::dontSendNotification);
            slider.setVisible(true);
            const auto image = slider.createComponentSnapshot(slider.getLocalBounds());
            for (const float on : {0.02f, value - 0.02f, value + 0.02f, 0.98f})
            {
                const juce::Point<float> centre(140.0f, 140.0f);
                const auto point = centre.getPointOnCircumference(136.0f, (1.2f + 1.6f * on) * pi).toInt();
                EXPECT_EQ(difference(image.getPixelAt(point.x, point.y), fill) <= 3, on < value)
                    << name << " at " << value << ", " << on;
            }
        }
}

TEST(Themes, TextsShowInMenusTooltipsButtonsAndLabels)
{
    const juce::Rectangle<int> area(200, 30);
    using Draw = std::function<void(BaseTheme&, juce::Graphics&, const juce::String&)>;
    const auto paint = [&](juce::Component&& shown, juce::Graphics& g)
    {
        shown.setSize(area.getWidth(), area.getHeight());
        shown.paintEntireComponent(g, false);
    };
    const std::pair<const char*, Draw> places[] = {
        {"menu", [&](auto& theme, auto& g, auto& text)
         { theme.drawPopupMenuItem(g, area, false, true, false, false, false, text, {}, nullptr, nullptr); }},
        {"section",
         [&](auto& theme, auto& g, auto& text) { theme.drawPopupMenuSectionHeader(g, area, text); }},
        {"tooltip", [&](auto& theme, auto& g, auto& text) { theme.drawTooltip(g, text, 200, 30); }},
        {"button", [&](auto&, auto& g, auto& text) { paint(juce::TextButton(text), g); }},
        {"label", [&](auto&, auto& g, auto& text) { paint(juce::Label({}, text), g); }}};

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
            const auto renderText = [&, &drawPlace = draw](const juce::String& text)
            {
                Image image(Image::ARGB, area.getWidth(), area.getHeight(), true);
                juce::Graphics g(image);
                g.fillAll(juce::Colours::grey);
                drawPlace(*inUse.theme, g, text);
                return image;
            };
            EXPECT_GT(countDifferences(renderText(" "), renderText("Veskora"), 60), 50) << place;
        }
    }
}
