/** A small VST2 host over the FST headers: loads the finished plug-in, plays it, and stores and restores its state.

    Usage: vst2Host FILE */
#include "tests/hosts/Checks.h"

#include <dlfcn.h>
#include <pluginterfaces/fst/aeffect.h>
#include <pluginterfaces/fst/aeffectx.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace
{
constexpr t_fstInt32 interfaceVersion = 2400;

t_fstPtrInt VSTCALLBACK answerPlugIn(AEffect*, t_fstInt32 opcode, t_fstInt32, t_fstPtrInt, void* const, float)
{
    return opcode == audioMasterVersion ? interfaceVersion : 0;
}

class PlugIn
{
public:
    explicit PlugIn(AEffect& effectToUse) : effect(effectToUse) { dispatch(effOpen); }
    ~PlugIn() { dispatch(effClose); }
    PlugIn(const PlugIn&) = delete;
    PlugIn& operator=(const PlugIn&) = delete;

    t_fstPtrInt dispatch(int opcode, int index = 0, t_fstPtrInt value = 0, void* data = nullptr,
                         float option = 0.0f)
    {
        return effect.dispatcher(&effect, opcode, index, value, data, option);
    }

    std::string getText(int opcode, int index = 0)
    {
        char text[256] = {};
        dispatch(opcode, index, 0, text);
        return text;
    }

    void play(double sampleRate, int blockSize, hosts::Checks& checks)
    {
        dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRate));
        dispatch(effSetBlockSize, 0, blockSize);
        dispatch(effMainsChanged, 0, 1);
        hosts::checkReverb(checks, sampleRate, blockSize, effect.numOutputs,
                           [&](hosts::Channels& channels)
                           {
                               auto output = channels;
                               std::vector<float*> inputs;
                               std::vector<float*> outputs;
                               for (auto& channel : channels)
                                   inputs.push_back(channel.data());
                               for (auto& channel : output)
                                   outputs.push_back(channel.data());
                               effect.processReplacing(&effect, inputs.data(), outputs.data(), blockSize);
                               channels = output;
                           });
        dispatch(effMainsChanged, 0, 0);
    }

    AEffect& effect;
};

void checkIdentity(PlugIn& plugIn, hosts::Checks& checks)
{
    checks.expect(plugIn.effect.magic == 0x56737450, "it is a VST2");
    checks.expect(plugIn.effect.uniqueID == CCONST('A', 'M', 'B', 'R'), "its id is AMBR");
    checks.expect(plugIn.effect.version == 103, "its version is 103");
    checks.expect(plugIn.getText(effGetVendorString) == "Veskora", "its maker is Veskora");
    checks.expect(plugIn.getText(effGetEffectName) == "Ambrel", "its name is Ambrel");
    checks.expect(plugIn.getText(effGetParamName, 0).rfind("Reverb", 0) == 0, "its parameters have names");
    checks.expect(plugIn.effect.numParams == 2, "it has two parameters");
    checks.expect(plugIn.effect.numPrograms >= 2, "its presets are offered as programs");
    checks.expect(plugIn.effect.numInputs == 2 && plugIn.effect.numOutputs == 2, "it is stereo");
    checks.expect((plugIn.effect.flags & effFlagsProgramChunks) != 0, "programs are chunks");
    checks.expect((plugIn.effect.flags & effFlagsCanReplacing) != 0, "it processes replacing");
    checks.expect((plugIn.effect.flags & effFlagsIsSynth) == 0, "it is no synth");
    checks.expect((plugIn.effect.flags & effFlagsCanDoubleReplacing) == 0, "it does not process in double");
}

void checkState(PlugIn& plugIn, hosts::Checks& checks)
{
    auto& effect = plugIn.effect;
    effect.setParameter(&effect, 0, 0.625f);
    void* chunk = nullptr;
    const auto size = plugIn.dispatch(effGetChunk, 0, 0, &chunk);
    checks.expect(size > 41 && chunk != nullptr && std::memcmp(chunk, "KSEV", 4) == 0,
                  "the chunk is a state block");
    if (chunk == nullptr)
        return;

    std::vector<char> kept(static_cast<const char*>(chunk), static_cast<const char*>(chunk) + size);
    effect.setParameter(&effect, 0, 0.25f);
    plugIn.dispatch(effSetChunk, 0, size, kept.data());
    checks.expect(std::abs(effect.getParameter(&effect, 0) - 0.625f) < 1e-6f, "the state comes back");
}
} // namespace

int main(int argc, char** argv)
{
    const hosts::StartUpSign startUp;
    void* library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (library == nullptr)
    {
        std::fprintf(stderr, "Usage: %s FILE\n%s\n", argv[0], argc == 2 ? dlerror() : "");
        return EXIT_FAILURE;
    }

    using Entry = AEffect* (*)(audioMasterCallback);
    const auto entry = reinterpret_cast<Entry>(dlsym(library, "VSTPluginMain"));
    auto* effect = entry != nullptr ? entry(&answerPlugIn) : nullptr;
    if (effect == nullptr)
    {
        std::fprintf(stderr, "No plug-in comes out of VSTPluginMain\n");
        return EXIT_FAILURE;
    }

    hosts::Checks checks;
    checks.expect(startUp.isThere(), "its start-up code has run");
    {
        PlugIn plugIn(*effect);
        checkIdentity(plugIn, checks);
        for (const auto& [sampleRate, blockSize] : {std::pair(44100.0, 441), std::pair(48000.0, 64)})
            plugIn.play(sampleRate, blockSize, checks);
        checkState(plugIn, checks);
    }
    dlclose(library);
    return checks.failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
