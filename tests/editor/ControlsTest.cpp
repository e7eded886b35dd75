#include "editor/KeyboardSteps.h"
#include "editor/ParameterSlider.h"
#include "tests/editor/EditorTools.h"

namespace
{
constexpr int leftButton = juce::ModifierKeys::leftButtonModifier;
constexpr int ctrl = juce::ModifierKeys::ctrlModifier;
constexpr int alt = juce::ModifierKeys::altModifier;
constexpr int shift = juce::ModifierKeys::shiftModifier;

void waitForFineStep() { juce::Thread::sleep(60); } // the shortest time between two is 50 ms

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

    /** All drags start from the middle. */
    void press() { mouseDown(mouseEvent(*this, middle, leftButton)); }

    /** @return the change since the button went down at 5 */
    double drag(juce::Point<float> movement, int modifiers)
    {
        mouseDrag(mouseEvent(*this, middle + movement, leftButton | modifiers));
        return getValue() - 5.0;
    }

    void move(double value)
    {
        press();
        setValue(value, juce::sendNotificationSync);
        mouseUp(mouseEvent(*this, middle, 0));
    }

    /** Turns the wheel once the time for the next fine step has come. */
    double turn(float delta, int modifiers, bool isReversed = false, bool isInertial = false)
    {
        waitForFineStep();
        const double before = getValue();
        mouseWheelMove(mouseEvent(*this, middle, modifiers), {0.0f, delta, isReversed, false, isInertial});
        return getValue() - before;
    }

private:
    const juce::Point<float> middle{50.0f, 50.0f};
};
} // namespace

TEST(ParameterSliderTest, fineDragIsAQuarterStepPerPixelAndLosesNoWay)
{
    using juce::Slider, juce::Point;
    for (const auto& [style, movement, change] :
         {std::tuple{Slider::RotaryVerticalDrag, Point{30.0f, -8.5f}, 1.0625},
          {Slider::LinearVertical, Point{9.0f, -2.0f}, 0.25},
          {Slider::RotaryHorizontalDrag, Point{-8.0f, 30.0f}, -1.0},
          {Slider::LinearHorizontal, Point{12.0f, 1.0f}, 1.5}})
        for (const int modifier : {ctrl, alt})
        {
            Knob knob(style);
            knob.press();
            knob.drag((movement * 0.5f).roundToInt().toFloat(), modifier); // may come too soon
            waitForFineStep();
            EXPECT_NEAR(knob.drag(movement, modifier), change, 1.0e-6) << style << " with " << modifier;
        }

    // Without the modifier, or with shift, the library drags from where the button went down: 250 pixels a range.
    Knob knob;
    knob.press();
    EXPECT_NEAR(knob.drag({0.0f, -25.0f}, 0), 1.0, 1.0e-6);
    EXPECT_NEAR(knob.drag({0.0f, -50.0f}, shift), 2.0, 1.0e-6);
}

TEST(ParameterSliderTest, fineWheelMovesByOneStepAndSwallowsItsTail)
{
    Knob knob;
    EXPECT_NEAR(knob.turn(0.01f, ctrl), 0.5, 1.0e-6);
    EXPECT_NEAR(knob.turn(-3.0f, alt), -0.5, 1.0e-6);
    EXPECT_NEAR(knob.turn(-1.0f, ctrl, true), 0.5, 1.0e-6) << "reversed";
    EXPECT_EQ(knob.turn(1.0f, ctrl, false, true), 0.0) << "inertia makes no fine steps";

    EXPECT_EQ(knob.turn(1.0f, 0, false, true), 0.0) << "the tail of a fine flick, the key let go";
    EXPECT_GT(knob.turn(0.1f, 0), 0.0);
    EXPECT_GT(knob.turn(0.1f, 0, false, true), 0.0) << "the tail of a plain flick";
}

TEST(ParameterSliderTest, onlyABoundSliderReachesEngineAndHost)
{
    TestPlugIn plugIn;
    const HostListener host(plugIn);
    Knob knob;
    knob.move(7.0);
    EXPECT_EQ(knob.getPublicParameterIndex(), -1);
    EXPECT_EQ(host.heard, "");

    knob.bind(&plugIn, &plugIn.engine, 0, 0, false);
    knob.move(9.0);
    EXPECT_EQ(knob.getPublicParameterIndex(), 0);
    EXPECT_EQ(host.heard, "begin0 0=0.090 end0 ");
    EXPECT_EQ(plugIn.engine.values[0], 9.0f);
    EXPECT_TRUE(plugIn.engine.pending);

    knob.bind(&plugIn, &plugIn.engine, 0, 0, true);
    knob.move(8.0);
    EXPECT_FALSE(plugIn.engine.pending);

    knob.setPassToEngine(false);
    knob.move(2.0);
    EXPECT_EQ(plugIn.engine.values[0], 8.0f);
}

TEST(KeyboardStepsTest, movesAlongTheWayAndPassesOtherKeysOn)
{
    Knob knob;
    knob.setRange(0.5, 8.0, 0.01);
    knob.setSkewFactor(0.5);
    knob.setValue(0.5, juce::dontSendNotification);
    int moves = 0;
    knob.onDragStart = [&] { ++moves; };
    KeyboardSteps keys(knob);
    const auto press = [&](int code, int modifiers = 0)
    { return keys.keyPressed(juce::KeyPress(code, juce::ModifierKeys(modifiers), 0), &knob); };
    const auto valueAt = [](double position) { return 0.5 + 7.5 * position * position; };

    using Key = juce::KeyPress;
    for (const auto& [key, value, tolerance] :
         {std::tuple{Key::upKey, 0.51, 0.0}, // one interval, where that is more than 1 % of the way
          {Key::endKey, 8.0, 0.0},
          {Key::rightKey, 8.0, 0.0},
          {Key::pageDownKey, valueAt(0.9), 0.02},
          {Key::leftKey, valueAt(0.89), 0.02},
          {Key::homeKey, 0.5, 0.0}})
    {
        EXPECT_TRUE(press(key)) << value;
        EXPECT_NEAR(knob.getValue(), value, tolerance);
    }
    EXPECT_EQ(moves, 1) << "a quick row of keys is one move";

    for (const int code : {int(' '), int(juce::KeyPress::returnKey), int(juce::KeyPress::tabKey), int('z')})
        EXPECT_FALSE(press(code)) << code;
    EXPECT_FALSE(press(juce::KeyPress::upKey, ctrl));
    knob.setEnabled(false);
    EXPECT_FALSE(press(juce::KeyPress::upKey));
    EXPECT_EQ(knob.getValue(), 0.5);
}
