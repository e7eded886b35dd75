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
    const auto colour = [this] { return knob->findColour(juce::Slider::rotarySliderFillColourId); };
    const auto mixColour = fader->findColour(juce::Slider::rotarySliderFillColourId);
    using Info = juce::AudioProcessorEditor::ParameterControlHighlightInfo;

    window->setControlHighlight(Info{0, true, juce::Colours::cyan});
    EXPECT_EQ(colour(), juce::Colours::cyan);
    window->setControlHighlight(Info{0, false, juce::Colours::cyan});
    EXPECT_EQ(colour(), orange);
    for (const int other : {-1, 1, 2, 99})
        window->setControlHighlight(Info{other, true, juce::Colours::cyan});
    EXPECT_EQ(colour(), orange);
    EXPECT_EQ(fader->findColour(juce::Slider::rotarySliderFillColourId), mixColour);
}

TEST_F(WindowTest, pictureHasStripMarkKnobBandAndFader)
{
    const auto paleOrange = juce::Colours::white.interpolatedWith(orange, 0.7f);
    const juce::Colour restOfRing = juce::Colours::white.interpolatedWith(juce::Colours::black, 0.1f);

    for (const double position : {0.0, 0.25, 0.5, 0.75, 1.0})
    {
        knob->setValue(knob->proportionOfLengthToValue(position), juce::dontSendNotification);
        fader->setValue(100.0 * position, juce::dontSendNotification);
        const auto image = picture();
        const auto isColour = [&](juce::Point<double> point, juce::Colour colour)
        {
            const auto found = image.getPixelAt(juce::roundToInt(point.x), juce::roundToInt(point.y));
            return difference(found, colour) <= 12;
        };

        EXPECT_TRUE(isColour({110, 20}, juce::Colour(0xffdfe1db))) << "the strip between logo and title";
        EXPECT_TRUE(isColour({20, 60}, juce::Colours::white));
        EXPECT_LT(image.getPixelAt(20, 40).getBrightness(), image.getPixelAt(20, 44).getBrightness())
            << "shadow";

        for (const double x : {5.0, 190.0, 450.0, 635.0})
            EXPECT_TRUE(isColour({x, 384}, orange)) << "band at " << x;
        for (const double x : {5.0, 224.0, 416.0, 635.0})
            EXPECT_TRUE(isColour({x, 417}, orange)) << "band at " << x;
        EXPECT_TRUE(isColour({5, 377}, juce::Colours::white));
        EXPECT_TRUE(isColour({5, 422}, juce::Colours::white));
        EXPECT_TRUE(isColour({201, 385}, juce::Colours::white)) << "the notch beside the ring";

        // The ring from 7 to 5 o'clock, its middle 0.95 of 138 pixels from the centre, and the pointer in it.
        const auto parameters = knob->getRotaryParameters();
        const auto pointOn = [&](double proportion, double radius)
        {
            const double angle = parameters.startAngleRadians +
                                 proportion * (parameters.endAngleRadians - parameters.startAngleRadians);
            return juce::Point<double>(320.0 + radius * std::sin(angle), 308.0 - radius * std::cos(angle));
        };
        for (double on = 0.03; on < 1.0; on += 0.05)
        {
            const bool isAtTheEdge = std::abs(on - position) < 0.02;
            EXPECT_TRUE(isAtTheEdge || isColour(pointOn(on, 131.0), on < position ? paleOrange : restOfRing))
                << on << " with the knob at " << position;
        }
        const auto thumb = knob->findColour(juce::Slider::thumbColourId).withMultipliedSaturation(0.9f);
        EXPECT_TRUE(isColour(pointOn(position, 138.0 * 0.6), thumb)) << position;
        EXPECT_FALSE(isColour(pointOn(position, 138.0 * 0.6 + 12.0), thumb)) << position;

        const auto thumbX = 64.0 + static_cast<double>(fader->getPositionOfValue(fader->getValue()));
        EXPECT_TRUE(isColour({thumbX, 461}, thumb)) << position;
    }

    const auto image = picture();
    int markPixels = 0;
    for (int y = 52; y < 168; ++y)
        for (int x = 244; x < 397; ++x)
            markPixels += difference(image.getPixelAt(x, y), orange) < 12 ? 1 : 0;
    EXPECT_GT(markPixels, 500) << "the word mark";
    EXPECT_GT(countDark(image, {8, 4, 83, 32}), 100) << "the maker's logo";
    for (const auto& words :
         {juce::Rectangle<int>(20, 390, 160, 20), juce::Rectangle<int>(470, 390, 150, 20)})
    {
        int white = 0;
        for (int y = words.getY(); y < words.getBottom(); ++y)
            for (int x = words.getX(); x < words.getRight(); ++x)
                white += image.getPixelAt(x, y) == juce::Colours::white ? 1 : 0;
        EXPECT_GT(white, 100) << "words in the band";
    }
    EXPECT_GT(countDark(image, {10, 440, 56, 24}), 60) << "DRY";
    EXPECT_GT(countDark(image, {570, 440, 60, 24}), 60) << "WET";
}

TEST_F(WindowTest, textsAreNotCut)
{
    const auto image = picture();
    const int titleWidth =
        juce::roundToInt(juce::Font(24.0f, juce::Font::bold).getStringWidthFloat("Ambrel"));
    auto& previous = findChild<juce::Button>(*header, "previousPresetButton");
    EXPECT_LE(120 + titleWidth, previous.getX());
    EXPECT_GT(countDark(image, {120 + titleWidth - 8, 4, 10, 30}), 5) << "the title's last letter";

    // The shipped presets' names, and those a user would think of, in the button's font.
    auto& name = findChild<juce::TextButton>(*header, "currentPresetButton");
    const auto font = window->getLookAndFeel().getTextButtonFont(name, name.getHeight());
    for (const auto* text : {"Default hall", "Reset", "Large bright chamber", "Vocal plate, short"})
        EXPECT_LE(font.getStringWidth(text), name.getWidth() - 8) << text;
}
