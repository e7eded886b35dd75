#include "editor/themes/ReverbTheme.h"
#include "tests/editor/WindowTest.h"

namespace
{
const juce::Colour orange(0xffd27900);
} // namespace

TEST_F(WindowTest, oneLookWhateverTheSettingsSay)
{
    for (const int stored : {0, 1, 5})
    {
        processor.settings->setValue("ThemeId", stored);
        open();
        EXPECT_NE(dynamic_cast<ReverbTheme*>(&window->getLookAndFeel()), nullptr);
        EXPECT_EQ(&juce::LookAndFeel::getDefaultLookAndFeel(), &window->getLookAndFeel());
    }

    // Two windows: closing one of them, in either order, leaves no theme that is gone.
    AmbrelWithPresets other;
    auto second = std::make_unique<AmbrelAudioProcessorEditor>(&other);
    window.reset();
    EXPECT_EQ(&juce::LookAndFeel::getDefaultLookAndFeel(), &second->getLookAndFeel());
    second.reset();
    EXPECT_EQ(dynamic_cast<BaseTheme*>(&juce::LookAndFeel::getDefaultLookAndFeel()), nullptr);
}

TEST_F(WindowTest, controlSurfaceHighlightsTheKnobAlone)
{
    constexpr auto colourId = juce::Slider::rotarySliderFillColourId;
    const auto before = fader->findColour(colourId);
    for (const int index : {-1, 1, 2, 99, 0})
    {
        window->setControlHighlight({index, true, juce::Colours::cyan});
        EXPECT_EQ(knob->findColour(colourId), index == 0 ? juce::Colours::cyan : orange) << index;
        EXPECT_EQ(fader->findColour(colourId), before);
    }
    window->setControlHighlight({0, false, juce::Colours::cyan});
    EXPECT_EQ(knob->findColour(colourId), orange);
}

TEST_F(WindowTest, pictureShowsTheControlsValues)
{
    using juce::Colours::white;
    const auto paleOrange = white.interpolatedWith(orange, 0.7f);
    const auto restOfRing = white.interpolatedWith(juce::Colours::black, 0.1f);
    const auto thumb = orange.withMultipliedSaturation(0.9f);
    const auto face = white.withBrightness(0.9f), edge = white.withBrightness(0.8f);

    for (const double position : {0.0, 0.25, 0.5, 0.75, 1.0})
    {
        SCOPED_TRACE(position);
        knob->setValue(knob->proportionOfLengthToValue(position), juce::dontSendNotification);
        fader->setValue(100.0 * position, juce::dontSendNotification);
        const auto image = picture();
        const auto isColour = [&](juce::Point<double> point, juce::Colour colour)
        {
            const auto found = image.getPixelAt(static_cast<int>(point.x), static_cast<int>(point.y));
            return difference(found, colour) <= 12;
        };

        // The knob's centre, and clockwise from the top its way, four fifths of a turn.
        const auto pointOn = [&](double proportion, double radius)
        {
            const double angle = (1.2 + 1.6 * proportion) * juce::MathConstants<double>::pi;
            return juce::Point<double>(320.0 + radius * std::sin(angle), 308.0 - radius * std::cos(angle));
        };
        for (double on = 0.03; on < 1.0; on += 0.05)
            for (const double radius : {126.5, 136.0})
                EXPECT_TRUE(std::abs(on - position) < 0.02 ||
                            isColour(pointOn(on, radius), on < position ? paleOrange : restOfRing))
                    << on << " " << radius;
        for (const double on : {-0.015, 0.3, 0.6, 1.015})
            for (const double radius : {123.0, 140.0})
                EXPECT_TRUE(isColour(pointOn(on, radius), white)) << "beside the ring " << on;
        EXPECT_TRUE(isColour(pointOn(1.125, 130.0), white)) << "the gap at the bottom";

        // The face rises to an edge; the pointer of 20 pixels stands on it.
        EXPECT_TRUE(isColour(pointOn(position + 0.5, 95.0), face));
        EXPECT_TRUE(isColour(pointOn(position + 0.5, 112.0), edge));
        for (const double offset : {-12.0, -8.0, 0.0, 8.0, 12.0})
            EXPECT_EQ(isColour(pointOn(position, 82.8 + offset), thumb), std::abs(offset) < 10.0) << offset;

        // The fader's thumb of 14 pixels goes from x = 73 to 559 along a groove of 9, darker at the top.
        const double thumbX = 73.0 + 486.0 * position;
        for (const double offset : {-5.0, 0.0, 5.0})
            EXPECT_TRUE(isColour({thumbX + offset, 461.0 + offset}, thumb)) << offset;
        EXPECT_FALSE(isColour({thumbX, 452.0}, thumb));
        const int besideThumb = static_cast<int>(thumbX) + (position < 0.5 ? 9 : -9);
        EXPECT_FALSE(isColour({static_cast<double>(besideThumb), 461.0}, thumb));
        const auto brightness = [&](int y) { return image.getPixelAt(besideThumb, y).getBrightness(); };
        EXPECT_LT(brightness(458), brightness(463));
        EXPECT_LT(brightness(463), 1.0f);
        for (const int beside : {455, 466})
            EXPECT_EQ(brightness(beside), 1.0f);
    }
}

TEST_F(WindowTest, pictureHasStripMarksBandAndWords)
{
    using juce::Colours::white;
    const auto image = picture();
    EXPECT_EQ(image.getPixelAt(110, 39), juce::Colour(0xffdfe1db)) << "between logo and title";
    EXPECT_LE(difference(image.getPixelAt(20, 40), white.darker(0.21f)), 24) << "the shadow's dark end";
    EXPECT_LT(image.getPixelAt(20, 41).getBrightness(), image.getPixelAt(20, 44).getBrightness());
    EXPECT_EQ(image.getPixelAt(20, 46), white);

    struct Point
    {
        int x, y;
        bool isInBand;
    };
    for (const auto& [x, y, isInBand] : {Point{5, 380, true},
                                         {190, 384, true},
                                         {224, 417, true},
                                         {5, 419, true},
                                         {5, 379, false},
                                         {201, 385, false},
                                         {5, 420, false}})
        for (const int side : {x, 639 - x})
            EXPECT_LE(difference(image.getPixelAt(side, y), isInBand ? orange : white), 12)
                << side << " " << y;

    // What is written and drawn, and in which colour: no less than this many pixels of it.
    struct Row
    {
        const char* what;
        juce::Rectangle<int> area;
        juce::Colour colour;
        int least;
    };
    const juce::Colour grey(0xff424142);
    for (const auto& [what, area, colour, least] :
         {Row{"word mark", {244, 74, 130, 52}, orange, 500}, Row{"small mark", {374, 74, 24, 52}, grey, 90},
          Row{"maker's logo", {8, 4, 83, 32}, grey, 40},
          Row{"title", {120, 4, 84, 30}, juce::Colours::black, 150},
          Row{"small", {20, 390, 160, 20}, white, 300}, Row{"large", {470, 390, 150, 20}, white, 250},
          Row{"dry", {20, 444, 40, 16}, grey, 80}, Row{"wet", {576, 444, 44, 16}, grey, 80}})
    {
        const auto isIt = [wanted = colour](juce::Colour found) { return difference(found, wanted) < 12; };
        EXPECT_GE(count(image, area, isIt), least) << what;
    }
}
