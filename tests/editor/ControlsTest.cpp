#include "editor/FontAwesomeIcons.h"
#include "editor/FontAwesomeTypeface.h"
#include "editor/IconButton.h"
#include "editor/KeyboardSteps.h"
#include "editor/ParameterSlider.h"
#include "tests/editor/EditorTools.h"

namespace
{
constexpr int leftButton = juce::ModifierKeys::leftButtonModifier;
constexpr int ctrl = juce::ModifierKeys::ctrlModifier;
constexpr int alt = juce::ModifierKeys::altModifier;
constexpr int shift = juce::ModifierKeys::shiftModifier;

/** Longer than the shortest time between two fine steps, which is 50 ms. */
void waitForFineStep() { juce::Thread::sleep(60); }

/** What a listener and the host hear. */
class Ear : public juce::Slider::Listener, public juce::AudioProcessorListener
{
public:
    void sliderValueChanged(juce::Slider*) override {}
    void sliderDragStarted(juce::Slider*) override { ++drags; }

    void audioProcessorParameterChanged(juce::AudioProcessor*, int index, float value) override
    {
        heard << index << "=" << juce::String(value, 3) << " ";
    }
    void audioProcessorChanged(juce::AudioProcessor*, const ChangeDetails&) override {}
    void audioProcessorParameterChangeGestureBegin(juce::AudioProcessor*, int index) override
    {
        heard << "begin" << index << " ";
    }
    void audioProcessorParameterChangeGestureEnd(juce::AudioProcessor*, int index) override
    {
        heard << "end" << index << " ";
    }

    juce::String heard;
    int drags = 0;
};

class Knob : public ParameterSlider
{
public:
    explicit Knob(SliderStyle style = RotaryVerticalDrag) : ParameterSlider("knob")
    {
        setSliderStyle(style);
        setTextBoxStyle(NoTextBox, false, 0, 0);
        setRange(0.0, 10.0, 0.0);
        setValue(5.0, juce::dontSendNotification);
        setSize(100, 100);
        setFineStep(0.5f);
    }

    void press(juce::Point<float> position, int modifiers = leftButton)
    {
        mouseDown(mouseEvent(*this, position, modifiers));
    }
    void drag(juce::Point<float> position, int modifiers)
    {
        mouseDrag(mouseEvent(*this, position, modifiers));
    }

    /** Turns the wheel once the time for the next fine step has come. */
    double turn(float delta, int modifiers, bool isReversed = false, bool isInertial = false)
    {
        waitForFineStep();
        const double before = getValue();
        mouseWheelMove(mouseEvent(*this, {50.0f, 50.0f}, modifiers),
                       {0.0f, delta, isReversed, false, isInertial});
        return getValue() - before;
    }
};
} // namespace

TEST(ParameterSliderTest, fineDragIsAQuarterStepPerPixelAlongItsAxis)
{
    struct Row
    {
        juce::Slider::SliderStyle style;
        juce::Point<float> movement;
        double change;
    };
    const Row rows[] = {{juce::Slider::RotaryVerticalDrag, {30.0f, -8.5f}, 1.0625},
                        {juce::Slider::RotaryVerticalDrag, {0.0f, 4.0f}, -0.5},
                        {juce::Slider::LinearVertical, {9.0f, -2.0f}, 0.25},
                        {juce::Slider::RotaryHorizontalDrag, {-8.0f, 30.0f}, -1.0},
                        {juce::Slider::LinearHorizontal, {12.0f, 1.0f}, 1.5}};

    for (const auto& row : rows)
        for (const int modifier : {ctrl, alt, alt | shift})
        {
            Knob knob(row.style);
            const juce::Point<float> start(50.0f, 50.0f);
            knob.press(start);
            const double before = knob.getValue();
            waitForFineStep();
            knob.drag(start + row.movement, leftButton | modifier);
            EXPECT_NEAR(knob.getValue() - before, row.change, 1.0e-6) << row.style << " with " << modifier;

            // No movement, no step; and the way is counted from the last step.
            waitForFineStep();
            knob.drag({std::floor(start.x + row.movement.x), std::floor(start.y + row.movement.y)},
                      leftButton | modifier);
            EXPECT_NEAR(knob.getValue() - before, row.change, 0.13) << row.style;
        }
}

