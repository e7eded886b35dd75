// The themes' knobs and faders, measured in rendered pictures: where things are, how large, in which colour.

#include "tests/editor/ThemePictures.h"

namespace
{

using namespace themeTest;

/** The default angles of the library's knobs, in radians clockwise from the top. */
constexpr double knobStart = 1.2 * juce::MathConstants<double>::pi;
constexpr double knobEnd = 2.8 * juce::MathConstants<double>::pi;

/** The colour on a knob at an angle and a distance from the centre. */
Colour onKnob(const juce::Image& image, double angle, double distance)
{
    return image.getPixelAt(juce::roundToInt(image.getWidth() * 0.5 + std::sin(angle) * distance - 0.5),
                            juce::roundToInt(image.getHeight() * 0.5 - std::cos(angle) * distance - 0.5));
}

std::unique_ptr<juce::Slider> makeSlider(juce::Slider::SliderStyle style, int width, int height, double value)
{
    auto slider = std::make_unique<juce::Slider>(style, juce::Slider::NoTextBox);
    slider->setSize(width, height);
    slider->setRange(0.0, 1.0);
    slider->setValue(value, juce::dontSendNotification);
    return slider;
}

struct KnobRow
{
    const char* theme;
    double innerProportion;
    Colour fill, rest;
    double pointerProportion; ///< of the ring's outer radius
};

const KnobRow knobRows[] = {
    {"reverb", 0.9, Colour(0xb3d27900), Colour(0x1a000000), 0.6},
    {"steel", 0.7, Colour(0xb3d2691e), Colour(0x1a000000), 0.45},
    {"dark", 0.8, Colour(0xb3eeac18), Colour(0x20000000), 0.5},
};

/** Distance from the centre at which the alpha last reaches half of what the ring has. */
double outerEdge(const juce::Image& image, double angle, double nearby)
{
    const int half = onKnob(image, angle, nearby - 4).getAlpha() / 2;
    double distance = nearby + 4;
    while (distance > 0 && onKnob(image, angle, distance).getAlpha() < half)
        distance -= 0.25;
    return distance;
}

TEST(ThemeSliders, KnobHasItsRingFilledUpToTheValueAndItsPointerThere)
{
    for (const auto& row : knobRows)
        for (const double value : {0.2, 0.5, 0.9})
        {
            SCOPED_TRACE(std::string(row.theme) + " at " + std::to_string(value));
            const ThemeInUse theme(row.theme);
            const auto slider = makeSlider(juce::Slider::RotaryVerticalDrag, 640, 280, value);
            const auto image = render(*slider);

            const double radius = 280 / 2 - 2, inner = radius * row.innerProportion;
            const double angle = knobStart + value * (knobEnd - knobStart);

            EXPECT_NEAR(outerEdge(image, angle - 0.1, radius), radius, 1.0);

            // The rim of a face may reach into the ring.
            for (const double distance : {inner + 4, radius - 2})
            {
                EXPECT_TRUE(isNear(onKnob(image, knobStart + 0.03, distance), row.fill));
                EXPECT_TRUE(isNear(onKnob(image, angle - 0.03, distance), row.fill));
                EXPECT_TRUE(isNear(onKnob(image, angle + 0.03, distance), row.rest));
                EXPECT_TRUE(isNear(onKnob(image, knobEnd - 0.03, distance), row.rest));
            }
            EXPECT_EQ(onKnob(image, juce::MathConstants<double>::pi, radius - 2).getAlpha(), 0);

            const auto pointer = onKnob(image, angle, row.pointerProportion * radius);
            const auto elsewhere = onKnob(image, angle + 1.0, row.pointerProportion * radius);
            EXPECT_FALSE(isNear(pointer, elsewhere, 40));
        }
}

// At the window's own size these two are measured in the window's picture.
TEST(ThemeSliders, ReverbPointerKeepsItsSizeAndFaderItsGroove)
{
    const ThemeInUse theme("reverb");
    const auto image = render(*makeSlider(juce::Slider::RotaryVerticalDrag, 120, 120, 0.5));
    const auto pointer = Colour(0xffd27900).withMultipliedSaturation(0.9f);
    for (const double offset : {-11.5, -8.5, 0.0, 8.5, 11.5})
        EXPECT_EQ(isNear(onKnob(image, 0.0, 0.6 * 58.0 + offset), pointer), std::abs(offset) < 10.0)
            << offset;

    // The groove is 9 high, and darker at the top.
    const auto fader = render(*makeSlider(juce::Slider::LinearHorizontal, 504, 32, 0.0));
    const auto alpha = [&](int y) { return int(fader.getPixelAt(250, y).getAlpha()); };
    EXPECT_EQ(alpha(10), 0);
    EXPECT_GT(alpha(13), alpha(18));
    EXPECT_GT(alpha(18), 0);
    EXPECT_EQ(alpha(21), 0);
}

TEST(ThemeSliders, DisabledKnobLosesItsColour)
{
    for (const auto& row : knobRows)
    {
        SCOPED_TRACE(row.theme);
        const ThemeInUse theme(row.theme);
        const auto slider = makeSlider(juce::Slider::RotaryVerticalDrag, 280, 280, 0.5);
        slider->setEnabled(false);
        const auto image = render(*slider);

        EXPECT_TRUE(isNear(onKnob(image, knobStart + 0.5, 136.0), Colour(0x80808080)));
        EXPECT_TRUE(isNear(onKnob(image, knobEnd - 0.5, 136.0), row.rest));
    }

    // The dark theme leaves the pointer out.
    const ThemeInUse theme("dark");
    const auto slider = makeSlider(juce::Slider::RotaryVerticalDrag, 280, 280, 0.5);
    EXPECT_LT(onKnob(render(*slider), 0.0, 69.0).getBrightness(), 0.05f);
    slider->setEnabled(false);
    EXPECT_GT(onKnob(render(*slider), 0.0, 69.0).getBrightness(), 0.6f);
}

TEST(ThemeSliders, SteelKnobIsShadedByItsPlaceInItsComponent)
{
    const ThemeInUse theme("steel");

    for (const int width : {100, 160})
    {
        const auto image = render(*makeSlider(juce::Slider::RotaryVerticalDrag, width, 100, 0.5));
        const double d = 2 * 48 * 0.7, left = width * 0.5 - d / 2, top = 50 - d / 2;

        // Position of the knob's centre along the gradient from (left, top) to (left + d, left + 0.3 d).
        const double dx = d, dy = left + 0.3 * d - top;
        const double t = (d / 2 * dx + d / 2 * dy) / (dx * dx + dy * dy);
        const auto expected = juce::Colours::grey.withAlpha(static_cast<float>(0.3 + 0.7 * t));
        EXPECT_TRUE(isNear(onKnob(image, 0.0, 0.0), expected, 5)) << width;
    }
}

TEST(ThemeSliders, DarkFaderIsFilledFromItsLowEnd)
{
    const ThemeInUse theme("dark");
    const auto isAmber = [](Colour colour)
    { return colour.getRed() > colour.getBlue() + 80 && colour.getAlpha() > 170; };

    const auto horizontal = render(*makeSlider(juce::Slider::LinearHorizontal, 200, 32, 0.5));
    EXPECT_TRUE(isAmber(horizontal.getPixelAt(40, 16)));
    EXPECT_FALSE(isAmber(horizontal.getPixelAt(160, 16)));
    EXPECT_GT(horizontal.getPixelAt(160, 11).getAlpha(), horizontal.getPixelAt(160, 21).getAlpha());

    const auto vertical = render(*makeSlider(juce::Slider::LinearVertical, 32, 200, 0.5));
    EXPECT_TRUE(isAmber(vertical.getPixelAt(16, 160)));
    EXPECT_FALSE(isAmber(vertical.getPixelAt(16, 40)));

    struct Row
    {
        int width, height, radius;
    };
    for (const auto& [width, height, radius] :
         {Row{200, 24, 14}, Row{200, 23, 13}, Row{200, 10, 7}, Row{10, 200, 7}, Row{4, 20, 4}})
    {
        const auto slider = makeSlider(juce::Slider::LinearHorizontal, width, height, 0.5);
        EXPECT_EQ(theme->getSliderThumbRadius(*slider), radius) << width << " x " << height;
    }
}

} // namespace
