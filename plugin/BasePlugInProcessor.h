/**
    A plug-in around an engine: everything between a host and a vesk::audio::BaseAudioProcessor.

    Hosts see an ordinary juce::AudioProcessor. Behind it lie, each in a source file of its own:

        ...Audio.cpp       the road of a block, and the engine's latency
        ...Buses.cpp       which layouts are accepted, and how they become the engine's formats
        ...Parameters.cpp  public parameters (0 to 1) over the engine's, and who hears of changes
        ...State.cpp       the state block that hosts store, and preset files
        ...Presets.cpp     the preset folders, shown to hosts as programs
        ...Undo.cpp        undo, redo, and the A/B pair
        ...Settings.cpp    the settings file, translation, help

    A product derives from it, makes the engine, fills parameterDescriptions in its constructor and gives an
    editor. See product/AmbrelAudioProcessor.h.

    Threads: processBlock on the audio thread; parameters, state and programs from any thread a host likes;
    all else on the message thread. No lock is taken here: the engine guards itself. A host must not prepare
    while it processes.
*/
#pragma once

#include "core/BaseAudioProcessor.h"
#include "core/SignalQueue.h"
#include "plugin/ParameterDescription.h"
#include "plugin/PlugInPlaces.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <list>
#include <memory>

class BasePlugInProcessor : public juce::AudioProcessor
{
public:
    /** Hears of parameter changes. May be called on any thread, so it must be cheap and touch no component. */
    class Listener
    {
    public:
        virtual ~Listener() = default;

        /** @param parameterIndex  public index, or -1: any number of parameters may have changed */
        virtual void parameterChanged(int parameterIndex) = 0;
    };

    /** A preset of the library. Both are empty for an index that does not exist. */
    struct PresetData
    {
        juce::String name; ///< file name without extension
        juce::String path;
    };

    /** @param code  four characters, the first in the top byte */
    BasePlugInProcessor(std::shared_ptr<vesk::audio::BaseAudioProcessor> processor,
                        const juce::String& bundle, const juce::String& plugIn, unsigned int code,
                        const juce::String& version);
    ~BasePlugInProcessor() override;

    std::shared_ptr<vesk::audio::BaseAudioProcessor> getBaseProcessor() { return baseProcessor; }

    // Names and properties.

    const juce::String getName() const override;
    virtual juce::String getShortName() const;
    double getTailLengthSeconds() const override;
    bool acceptsMidi() const override;
    bool producesMidi() const override;
    bool silenceInProducesSilenceOut() const override;
    const juce::String getInputChannelName(int index) const override;
    const juce::String getOutputChannelName(int index) const override;
    bool isInputChannelStereoPair(int index) const override;
    bool isOutputChannelStereoPair(int index) const override;

    // Audio.

    using juce::AudioProcessor::processBlock;
    using juce::AudioProcessor::processBlockBypassed;