TEST(ParameterSliderTest, fineStepsComeAtMostEvery50MillisecondsAndLoseNoWay)
{
    Knob knob;
    const double pressed = juce::Time::getMillisecondCounterHiRes();
    knob.press({50.0f, 50.0f});
    knob.drag({50.0f, 46.0f}, leftButton | ctrl);
    const bool wasInTime =
        juce::Time::getMillisecondCounterHiRes() - pressed <= 50.0; // always, but on a busy machine
    EXPECT_TRUE(!wasInTime || knob.getValue() == 5.0);

    waitForFineStep();
    knob.drag({50.0f, 42.0f}, leftButton | ctrl);
    EXPECT_NEAR(knob.getValue(), 6.0, 1.0e-6);

    // Without the modifier, or with shift, the library drags from where the button went down: 250 pixels a range.
    knob.drag({50.0f, 25.0f}, leftButton);
    EXPECT_NEAR(knob.getValue(), 6.0, 1.0e-6);
    knob.drag({50.0f, 0.0f}, leftButton | shift);
    EXPECT_NEAR(knob.getValue(), 7.0, 1.0e-6);
}

TEST(ParameterSliderTest, fineWheelMovesByOneStepAndSwallowsItsTail)
{
    Knob knob;
    EXPECT_NEAR(knob.turn(0.01f, ctrl), 0.5, 1.0e-6);
    EXPECT_NEAR(knob.turn(3.0f, alt), 0.5, 1.0e-6);
    EXPECT_NEAR(knob.turn(-3.0f, ctrl), -0.5, 1.0e-6);
    EXPECT_NEAR(knob.turn(0.0f, ctrl), 0.5, 1.0e-6) << "no distance counts as upwards";
    EXPECT_NEAR(knob.turn(0.0f, ctrl, true), -0.5, 1.0e-6);
    EXPECT_NEAR(knob.turn(-1.0f, ctrl, true), 0.5, 1.0e-6);
    EXPECT_EQ(knob.turn(1.0f, ctrl, false, true), 0.0) << "inertia makes no fine steps";

    EXPECT_EQ(knob.turn(1.0f, 0, false, true), 0.0) << "the tail of a fine flick, the key let go";
    EXPECT_GT(knob.turn(0.1f, 0), 0.0);
    EXPECT_GT(knob.turn(0.1f, 0, false, true), 0.0) << "the tail of a plain flick";
    EXPECT_GT(knob.turn(0.1f, shift), 0.0);

    knob.setEnabled(false);
    EXPECT_EQ(knob.turn(1.0f, ctrl), 0.0);
}

TEST(ParameterSliderTest, onlyABoundSliderReachesEngineAndHost)
{
    TestPlugIn plugIn;
    Ear host;
    plugIn.juce::AudioProcessor::addListener(&host);

    Knob knob;
    knob.press({50.0f, 50.0f});
    knob.setValue(7.0, juce::sendNotificationSync);
    knob.mouseUp(mouseEvent(knob, {50.0f, 50.0f}, 0));
    EXPECT_EQ(knob.getPublicParameterIndex(), -1);
    EXPECT_EQ(host.heard, "");

    knob.bind(&plugIn, &plugIn.engine, 0, 0, false);
    EXPECT_EQ(knob.getPublicParameterIndex(), 0);
    knob.press({50.0f, 50.0f});
    knob.setValue(9.0, juce::sendNotificationSync);
    knob.mouseUp(mouseEvent(knob, {50.0f, 50.0f}, 0));
    EXPECT_EQ(host.heard, "begin0 0=0.090 end0 ");
    EXPECT_EQ(plugIn.engine.values[0], 9.0f);
    EXPECT_TRUE(plugIn.engine.pending);

    knob.bind(&plugIn, &plugIn.engine, 0, 0, true);
    knob.setValue(8.0, juce::sendNotificationSync);
    EXPECT_FALSE(plugIn.engine.pending);

    knob.setPassToEngine(false);
    knob.setValue(2.0, juce::sendNotificationSync);
    EXPECT_EQ(plugIn.engine.values[0], 8.0f);
    plugIn.juce::AudioProcessor::removeListener(&host);
}

