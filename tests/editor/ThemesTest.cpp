// What the themes draw but for sliders, measured in rendered pictures, and what they answer.

#include "editor/IconButton.h"
#include "tests/editor/ThemePictures.h"

namespace
{

using namespace themeTest;

TEST(Themes, ButtonsAnswerToTheMouseAndJoinTheirNeighbours)
{
    for (const std::string name : {"dark", "steel", "reverb"})
    {
        SCOPED_TRACE(name);
        const ThemeInUse theme(name);
        juce::TextButton button;
        button.setSize(60, 24);

        const auto middle = [&](juce::Button::ButtonState state)
        {
            button.setState(state);
            return render(button).getPixelAt(30, 12).getPerceivedBrightness();
        };
        const float normal = middle(juce::Button::buttonNormal);
        const float over = middle(juce::Button::buttonOver);
        EXPECT_GT(normal, over + 0.03f);

        // A pressed button of steel is engraved, with another alpha in the middle.
        if (name != "steel")
        {
            EXPECT_GT(over, middle(juce::Button::buttonDown) + 0.03f);
        }

        button.setState(juce::Button::buttonNormal);
        button.setConnectedEdges(juce::Button::ConnectedOnRight);
        const auto image = render(button);
        EXPECT_LT(image.getPixelAt(0, 0).getAlpha(), 60);

        // The joint is straight; a button of steel only comes closer.
        if (name == "steel")
        {
            EXPECT_GT(image.getPixelAt(59, 12).getAlpha(), image.getPixelAt(0, 12).getAlpha() + 20);
        }
        else
        {
            EXPECT_GT(image.getPixelAt(59, 0).getAlpha(), 100);
            EXPECT_GT(image.getPixelAt(59, 23).getAlpha(), 100);
        }
    }
}

TEST(Themes, ButtonFaces)
{
    juce::TextButton button;
    button.setSize(60, 24);

    {
        const ThemeInUse theme("reverb");
        const auto image = render(button);
        EXPECT_TRUE(isNear(image.getPixelAt(30, 12), juce::Colours::white));
        EXPECT_LT(image.getPixelAt(30, 0).getBrightness(), 0.5f); // the outline
        EXPECT_LT(image.getPixelAt(3, 3).getBrightness(), 0.99f); // the corner of radius 10 cuts this
    }
    {
        const ThemeInUse theme("dark");
        const auto image = render(button);
        const auto face = Colour(0xffc3c6cc).withMultipliedSaturation(0.9f);
        const float contrast = 24.0f / 160.0f + 1.0f;
        EXPECT_TRUE(isNear(image.getPixelAt(30, 1), face.withMultipliedBrightness(contrast), 4));
        EXPECT_TRUE(isNear(image.getPixelAt(30, 22), face.withMultipliedBrightness(1.0f / contrast), 4));
    }
    {
        // Light falls from the top left: a raised button is dense at the bottom right, a pressed one at the
        // top left.
        const ThemeInUse theme("steel");
        const auto leaning = [&]
        {
            const auto image = render(button);
            return image.getPixelAt(57, 21).getAlpha() - image.getPixelAt(2, 2).getAlpha();
        };
        EXPECT_GT(leaning(), 60);
        button.setState(juce::Button::buttonDown);
        EXPECT_LT(leaning(), -60);
    }
}

TEST(Themes, TicksAreDiscsInRadioButtonsAndSquaresElsewhere)
{
    struct Row
    {
        const char* theme;
        float boxOfWidth;
    };

    for (const auto& [name, boxOfWidth] : {Row{"dark", 0.9f}, Row{"steel", 0.8f}, Row{"reverb", 0.8f}})
        for (const bool isRadio : {false, true})
        {
            SCOPED_TRACE(std::string(name) + (isRadio ? " radio" : ""));
            const ThemeInUse theme(name);
            juce::ToggleButton button;
            button.setRadioGroupId(isRadio ? 1 : 0, juce::dontSendNotification);
            button.setSize(120, 100);

            // A large box, to have room for the probes.
            const auto renderBox = [&](bool isTicked)
            {
                return draw(120, 100,
                            [&](auto& g) {
                                theme->drawTickBox(g, button, 10, 0, 100, 100, isTicked, true, false, false);
                            });
            };
            const auto plain = renderBox(false), ticked = renderBox(true);

            const float size = 100 * boxOfWidth;
            const int left = 10, top = juce::roundToInt(50 - size / 2);
            const int right = juce::roundToInt(left + size), tickLeft = juce::roundToInt(left + 0.2f * size);
            const auto isColoured = [&](int x, int y) { return ticked.getPixelAt(x, y).getAlpha() > 200; };

            EXPECT_EQ(plain.getPixelAt(right + 2, 50).getAlpha(), 0);
            EXPECT_GT(plain.getPixelAt(right - 3, 50).getAlpha(), 0);
            EXPECT_EQ(plain.getPixelAt(left + 6, top + 6).getAlpha() == 0, isRadio);

            EXPECT_TRUE(isColoured(tickLeft + 3, 50));
            EXPECT_FALSE(isColoured(tickLeft - 3, 50));
            EXPECT_EQ(isColoured(tickLeft + 4, juce::roundToInt(50 - 0.3f * size) + 4), !isRadio);
        }
}

TEST(Themes, Headers)
{
    const auto renderHeader = [](const ThemeInUse& theme, const juce::String& title)
    { return draw(640, 40, [&](auto& g) { theme->paintHeaderBackground(g, 640, 40, title); }); };

    for (const std::string name : {"dark", "steel", "reverb"})
    {
        SCOPED_TRACE(name);
        const ThemeInUse theme(name);
        const auto plain = renderHeader(theme, {}), titled = renderHeader(theme, "Ambrel");

        int first = 640, last = 0;
        forEachPixel(plain, plain.getBounds(),
                     [&](int x, int y, Colour colour)
                     {
                         if (difference(colour, titled.getPixelAt(x, y)) > 60)
                         {
                             first = juce::jmin(first, x);
                             last = juce::jmax(last, x);
                         }
                     });

        EXPECT_NEAR(first, 120, 3);
        EXPECT_NEAR(last + 1, 120 + theme->getTitleWidth("Ambrel"), 3.0);
    }

    const auto dark = renderHeader(ThemeInUse("dark"), {});
    EXPECT_GT(dark.getPixelAt(108, 20).getBrightness(), 0.8f); // within the tip of the logo's plate
    EXPECT_LT(dark.getPixelAt(108, 3).getBrightness(), 0.4f);  // above it
    EXPECT_TRUE(isNear(dark.getPixelAt(300, 0), Colour(0xff454954)));
    EXPECT_TRUE(isNear(dark.getPixelAt(300, 39), Colour(0xff454954).withMultipliedBrightness(0.9f)));
    EXPECT_TRUE(isNear(renderHeader(ThemeInUse("reverb"), {}).getPixelAt(639, 39), Colour(0xffdfe1db), 0));
}

TEST(Themes, Colours)
{
    struct Row
    {
        int id;
        juce::uint32 dark, steel, reverb;
    };

    const Row rows[] = {
        {0x1000281, 0xffffffff, 0xff000000, 0xff000000}, {0x1001300, 0xffc3c6cc, 0xffd2691e, 0xffd27900},
        {0x1001311, 0xffeeac18, 0xffd2691e, 0xffd27900}, {0x1001500, 0xffc3c6cc, 0x60ffffff, 0x60ffffff},
        {0x1001600, 0xffeeac18, 0xffffac63, 0xffffac63}, {0x1001700, 0x33c3c6cc, 0x20000000, 0x20000000},
        {0x1000100, 0xffc3c6cc, 0xffffffff, 0xffffffff}, {0x1000101, 0xffeeac18, 0xffffda73, 0xffd27900},
        {0x1000d00, 0xffeeac18, 0xffffffff, 0xffffffff}, {0x1000900, 0xffeeac18, 0xffd2691e, 0xffd2691e},
        {0x1000700, 0xff31343c, 0xffffffff, 0xffffffff}, {0x1000202, 0xffeeac18, 0xfff4a460, 0xfff4a460},
        {0x1000300, 0x26ffffff, 0x00000000, 0x00000000}, {0x2001302, 0xff4d4d4d, 0x26000000, 0x26000000},
        {0x2001301, 0xff4d4d4d, 0xff828282, 0xff828282}, {0x2001401, 0x26eeac18, 0x00000000, 0x00000000},
    };

    const DarkTheme dark;
    const SteelTheme steel;
    const ReverbTheme reverb;

    for (const auto& row : rows)
    {
        SCOPED_TRACE(juce::String::toHexString(row.id).toStdString());
        EXPECT_TRUE(isNear(dark.findColour(row.id), Colour(row.dark), 1));
        EXPECT_TRUE(isNear(steel.findColour(row.id), Colour(row.steel), 1));
        EXPECT_TRUE(isNear(reverb.findColour(row.id), Colour(row.reverb), 1));
    }
}

TEST(Themes, DarkScrollBarKeepsItsThumbOffTheEdges)
{
    const ThemeInUse theme("dark");
    juce::ScrollBar bar(true);
    const auto renderBar = [&](bool isVertical, int width, int height)
    {
        return draw(width, height,
                    [&](auto& g)
                    { theme->drawScrollbar(g, bar, 0, 0, width, height, isVertical, 50, 40, false, false); });
    };
    const auto isThumb = [](Colour colour) { return colour.getAlpha() == 255; };

    for (const bool isVertical : {true, false})
    {
        const auto image = isVertical ? renderBar(true, 20, 200) : renderBar(false, 200, 20);
        const auto at = [&](int along, int across)
        { return isVertical ? image.getPixelAt(across, along) : image.getPixelAt(along, across); };

        EXPECT_TRUE(isThumb(at(54, 4)) && isThumb(at(85, 14)));
        EXPECT_FALSE(isThumb(at(53, 4)) || isThumb(at(86, 14)) || isThumb(at(60, 3)) || isThumb(at(60, 15)));
    }
}

TEST(Themes, DarkWindowButtons)
{
    DarkTheme theme;

    for (const auto& [type, name] :
         {std::pair{1, "minimize"}, std::pair{2, "maximize"}, std::pair{4, "close"}})
    {
        const std::unique_ptr<juce::Button> button(theme.createDocumentWindowButton(type));
        ASSERT_NE(dynamic_cast<IconButton*>(button.get()), nullptr) << name;
        EXPECT_EQ(button->getName(), juce::String(name));

        // A glyph in light grey, and no button behind it.
        button->setLookAndFeel(&theme);
        button->setSize(24, 24);
        const auto image = render(*button);
        EXPECT_EQ(image.getPixelAt(1, 1).getAlpha(), 0);
        const auto isGrey = [](Colour colour) { return difference(colour, Colour(0xffc3c6cc)) <= 3; };
        EXPECT_GT(count(image, image.getBounds(), isGrey), 3) << name;
        button->setLookAndFeel(nullptr);
    }

    EXPECT_EQ(theme.createDocumentWindowButton(3), nullptr);
}

} // namespace
