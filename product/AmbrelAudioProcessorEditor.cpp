#include "product/AmbrelAudioProcessorEditor.h"

#include "editor/themes/ReverbTheme.h"

#include "Artwork.h"

#include <cmath>

using vesk::audio::Reverberation;

namespace
{
constexpr int windowWidth = 640;
constexpr int windowHeight = 480;
constexpr int headerHeight = 56;
constexpr int knobHeight = 280;
constexpr int knobTopFromBottom = 312;
const juce::Rectangle<int> mixSliderBounds(64, 445, 504, 32);

constexpr int logoTop = 52;
constexpr int logoHeight = 124;
constexpr int labelsTop = 380;
constexpr int labelsHeight = 100;

constexpr int timerPeriodMilliseconds = 100;

constexpr int characterIndex = 0;
constexpr int mixIndex = 1;

constexpr double shortestReverbTime = 0.5; // seconds
constexpr double longestReverbTime = 8.0;
constexpr double reverbTimeStep = 0.01;
constexpr double reverbTimeSkew = 0.5;
constexpr double percent = 100.0;

/** The engine holds 32-bit floats, the mix even as a logarithm: a difference this small is none. */
constexpr float parameterTolerance = 1.0e-6f;

constexpr float lowestDisplayedFrequency = 10.0f;

constexpr int upgradeId = 16384;
constexpr int productsId = 16385;
constexpr auto upgradePage = "https://veskora.com/products/quellar";
constexpr auto productsPage = "https://veskora.com/products";

std::unique_ptr<juce::Drawable> loadDrawable(const char* data, int size)
{
    return juce::Drawable::createFromImageData(data, static_cast<std::size_t>(size));
}

juce::Range<float> getRange(Reverberation& engine, Reverberation::Parameter parameter)
{
    float minimum = 0.0f;
    float maximum = 0.0f;
    engine.getParameterRange(parameter, minimum, maximum);
    return {minimum, maximum};
}
} // namespace

AmbrelAudioProcessorEditor::AmbrelAudioProcessorEditor(BasePlugInProcessor* plugInProcessor)
    : BasePluginEditor(plugInProcessor),
      engine(dynamic_cast<Reverberation*>(plugInProcessor->getBaseProcessor().get())),
      reverbTimeRange(getRange(*engine, Reverberation::reverbTime)),
      lowTimeScaleRange(getRange(*engine, Reverberation::lowTimeScale)),
      characterControl{characterIndex, longestReverbTime}, mixControl{mixIndex, percent}
{
    header = std::make_unique<PlugInEditorHeader>();
    addAndMakeVisible(*header);
    createControls();

    logo = loadDrawable(Artwork::ambrel_svg, Artwork::ambrel_svgSize);
    labels = loadDrawable(Artwork::knobLabels_svg, Artwork::knobLabels_svgSize);

    configureHeader();
    setSize(windowWidth, windowHeight);

    // One look only, whatever the settings say. As the default it also reaches the popups, and it decides on the
    // typefaces: those that others have handed out are forgotten before it measures a text.
    auto look = std::make_unique<ReverbTheme>();
    juce::Typeface::clearTypefaceCache();
    juce::LookAndFeel::setDefaultLookAndFeel(look.get());
    adoptTheme(std::move(look));

    AmbrelAudioProcessorEditor::updateParameterControls();
    plugIn->addListener(this);
    parametersChanged.store(false, std::memory_order_relaxed);
    startTimer(timerPeriodMilliseconds);
}

AmbrelAudioProcessorEditor::~AmbrelAudioProcessorEditor()
{
    plugIn->removeListener(this);
    header->removeListener(this);

    // The default can be the theme of another instance's window, which is still open.
    if (&juce::LookAndFeel::getDefaultLookAndFeel() == theme.get())
        juce::LookAndFeel::setDefaultLookAndFeel(nullptr);
}

void AmbrelAudioProcessorEditor::createControls()
{
    using juce::translate;

    reverbTimeSlider = std::make_unique<ParameterSlider>("reverbTimeSlider");
    addControl(*reverbTimeSlider, translate("Reverb character"),
               translate("Adjust the reverb character from small and bright to large and dark."));
    reverbTimeSlider->setRange(shortestReverbTime, longestReverbTime, reverbTimeStep);
    reverbTimeSlider->setSliderStyle(juce::Slider::RotaryVerticalDrag);
    reverbTimeSlider->setTextBoxStyle(juce::Slider::NoTextBox, false, 60, 20);
    reverbTimeSlider->addListener(this);
    reverbTimeSlider->setSkewFactor(reverbTimeSkew);
    reverbTimeSlider->textFromValueFunction = [](double seconds)
    { return juce::String(juce::roundToInt(percent * seconds / longestReverbTime)) + " %"; };
    reverbTimeSlider->valueFromTextFunction = [](const juce::String& text)
    { return text.getDoubleValue() * longestReverbTime / percent; };
    characterKeys = std::make_unique<KeyboardSteps>(*reverbTimeSlider);

    reverbMixSlider = std::make_unique<juce::Slider>("reverbMixSlider");
    addControl(*reverbMixSlider, translate("Reverb mix"),
               translate("Adjusts the reverb and dry levels from all dry to all wet."));
    reverbMixSlider->setRange(0.0, percent, 0.0);
    reverbMixSlider->setSliderStyle(juce::Slider::LinearHorizontal);
    reverbMixSlider->setTextBoxStyle(juce::Slider::NoTextBox, false, 80, 20);
    reverbMixSlider->addListener(this);
    reverbMixSlider->textFromValueFunction = [](double mix)
    { return juce::String(juce::roundToInt(mix)) + " %"; };
    mixKeys = std::make_unique<KeyboardSteps>(*reverbMixSlider);
}