TEST(KeyboardStepsTest, movesAlongTheWayAndPassesOtherKeysOn)
{
    Knob knob;
    knob.setRange(0.5, 8.0, 0.01);
    knob.setSkewFactor(0.5);
    knob.setValue(0.5, juce::dontSendNotification);
    Ear ear;
    knob.addListener(&ear);
    KeyboardSteps keys(knob);
    const auto press = [&](int code, int modifiers = 0)
    { return keys.keyPressed(juce::KeyPress(code, juce::ModifierKeys(modifiers), 0), &knob); };
    const auto position = [&] { return knob.valueToProportionOfLength(knob.getValue()); };

    EXPECT_TRUE(press(juce::KeyPress::upKey));
    EXPECT_EQ(knob.getValue(), 0.51) << "one interval, where that is more than 1 % of the way";
    EXPECT_TRUE(press(juce::KeyPress::endKey));
    EXPECT_EQ(knob.getValue(), 8.0);
    EXPECT_TRUE(press(juce::KeyPress::rightKey));
    EXPECT_EQ(knob.getValue(), 8.0);
    EXPECT_TRUE(press(juce::KeyPress::pageDownKey));
    EXPECT_NEAR(position(), 0.9, 0.002);
    EXPECT_TRUE(press(juce::KeyPress::leftKey));
    EXPECT_NEAR(position(), 0.89, 0.002);
    EXPECT_TRUE(press(juce::KeyPress::homeKey));
    EXPECT_EQ(knob.getValue(), 0.5);
    EXPECT_EQ(ear.drags, 1) << "a quick row of keys is one move";

    for (const int code : {int(' '), int(juce::KeyPress::returnKey), int(juce::KeyPress::tabKey), int('z')})
        EXPECT_FALSE(press(code)) << code;
    EXPECT_FALSE(press(juce::KeyPress::upKey, ctrl));
    knob.setEnabled(false);
    EXPECT_FALSE(press(juce::KeyPress::upKey));
    EXPECT_EQ(knob.getValue(), 0.5);
}

TEST(IconButtonTest, firstIconPresentDecidesTheWidth)
{
    IconButton button("name", "tooltip");
    EXPECT_EQ(button.getIconWidth(20), 0);
    EXPECT_EQ(button.getTooltip(), "tooltip");

    const auto glyph = juce::String::fromUTF8(FontAwesomeIcons::ARROWS_ALT);
    button.setIconFromFontAwesome(glyph);
    EXPECT_EQ(button.getIconWidth(20), juce::Font(FontAwesome_ptr()).withHeight(20.0f).getStringWidth(glyph));
    EXPECT_GT(button.getIconWidth(20), 8);

    auto rectangle = std::make_unique<juce::DrawableRectangle>();
    rectangle->setRectangle(juce::Rectangle<float>(0.0f, 0.0f, 30.0f, 20.0f));
    rectangle->setFill(juce::Colours::black);
    auto* const drawable = rectangle.get();
    button.setIcon(rectangle.release());
    EXPECT_EQ(button.getIconWidth(15), 15 * drawable->getWidth() / drawable->getHeight());
    button.setIcon(drawable); // the same one again must not be deleted
    EXPECT_EQ(button.getIconWidth(30), 30 * drawable->getWidth() / drawable->getHeight());

    button.setIconImage(juce::Image(juce::Image::ARGB, 10, 30, true));
    EXPECT_EQ(button.getIconWidth(20), 6);
}

