/**
    The product's window, 640 by 480 pixels: the header, the big knob for the reverb's character, and the fader
    for its mix, over the word mark and the knob's labels.

    The two controls follow the processor by a timer, and so does the engine, whose costly changes wait for it as
    long as the window is open. What the user does goes to the processor at once.

    A control can show less than a parameter can hold: the knob begins at 0.5 s and has a grid. If what it shows
    differs from the parameter, the parameter takes what is shown; if not, showing it changes nothing. That
    matters, since setting a parameter moves a second one of the engine with it, which presets set on their own.

    Thread: message thread, but for parameterChanged, which may be called on any.
*/
#pragma once

#include "editor/BasePluginEditor.h"
#include "editor/CurveEditor.h"
#include "editor/EqualizerCurveEditor.h"
#include "editor/KeyboardSteps.h"
#include "editor/ParameterSlider.h"
#include "editor/PlugInEditorHeader.h"
#include "reverb/Reverberation.h"

#include <atomic>
#include <memory>

class AmbrelAudioProcessorEditor : public BasePluginEditor,
                                   public juce::Timer,
                                   public CurveEditor::Listener,
                                   public EqualizerCurveEditor::Listener,
                                   public BasePlugInProcessor::Listener,
                                   public PlugInEditorHeader::Listener,
                                   public juce::Slider::Listener
{
public:
    /** The processor must outlive the editor, and its engine must be a Reverberation. */
    explicit AmbrelAudioProcessorEditor(BasePlugInProcessor* plugInProcessor);
    ~AmbrelAudioProcessorEditor() override;

    void paint(juce::Graphics& g) override;
    void resized() override;

    void sliderValueChanged(juce::Slider* slider) override;
    void sliderDragStarted(juce::Slider* slider) override;
    void handleDragStarted(CurveEditor* curveEditor, int curve, CurveEditor::Handle& handle) override;

    int getControlParameterIndex(juce::Component& control) override;
    void setControlHighlight(ParameterControlHighlightInfo info) override;

    void updateParameterControls() override;
    void timerCallback() override;

    /** Thread: any. The timer does the work. */
    void parameterChanged(int parameterIndex) override;

    void menuCommand(int id) override;

private:
    /** A parameter and how a slider shows it. */
    struct Control
    {
        const int parameterIndex;
        const double fullScale; ///< value of the slider at the parameter's 1

        double shownValue = 0.0;      ///< what the slider had when it last agreed with the processor,
        float shownParameter = -1.0f; ///< and what the parameter had then
    };

    void createControls();
    void addControl(juce::Slider& slider, const juce::String& title, const juce::String& tooltip);
    void configureHeader();
    void trackSampleRate();
    void show(Control& control, juce::Slider& slider);

    std::atomic<bool> parametersChanged{false};
    vesk::audio::Reverberation* const engine;

    // What a display of the engine's response over frequency would draw from.
    double sampleRate = 44100.0;
    float lowestFrequency = 10.0f;
    float highestFrequency = 22050.0f;
    juce::Range<float> reverbTimeRange; ///< seconds
    juce::Range<float> lowTimeScaleRange;
    int spareValue = 0;
    juce::Colour curveColour{0xa0ec6400};

    std::unique_ptr<PlugInEditorHeader> header;
    std::unique_ptr<ParameterSlider> reverbTimeSlider;
    std::unique_ptr<juce::Slider> reverbMixSlider;
    std::unique_ptr<juce::Drawable> logo;
    std::unique_ptr<juce::Drawable> labels;

    Control characterControl;
    Control mixControl;
    std::unique_ptr<KeyboardSteps> characterKeys;
    std::unique_ptr<KeyboardSteps> mixKeys;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(AmbrelAudioProcessorEditor)
};