    void prepareToPlay(double sampleRate, int maximumBlockSize) override;
    void releaseResources() override;
    void processBlock(juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    void processBlockBypassed(juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;

    /** One block through the engine and back into the buffer. If the engine throws, the text goes to the
        standard error stream and the block is silent. Thread: the audio thread. */
    void internalProcess(juce::AudioBuffer<float>& buffer, bool bypassed);

    // Buses: one in each direction, with the same channel set.

    bool isBusesLayoutSupported(const BusesLayout& layouts) const override;

    /** Sets the layout of both directions to preferredSet. Returns whether it was accepted. */
    bool setPreferredBusArrangement(bool isInput, int busIndex, const juce::AudioChannelSet& preferredSet);

    /** Largest number of channels, given the path of the host's program. */
    int getChannelLimit(const juce::String& hostPath) const;

    /** Position for a speaker's short name, such as "Ls"; type Unknown for any other text. */
    static vesk::audio::SpeakerPosition speakerIdToPosition(const juce::String& speakerId);

    // Parameters, by public index. An index that does not exist gets a neutral answer.

    using juce::AudioProcessor::getParameterName;
    using juce::AudioProcessor::getParameterText;

    int getNumParameters() override;
    const juce::String getParameterName(int index) override;
    juce::String getParameterID(int index) override;
    float getParameter(int index) override;
    const juce::String getParameterText(int index) override;
    float getParameterDefaultValue(int index) override;

    /** Without an open editor the engine is brought up to date at once, on the caller's thread; with one, the
        editor does it. */
    void setParameter(int index, float value) override;

    /** Hands the description's default to the engine as it stands, without the description's mapping. */
    virtual void resetParameter(int index, bool notifyHost);

    /** Precondition: the index exists. */
    int getInternalParameterId(int index) const;

    /** Tells the host that a parameter of the engine was changed behind its back. */
    void notifyInternalParameterChange(int internalId);

    /** Null and what is in the list already are ignored. Thread: message thread, as removeListener. */
    void addListener(Listener* listener);
    void removeListener(Listener* listener);

    using juce::AudioProcessor::addListener;
    using juce::AudioProcessor::removeListener;

    // State and preset files.

    void getStateInformation(juce::MemoryBlock& destination) override;
    void setStateInformation(const void* data, int size) override;
    void getCurrentProgramStateInformation(juce::MemoryBlock& destination) override;
    void setCurrentProgramStateInformation(const void* data, int size) override;

    /** Writes the state block: the described parameters and the preset's name. */
    void getParameterSettings(juce::OutputStream& output);

    /** Reads a state block. False if it is not one of this plug-in's, or names an unknown parameter. */
    bool setParameterSettings(juce::InputStream& input);

    bool exportToPresetFile(const juce::File& file);

    /** False, with nothing changed, if the file is no preset file. Lets the engine's std::out_of_range for an
        unknown parameter pass: callers at the edge catch it. */
    bool importFromPresetFile(const juce::File& file);

    /** For products with more to store: fills the element and returns true to have it written. */
    virtual bool fillCustomDataXmlElement(juce::XmlElement* element);
    virtual void parseCustomDataXmlElement(juce::XmlElement* element);

    /** Resets every described parameter that presets are allowed to touch. */
    virtual void clearSettings();

    // Preset library: programs, to a host.

    int getNumPrograms() override;
    int getCurrentProgram() override;

    /** Loads a preset, with an undo state before it. Ignored within 200 ms of a state restore: some hosts
        send the program number behind the state and would overwrite it. */
    void setCurrentProgram(int index) override;
    const juce::String getProgramName(int index) override;

    /** Programs are files: renaming them from a host does nothing. */
    void changeProgramName(int index, const juce::String& newName) override;

    juce::String getCurrentPresetName() const { return currentPresetName; }
    void setCurrentPresetName(const juce::String& presetName) { currentPresetName = presetName; }

    /** Scans both preset folders anew. Indices of earlier scans are void. Thread: message thread. */
    void updatePresetTree();

    // Undo, redo, A/B. Thread: message thread.

    /** Remembers the present settings, to be called before a change. */
    void addUndoState();
    void undo();
    void redo();
    void copyToAlternate();
    void switchToAlternateSettings();

    // Settings, language, help.

    /** The caller owns the result. */
    juce::PropertiesFile* createPropertiesFile();

    /** Two bytes of each part of the version: 1.0.3 gives 0x10003. */
    int getVersionCode() const;

    /** The help page in a language, or the English one; need not exist. */
    juce::String getHelpFilePath(const juce::String& language) const;
    void showHelp();

    /** Kept by the editor, saved with the processor. */
    std::unique_ptr<juce::PropertiesFile> settings;

    juce::File factoryPresetFolder;
    juce::File userPresetFolder;

    /** "Root", below it "PresetFolder" nodes ("Name") and "Preset" nodes ("Name", "Index"). */
    juce::ValueTree presetTree;

protected:
    void initializeLocalization();
    void initializePresetHandling();
    void loadPresetDirectory(juce::ValueTree& folderNode, const juce::File& folder, int& nextIndex);
    void addPresetFilesToFolderNode(const juce::File& folder, juce::ValueTree& folderNode, int& nextIndex);

    std::list<juce::MemoryBlock> undoStates; ///< newest at the back
    std::list<juce::MemoryBlock> redoStates;
    juce::MemoryBlock alternateSettings;

    const juce::String plugInName;
    const unsigned int plugInCode;
    const juce::String bundleName;
    const juce::String plugInVersion;

    /** Millisecond counter at the last state restore. */
    std::atomic<juce::uint32> lastStateRestoreTime{0};

    /** The public parameters; the position is the public index. Filled once, by the product's constructor. */
    juce::OwnedArray<ParameterDescription> parameterDescriptions;

    /** Engine parameters that presets leave alone. */
    juce::Array<int> presetExemptParameters;

    const std::shared_ptr<vesk::audio::BaseAudioProcessor> baseProcessor;

    juce::Array<PresetData> presets; ///< the position is the program number
    juce::String currentPresetName;
    const int maxNumChannels = 8;
    int resetPresetIndex = 0;
    std::atomic<int> currentProgram{0};

private:
    ParameterDescription* getDescription(int index) const;
    int findDescription(int internalId) const;
    bool shouldEffectuateNow() const;
    void callListeners(int parameterIndex);

    vesk::audio::AudioFormat makeFormat(bool isInput, double sampleRate) const;
    void takeUpLatency(bool preparing);
    void prefillOutputQueue();
    vesk::audio::Signal32 compensateLatency(const vesk::audio::Signal32& result, int numSamples);

    void effectuateQuietly() noexcept;
    juce::MemoryBlock makeSnapshot();
    void applySnapshot(const juce::MemoryBlock& snapshot);

    const PlugInPlaces places;
    juce::Array<Listener*> listeners;

    /** The thread that is importing a preset, whose resets wait for the import's end; null for none. */
    std::atomic<juce::Thread::ThreadID> importingThread{nullptr};

    /** The engine refused its format: no block goes to it until it accepts one. */
    std::atomic<bool> formatRefused{false};

    std::atomic<int> leadLatency{0};  ///< samples that outputQueue makes up for
    std::atomic<int> trailLatency{0}; ///< samples of delay in the engine's output
    vesk::audio::SignalQueue<vesk::audio::Signal32> outputQueue;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(BasePlugInProcessor)
};