TEST(IconButtonTest, iconTakesTheTextsColourAndStaysBetweenTheMargins)
{
    const juce::Colour offColour(0xff2040c0), onColour(0xffc04020), face(0xffe0e0e0);

    struct Row
    {
        IconButton::ButtonStyle style;
        bool toggled, enabled;
        juce::Colour expected;
    };
    const Row rows[] = {
        {IconButton::iconCentred, false, true, offColour},
        {IconButton::iconCentred, true, true, onColour},
        {IconButton::iconOnly, false, true, offColour},
        {IconButton::iconOnly, false, false, offColour.interpolatedWith(juce::Colours::white, 0.5f)}};

    for (const auto& row : rows)
        for (const bool isGlyph : {false, true})
        {
            IconButton button("name", {});
            button.setSize(60, 40);
            button.setColour(juce::TextButton::textColourOffId, offColour);
            button.setColour(juce::TextButton::textColourOnId, onColour);
            button.setColour(juce::TextButton::buttonColourId, face);
            button.setColour(juce::TextButton::buttonOnColourId, face);
            button.setButtonStyle(row.style);
            button.setToggleState(row.toggled, juce::dontSendNotification);
            button.setEnabled(row.enabled);
            if (isGlyph)
            {
                button.setIconFromFontAwesome(juce::String::fromUTF8(FontAwesomeIcons::SQUARE));
            }
            else
            {
                auto square = std::make_unique<juce::DrawableRectangle>();
                square->setRectangle(juce::Rectangle<float>(0.0f, 0.0f, 20.0f, 20.0f));
                square->setFill(juce::Colours::black);
                button.setIcon(square.release());
            }

            juce::Image picture(juce::Image::RGB, 60, 40, true);
            juce::Graphics g(picture);
            g.fillAll(juce::Colours::white);
            button.paintButton(g, false, false);

            EXPECT_LE(difference(picture.getPixelAt(30, 21), row.expected), 2)
                << row.style << " " << isGlyph << " " << picture.getPixelAt(30, 21).toString();
            EXPECT_GT(difference(picture.getPixelAt(30, 8), row.expected), 30) << "above the icon";
            EXPECT_GT(difference(picture.getPixelAt(16, 20), row.expected), 30) << "left of the icon";
            if (row.style == IconButton::iconOnly)
                EXPECT_EQ(picture.getPixelAt(5, 20), juce::Colours::white) << "no face behind the icon";
            else
                EXPECT_NE(picture.getPixelAt(5, 20), juce::Colours::white);
        }
}

TEST(IconButtonTest, textStandsRightOfTheIcon)
{
    IconButton button("name", {});
    button.setSize(120, 24);
    button.setButtonText("Text");
    button.setButtonStyle(IconButton::iconWithText);
    button.setIconFromFontAwesome(juce::String::fromUTF8(FontAwesomeIcons::SQUARE));
    button.setColour(juce::TextButton::buttonColourId, juce::Colours::white);
    button.setColour(juce::TextButton::textColourOffId, juce::Colours::black);
    button.setColour(juce::TextButton::textColourOnId, juce::Colours::black);

    juce::Image picture(juce::Image::RGB, 120, 24, true);
    juce::Graphics g(picture);
    g.fillAll(juce::Colours::white);
    button.paintButton(g, false, false);

    const int text = juce::Font().getStringWidth("Text");
    const int icon = button.getIconWidth(12);
    const int left = (120 - icon - 6 - text) / 2;
    EXPECT_GT(count(picture, {left, 6, icon, 12}, isDark), 30);
    EXPECT_EQ(count(picture, {left + icon + 1, 4, 4, 16}, isDark), 0) << "the gap";
    EXPECT_GT(count(picture, {left + icon + 6, 4, text, 16}, isDark), 20);
}
