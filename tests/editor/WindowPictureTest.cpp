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

TEST_F(WindowTest, pictureShowsTheControlsValues)
{
    using juce::Colours::white;
    const auto paleOrange = white.interpolatedWith(orange, 0.7f);
    const auto restOfRing = white.interpolatedWith(juce::Colours::black, 0.1f);
    const auto thumb = orange.withMultipliedSaturation(0.9f);

    for (const double position : {0.0, 0.25, 0.5, 0.75, 1.0})
    {
        SCOPED_TRACE(position);
        knob->setValue(knob->proportionOfLengthToValue(position), juce::dontSendNotification);
        fader->setValue(100.0 * position, juce::dontSendNotification);
        const auto image = picture();
        const auto isColour = [&](juce::Point<double> point, juce::Colour colour)
        { return difference(image.getPixelAt(point.toInt().x, point.toInt().y), colour) <= 12; };

        // The knob's centre, and clockwise from the top its way, four fifths of a turn.
        const auto pointOn = [&](double proportion, double radius)
        {
            const double angle = (1.2 + 1.6 * proportion) * juce::MathConstants<double>::pi;
            return juce::Point<double>(320.0 + radius * std::sin(angle), 308.0 - radius * std::cos(angle));
        };
        for (const double on : {0.03, 0.22, 0.28, 0.47, 0.53, 0.72, 0.78, 0.97})
            EXPECT_TRUE(isColour(pointOn(on, 131.0), on < position ? paleOrange : restOfRing)) << on;
        EXPECT_TRUE(isColour(pointOn(1.125, 131.0), white)) << "the gap at the bottom";
        for (const double away : {-0.06, 0.0, 0.06})
            EXPECT_EQ(isColour(pointOn(position + away, 82.8), thumb), away == 0.0) << "the pointer";

        // The fader's thumb goes from x = 73 to 559.
        for (const double away : {-12.0, 0.0, 12.0})
            EXPECT_EQ(isColour({73.0 + 486.0 * position + away, 461.0}, thumb), away == 0.0) << away;
    }
}

TEST_F(WindowTest, pictureHasIconsMarksBandAndWords)
{
    processor.addPreset("Hall", {});
    pressHeader("nextPresetButton");
    const auto image = picture();
    // What is written and drawn, and in which colour: no less than this many pixels of it.
    using juce::Rectangle, juce::Colours::black, juce::Colours::white;
    const juce::Colour grey(0xff424142);
    for (const auto& [what, area, colour, least] :
         {std::tuple{"word mark", Rectangle(244, 74, 130, 52), orange, 500},
          {"small mark", Rectangle(374, 74, 24, 52), grey, 90},
          {"logo", Rectangle(8, 4, 83, 32), grey, 40},
          {"title", Rectangle(120, 4, 84, 30), black, 150},
          {"band, left", Rectangle(0, 380, 185, 40), orange, 5000},
          {"band, right", Rectangle(455, 380, 185, 40), orange, 5000},
          {"above the band", Rectangle(0, 366, 185, 12), white, 2000},
          {"below the band", Rectangle(0, 424, 185, 12), white, 2000},
          {"the knob's notch", Rectangle(198, 381, 8, 8), white, 50},
          {"small", Rectangle(20, 390, 160, 20), white, 300},
          {"large", Rectangle(470, 390, 150, 20), white, 250},
          {"dry", Rectangle(20, 444, 40, 16), grey, 80},
          {"wet", Rectangle(576, 444, 44, 16), grey, 80}})
        EXPECT_GE(count(image, area, colour), least) << what;

    constexpr int frame = 6; // a button's edge is dark as well
    for (const auto* child : header->getChildren())
    {
        const auto inside = (child->getBounds() + header->getPosition()).reduced(frame);
        EXPECT_GE(count(image, inside, black, 100), 10) << child->getName();
    }
}
