#include "tests/hosts/PlugIn.h"

#include <pluginterfaces/fst/aeffect.h>
#include <pluginterfaces/fst/aeffectx.h>

#include <atomic>

namespace hosts
{
namespace
{
constexpr t_fstInt32 interfaceVersion = 2400;
constexpr t_fstInt32 realtimeLevel = 2;
constexpr t_fstInt32 offlineLevel = 4;

/** What the plug-in asks for as its process level; one for all instances, as in a host that renders a project. */
std::atomic<t_fstInt32> processLevel{realtimeLevel};

t_fstPtrInt VSTCALLBACK answerPlugIn(AEffect*, t_fstInt32 opcode, t_fstInt32, t_fstPtrInt, void* const, float)
{
    switch (opcode)
    {
    case audioMasterVersion: return interfaceVersion;
    case audioMasterGetCurrentProcessLevel: return processLevel;
    default: return 0;
    }
}

t_fstPtrInt dispatch(AEffect& effect, int opcode, int index = 0, t_fstPtrInt value = 0, void* data = nullptr,
                     float option = 0.0f)
{
    return effect.dispatcher(&effect, opcode, index, value, data, option);
}

/** The plug-in's window as a child of one of ours. */
class Window : public juce::Component, private juce::Timer
{
public:
    explicit Window(AEffect& effectToUse) : effect(effectToUse)
    {
        ERect* area = nullptr;
        dispatch(effect, effEditGetRect, 0, 0, &area);
        if (area != nullptr)
            setSize(area->right - area->left, area->bottom - area->top);
        setOpaque(true);
        addToDesktop(0);
        setVisible(true);
        dispatch(effect, effEditOpen, 0, 0, getWindowHandle());
        startTimerHz(idleHz);
    }

    ~Window() override
    {
        stopTimer();
        dispatch(effect, effEditClose);
    }

private:
    static constexpr int idleHz = 30;

    void timerCallback() override { dispatch(effect, effEditIdle); }

    AEffect& effect;
};

class Vst2PlugIn : public PlugIn
{
public:
    Vst2PlugIn(std::unique_ptr<juce::DynamicLibrary> libraryToUse, AEffect& effectToUse)
        : library(std::move(libraryToUse)), effect(effectToUse)
    {
        dispatch(effect, effOpen);
    }

    ~Vst2PlugIn() override { dispatch(effect, effClose); }

    void checkIdentity(Checks& checks) override
    {
        checks.expect(effect.magic == 0x56737450, "it is a VST2");
        checks.expect(effect.uniqueID == CCONST('A', 'M', 'B', 'R') && effect.version == 103,
                      "projects find it by its id and version");
        checks.expect(getText(effGetVendorString) + " " + getText(effGetEffectName) == "Veskora Ambrel",
                      "its maker and name");
        checks.expect(effect.numParams == 2 && getText(effGetParamName, 0).rfind("Reverb", 0) == 0,
                      "it has two parameters, with names");
        checks.expect(effect.numInputs == 2 && effect.numOutputs == 2, "it is stereo");
        constexpr int expected = effFlagsProgramChunks | effFlagsCanReplacing | effFlagsHasEditor;
        constexpr int others = effFlagsIsSynth | effFlagsCanDoubleReplacing;
        checks.expect((effect.flags & (expected | others)) == expected, "it says what it can do");
        const auto program = static_cast<int>(dispatch(effect, effGetProgram));
        checks.expect(getProgramName(program) == "Default hall", "it opens on Default hall");
    }

    void start(double sampleRate, int maximumBlockSize, bool isOffline) override
    {
        processLevel = isOffline ? offlineLevel : realtimeLevel;
        dispatch(effect, effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRate));
        dispatch(effect, effSetBlockSize, 0, maximumBlockSize);
        dispatch(effect, effMainsChanged, 0, 1);
    }

    void stop() override { dispatch(effect, effMainsChanged, 0, 0); }

    void process(Block& block) override
    {
        Block input;
        input.makeCopyOf(block);
        effect.processReplacing(&effect, const_cast<float**>(input.getArrayOfWritePointers()),
                                const_cast<float**>(block.getArrayOfWritePointers()), block.getNumSamples());
    }

    void setParameter(int index, float value) override { effect.setParameter(&effect, index, value); }
    void setBypassed(bool isBypassed) override { dispatch(effect, effSetBypass, 0, isBypassed ? 1 : 0); }

    int getNumPrograms() override { return effect.numPrograms; }
    std::string getProgramName(int index) override { return getText(effGetProgramNameIndexed, index); }
    void setProgram(int index) override { dispatch(effect, effSetProgram, 0, index); }

    State getState() override
    {
        void* chunk = nullptr;
        const auto size = dispatch(effect, effGetChunk, 0, 0, &chunk);
        const auto* bytes = static_cast<const char*>(chunk);
        return chunk == nullptr ? State() : State(bytes, bytes + size);
    }

    void setState(const State& state) override
    {
        auto copy = state;
        dispatch(effect, effSetChunk, 0, static_cast<t_fstPtrInt>(copy.size()), copy.data());
    }

    std::unique_ptr<juce::Component> openEditor() override { return std::make_unique<Window>(effect); }

private:
    std::string getText(int opcode, int index = 0)
    {
        char text[256] = {};
        dispatch(effect, opcode, index, 0, text);
        return text;
    }

    const std::unique_ptr<juce::DynamicLibrary> library;
    AEffect& effect;
};
} // namespace

Loader makeVst2Loader(const std::string& file)
{
    return [=]() -> std::unique_ptr<PlugIn>
    {
        using Entry = AEffect* (*)(audioMasterCallback);
        auto library = std::make_unique<juce::DynamicLibrary>(file);
        const auto entry = reinterpret_cast<Entry>(library->getFunction("VSTPluginMain"));
        auto* effect = entry != nullptr ? entry(&answerPlugIn) : nullptr;
        if (effect != nullptr)
            return std::make_unique<Vst2PlugIn>(std::move(library), *effect);
        std::fprintf(stderr, "No plug-in comes out of %s\n", file.c_str());
        return nullptr;
    };
}

} // namespace hosts