/** The tab key gets to the sliders, yet a click leaves the keyboard with the host. */
void AmbrelAudioProcessorEditor::addControl(juce::Slider& slider, const juce::String& title,
                                            const juce::String& tooltip)
{
    addAndMakeVisible(slider);
    slider.setTitle(title);
    slider.setTooltip(tooltip);
    slider.setWantsKeyboardFocus(true);
    slider.setMouseClickGrabsKeyboardFocus(false);
    slider.setHasFocusOutline(true);
}

void AmbrelAudioProcessorEditor::configureHeader()
{
    header->attach(this, plugIn);
    header->enablePresets(true, 0);
    header->themesEnabled = false;
    header->setAdditionalCommand(upgradeId, juce::translate("Upgrade to Veskora Quellar..."), true, false);
    header->setAdditionalCommand(productsId, juce::translate("Browse other Veskora products..."), true,
                                 false);
    header->addListener(this);
    header->enableHelp(false);
}

void AmbrelAudioProcessorEditor::paint(juce::Graphics& g)
{
    dynamic_cast<BaseTheme&>(*theme).paintBackground(g, getWidth(), getHeight());

    const auto draw = [&](const std::unique_ptr<juce::Drawable>& drawable, int top, int height, int placement)
    {
        g.setColour(juce::Colours::black);
        if (drawable != nullptr)
            drawable->drawWithin(g, juce::Rectangle<int>(0, top, getWidth(), height).toFloat(), placement,
                                 1.0f);
    };
    draw(logo, logoTop, logoHeight,
         juce::RectanglePlacement::centred | juce::RectanglePlacement::onlyReduceInSize);
    draw(labels, labelsTop, labelsHeight, juce::RectanglePlacement::centred);
}

void AmbrelAudioProcessorEditor::resized()
{
    header->setBounds(0, 0, getWidth(), headerHeight);
    reverbTimeSlider->setBounds(0, getHeight() - knobTopFromBottom, getWidth(), knobHeight);
    reverbMixSlider->setBounds(mixSliderBounds);
}

/** Called when the user moves a control, but also some time after show() has moved it: then the parameter takes
    the value only if the control could not show what it had, and if it has not changed again meanwhile. */
void AmbrelAudioProcessorEditor::sliderValueChanged(juce::Slider* slider)
{
    auto& control = slider == reverbTimeSlider.get() ? characterControl : mixControl;
    const auto value = slider->getValue();
    const auto normalized = static_cast<float>(value / control.fullScale);

    const bool isMovedByUser = value != control.shownValue;
    if (!isMovedByUser)
    {
        const auto parameter = plugIn->getParameter(control.parameterIndex);
        if (parameter != control.shownParameter || std::abs(parameter - normalized) <= parameterTolerance)
            return;
    }

    plugIn->setParameter(control.parameterIndex, normalized);
    control.shownValue = value;
    control.shownParameter = plugIn->getParameter(control.parameterIndex);
}

void AmbrelAudioProcessorEditor::sliderDragStarted(juce::Slider*) { plugIn->addUndoState(); }

void AmbrelAudioProcessorEditor::handleDragStarted(CurveEditor*, int, CurveEditor::Handle&)
{
    plugIn->addUndoState();
}

int AmbrelAudioProcessorEditor::getControlParameterIndex(juce::Component& control)
{
    return BasePluginEditor::getControlParameterIndex(control);
}

void AmbrelAudioProcessorEditor::setControlHighlight(ParameterControlHighlightInfo info)
{
    if (!juce::isPositiveAndBelow(info.parameterIndex, plugIn->getNumParameters()) ||
        plugIn->getInternalParameterId(info.parameterIndex) != Reverberation::reverbTime)
        return;

    constexpr auto colourId = juce::Slider::rotarySliderFillColourId;
    reverbTimeSlider->setColour(colourId,
                                info.isHighlighted ? info.suggestedColour : theme->findColour(colourId));
}

void AmbrelAudioProcessorEditor::updateParameterControls()
{
    // Cleared first, so that a change that comes in meanwhile is seen by the next tick.
    parametersChanged.store(false, std::memory_order_relaxed);

    show(characterControl, *reverbTimeSlider);
    show(mixControl, *reverbMixSlider);
    header->updatePresetName();
}

void AmbrelAudioProcessorEditor::show(Control& control, juce::Slider& slider)
{
    control.shownParameter = plugIn->getParameter(control.parameterIndex);
    slider.setValue(static_cast<double>(control.shownParameter) * control.fullScale,
                    juce::sendNotificationAsync);
    control.shownValue = slider.getValue();
}

void AmbrelAudioProcessorEditor::timerCallback()
{
    trackSampleRate();
    engine->effectuateParameterChanges();

    if (parametersChanged.load(std::memory_order_relaxed))
        updateParameterControls();
}

void AmbrelAudioProcessorEditor::trackSampleRate()
{
    const auto rate = static_cast<double>(static_cast<float>(plugIn->getSampleRate()));
    if (rate <= 0.0 || rate == sampleRate)
        return;

    sampleRate = rate;
    lowestFrequency = lowestDisplayedFrequency;
    highestFrequency = static_cast<float>(sampleRate * 0.5);
}

void AmbrelAudioProcessorEditor::parameterChanged(int)
{
    parametersChanged.store(true, std::memory_order_relaxed);
}

void AmbrelAudioProcessorEditor::menuCommand(int id)
{
    if (id == upgradeId)
        juce::URL(upgradePage).launchInDefaultBrowser();
    else if (id == productsId)
        juce::URL(productsPage).launchInDefaultBrowser();
}
