// What the themes draw, measured in rendered pictures: where things are, how large, in which colour.

#include "editor/IconButton.h"
#include "tests/editor/ThemePictures.h"

namespace
{

using namespace themeTest;

constexpr const char* themeNames[] = {"dark", "steel", "reverb"};

/** The default angles of the library's knobs, in radians clockwise from the top. */
constexpr double knobStart = 1.2 * juce::MathConstants<double>::pi;
constexpr double knobEnd = 2.8 * juce::MathConstants<double>::pi;

/** The colour on a knob at an angle and a distance from the centre. */
Colour onKnob(const juce::Image& image, double angle, double distance)
{
    return image.getPixelAt(juce::roundToInt(image.getWidth() * 0.5 + std::sin(angle) * distance - 0.5),
                            juce::roundToInt(image.getHeight() * 0.5 - std::cos(angle) * distance - 0.5));
}

/** Distance from the centre at which the alpha last reaches half of what the ring has. */
double outerEdge(const juce::Image& image, double angle, double nearby)
{
    const int half = onKnob(image, angle, nearby - 4).getAlpha() / 2;
    double distance = nearby + 4;
    while (distance > 0 && onKnob(image, angle, distance).getAlpha() < half)
        distance -= 0.25;
    return distance;
}

juce::Image renderSlider(juce::Slider::SliderStyle style, int width, int height, double value,
                         bool isEnabled = true)
{
    juce::Slider slider(style, juce::Slider::NoTextBox);
    slider.setSize(width, height);
    slider.setRange(0.0, 1.0);
    slider.setValue(value, juce::dontSendNotification);
    slider.setEnabled(isEnabled);
    return render(slider);
}

TEST(Themes, KnobHasItsRingFilledUpToTheValueAndItsPointerThere)
{
    struct Row
    {
        const char* theme;
        double innerProportion;
        Colour fill, rest;
        double pointerProportion; ///< of the ring's outer radius
        bool isPointerAlwaysThere;
    };
    const Row rows[] = {
        {"reverb", 0.9, Colour(0xb3d27900), Colour(0x1a000000), 0.6, true},
        {"steel", 0.7, Colour(0xb3d2691e), Colour(0x1a000000), 0.45, true},
        {"dark", 0.8, Colour(0xb3eeac18), Colour(0x20000000), 0.5, false},
    };
    for (const auto& row : rows)
        for (const double value : {0.2, 0.5, 0.9})
            for (const bool isEnabled : {true, false})
            {
                SCOPED_TRACE(std::string(row.theme) + " at " + std::to_string(value));
                const ThemeInUse theme(row.theme);
                const auto image = renderSlider(juce::Slider::RotaryVerticalDrag, 640, 280, value, isEnabled);

                const double radius = 280 / 2 - 2, inner = radius * row.innerProportion;
                const double angle = knobStart + value * (knobEnd - knobStart);
                const auto fill = isEnabled ? row.fill : Colour(0x80808080);
                EXPECT_NEAR(outerEdge(image, angle - 0.1, radius), radius, 1.0);

                // The rim of a face may reach into the ring.
                for (const double distance : {inner + 4, radius - 2})
                {
                    EXPECT_TRUE(isNear(onKnob(image, knobStart + 0.03, distance), fill));
                    EXPECT_TRUE(isNear(onKnob(image, angle - 0.03, distance), fill));
                    EXPECT_TRUE(isNear(onKnob(image, angle + 0.03, distance), row.rest));
                    EXPECT_TRUE(isNear(onKnob(image, knobEnd - 0.03, distance), row.rest));
                }
                EXPECT_EQ(onKnob(image, juce::MathConstants<double>::pi, radius - 2).getAlpha(), 0);

                const auto pointer = onKnob(image, angle, row.pointerProportion * radius);
                const auto elsewhere = onKnob(image, angle + 1.0, row.pointerProportion * radius);
                EXPECT_EQ(isNear(pointer, elsewhere, 40), !isEnabled && !row.isPointerAlwaysThere)
                    << isEnabled;
            }
}

TEST(Themes, DarkFaderIsFilledFromItsLowEnd)
{
    const ThemeInUse theme("dark");
    const auto isAmber = [](Colour colour)
    { return colour.getRed() > colour.getBlue() + 80 && colour.getAlpha() > 170; };

    const auto horizontal = renderSlider(juce::Slider::LinearHorizontal, 200, 32, 0.5);
    EXPECT_TRUE(isAmber(horizontal.getPixelAt(40, 16)));
    EXPECT_FALSE(isAmber(horizontal.getPixelAt(160, 16)));
    EXPECT_GT(horizontal.getPixelAt(160, 11).getAlpha(), horizontal.getPixelAt(160, 21).getAlpha());

    const auto vertical = renderSlider(juce::Slider::LinearVertical, 32, 200, 0.5);
    EXPECT_TRUE(isAmber(vertical.getPixelAt(16, 160)));
    EXPECT_FALSE(isAmber(vertical.getPixelAt(16, 40)));
}

TEST(Themes, ButtonsAnswerToTheMouseAndJoinTheirNeighbours)
{
    for (const auto* name : themeNames)
    {
        SCOPED_TRACE(name);
        const ThemeInUse theme(name);
        juce::TextButton button;
        button.setSize(60, 24);
        const auto renderIn = [&](juce::Button::ButtonState state)
        {
            button.setState(state);
            return render(button);
        };
        const auto normal = renderIn(juce::Button::buttonNormal), over = renderIn(juce::Button::buttonOver),
                   down = renderIn(juce::Button::buttonDown);
        const auto middle = [](const juce::Image& image)
        { return image.getPixelAt(30, 12).getPerceivedBrightness(); };
        // Light falls from the top left: a raised button is dense at the bottom right, an engraved one at the
        // top left.
        const auto leaning = [](const juce::Image& image)
        { return image.getPixelAt(57, 21).getAlpha() - image.getPixelAt(2, 2).getAlpha(); };

        button.setConnectedEdges(juce::Button::ConnectedOnRight);
        const auto joined = renderIn(juce::Button::buttonNormal);
        EXPECT_GT(middle(normal), middle(over) + 0.03f);
        EXPECT_LT(joined.getPixelAt(0, 0).getAlpha(), 60);
        if (name == std::string("steel"))
        {
            EXPECT_GT(leaning(normal), 60);
            EXPECT_LT(leaning(down), -60);
            EXPECT_GT(joined.getPixelAt(59, 12).getAlpha(), joined.getPixelAt(0, 12).getAlpha() + 20);
        }
        else
        {
            EXPECT_GT(middle(over), middle(down) + 0.03f);
            EXPECT_GT(joined.getPixelAt(59, 0).getAlpha(), 100);
            EXPECT_GT(joined.getPixelAt(59, 23).getAlpha(), 100);
        }
        if (name == std::string("reverb"))
        {
            EXPECT_TRUE(isNear(normal.getPixelAt(30, 12), juce::Colours::white));
            EXPECT_LT(normal.getPixelAt(30, 0).getBrightness(), 0.5f) << "the outline";
            EXPECT_LT(normal.getPixelAt(3, 3).getBrightness(), 0.99f) << "the corner of radius 10 cuts this";
        }
    }
}

TEST(Themes, TicksAreDiscsInRadioButtonsAndSquaresElsewhere)
{
    for (const auto& [name, boxOfWidth] : {std::pair{"dark", 0.9f}, {"steel", 0.8f}, {"reverb", 0.8f}})
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

TEST(Themes, TitleStandsAt120AndIsAsWideAsTold)
{
    for (const auto* name : themeNames)
    {
        const ThemeInUse theme(name);
        const auto renderHeader = [&](const juce::String& title)
        { return draw(640, 40, [&](auto& g) { theme->paintHeaderBackground(g, 640, 40, title); }); };

        const auto ink = differences(renderHeader({}), renderHeader("Ambrel"), 60).getBounds();
        EXPECT_NEAR(ink.getX(), 120, 3) << name;
        EXPECT_NEAR(ink.getRight(), 120 + theme->getTitleWidth("Ambrel"), 3.0) << name;
    }
}

TEST(Themes, DarkWindowButtonsAreGlyphsAlone)
{
    DarkTheme theme;
    for (const auto& [type, name] : {std::pair{1, "minimize"}, {2, "maximize"}, {4, "close"}})
    {
        const std::unique_ptr<juce::Button> button(theme.createDocumentWindowButton(type));
        ASSERT_NE(dynamic_cast<IconButton*>(button.get()), nullptr) << name;
        EXPECT_EQ(button->getName(), juce::String(name));

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
