#include "tests/hosts/PlugIn.h"

#include <cstring>
#include <numbers>
#include <set>

namespace hosts
{
void runMessageLoop(int milliseconds)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil(milliseconds);
}

namespace
{
constexpr double usualRate = 48000.0;
constexpr int usualBlock = 512;
constexpr int largestBlock = 8192;
constexpr int varyingBlocks = 0;

/** Wrappers hand changes on with the next block, which is no longer than any that a check has announced. */
void applyChanges(PlugIn& plugIn)
{
    Block silence(2, 32);
    silence.clear();
    plugIn.process(silence);
    runMessageLoop(1);
}

Block play(PlugIn& plugIn, Block block)
{
    plugIn.process(block);
    return block;
}

/** By its name: the order of an LV2's presets is the host's affair. */
void selectProgram(PlugIn& plugIn, const std::string& name, Checks& checks)
{
    for (int i = 0; i < plugIn.getNumPrograms(); ++i)
        if (plugIn.getProgramName(i) == name)
        {
            plugIn.setProgram(i);
            applyChanges(plugIn);
            return;
        }
    checks.expect(false, "there is a program " + name);
}

/** Noise, and in the second half silence. */
Block makeInput(int numSamples)
{
    auto input = Noise().make(numSamples);
    input.clear(numSamples / 2, numSamples - numSamples / 2);
    return input;
}

/** Plays a stream through a new instance: a used one has moved on in its random modulation.

    @param blockSize  or varyingBlocks: a new length from 1 to the largest for each block */
Block playStream(const Loader& load, Block stream, double sampleRate, int blockSize, bool isOffline = false)
{
    const auto plugIn = load();
    plugIn->start(sampleRate, blockSize == varyingBlocks ? largestBlock : blockSize, isOffline);
    std::minstd_rand lengths(2);
    for (int done = 0; done < stream.getNumSamples();)
    {
        const int wanted = blockSize != varyingBlocks
                               ? blockSize
                               : std::uniform_int_distribution<int>(1, largestBlock)(lengths);
        const int length = std::min(wanted, stream.getNumSamples() - done);
        Block part(stream.getArrayOfWritePointers(), stream.getNumChannels(), done, length);
        plugIn->process(part);
        done += length;
    }
    plugIn->stop();
    return stream;
}

/** However a host cuts the stream into blocks, the same sound comes out; only the rounding differs. */
void checkRatesAndBlocks(const Loader& load, Checks& checks)
{
    constexpr float tolerance = 2e-5f;
    constexpr double seconds = 0.25;
    for (const double sampleRate : {44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0})
    {
        const int half = static_cast<int>(seconds * sampleRate);
        const auto input = makeInput(2 * half);
        const auto expected = playStream(load, input, sampleRate, usualBlock);
        const auto rate = " at " + std::to_string(sampleRate) + " Hz";
        checks.expect(getPeak(expected) > 0.5f * noiseAmplitude && getPeak(expected) < loudestOutput,
                      "the output has a sound level" + rate);
        checks.expect(getDifference(expected, input) > 0.1f * noiseAmplitude,
                      "the output is not the input" + rate);
        checks.expect(expected.getMagnitude(half, half) > 0.01f * noiseAmplitude,
                      "the reverb rings on" + rate);
        checks.expect(getDifference(playStream(load, input, sampleRate, usualBlock, true), expected) == 0.0f,
                      "offline and live are the same" + rate);
        float largest = 0.0f;
        for (const int blockSize : {1, 32, 63, 441, 1024, 4096, varyingBlocks, largestBlock})
        {
            const auto stream = playStream(load, input, sampleRate, blockSize);
            checks.expect(getPeak(stream) < loudestOutput, "large blocks keep the level");
            // Of long responses the convolution leaves out the partition that such a block would end within.
            if (blockSize == largestBlock && sampleRate > usualRate)
                continue;
            const auto difference = getDifference(stream, expected);
            checks.expect(difference < tolerance,
                          "blocks of " + std::to_string(blockSize) + rate + " sound alike");
            largest = std::max(largest, difference);
        }
        std::printf("%6.0f Hz, blocks of 1 to 8192: largest difference %.2g\n", sampleRate,
                    static_cast<double>(largest));
    }
}

/** Both parameters move every 32 samples, as the densest automation of hosts does; then the last values are there, in the
    engine's own units: 8 s at the character's end, the mix in decibels. */
void checkAutomationAndState(PlugIn& plugIn, Checks& checks)
{
    constexpr int blockSize = 32;
    constexpr int numBlocks = 3000;
    constexpr float lastCharacter = 0.3f;
    constexpr float lastMix = 0.6f;
    Noise noise;
    float loudest = 0.0f;
    plugIn.start(usualRate, blockSize);
    for (int i = 0; i < numBlocks; ++i)
    {
        const auto phase = 2.0f * std::numbers::pi_v<float> * static_cast<float>(i) / 200.0f;
        plugIn.setParameter(0, 0.5f + 0.5f * std::sin(phase));
        plugIn.setParameter(1, 0.5f + 0.5f * std::cos(1.7f * phase));
        loudest = std::max(loudest, getPeak(play(plugIn, noise.make(blockSize))));
    }
    checks.expect(loudest < loudestOutput, "the output keeps its level under automation");
    plugIn.setParameter(0, lastCharacter);
    plugIn.setParameter(1, lastMix);
    applyChanges(plugIn);

    const auto kept = plugIn.getState();
    float reverbTime = 0.0f, wetGain = 0.0f;
    if (checks.expect(kept.size() > 41 && std::memcmp(kept.data(), "KSEV", 4) == 0,
                      "the state is a state block"))
    {
        std::memcpy(&reverbTime, kept.data() + 20, sizeof(float));
        std::memcpy(&wetGain, kept.data() + 28, sizeof(float));
    }
    checks.expect(std::abs(reverbTime - 8.0f * lastCharacter) < 1e-4f, "the last character stays");
    checks.expect(std::abs(wetGain - 20.0f * std::log10(lastMix)) < 1e-3f, "the last mix stays");

    plugIn.setParameter(0, 0.25f);
    applyChanges(plugIn);
    checks.expect(plugIn.getState() != kept, "a parameter changes the state");
    for (const auto& state : {kept, State(), State(kept.begin(), kept.begin() + 15), State(10000, '\xff')})
    {
        plugIn.setState(state);
        applyChanges(plugIn);
        checks.expect(plugIn.getState() == kept, "the state comes back, and a broken one is left alone");
    }
    plugIn.stop();
}

void checkBypass(PlugIn& plugIn, Checks& checks)
{
    Noise noise;
    plugIn.start(usualRate, usualBlock);
    float change = 0.0f;
    bool isSound = true;
    for (int i = 0; i < 40; ++i)
    {
        const bool isBypassed = i % 4 >= 2;
        plugIn.setBypassed(isBypassed);
        const auto input = noise.make(usualBlock);
        const auto output = play(plugIn, input);
        if (isBypassed)
            change = std::max(change, getDifference(output, input));
        else
            isSound = isSound && getPeak(output) < loudestOutput &&
                      getDifference(output, input) > 0.01f * noiseAmplitude;
    }
    checks.expect(change == 0.0f, "bypassed, the input comes out as it went in");
    checks.expect(isSound, "behind a bypass the reverb is there again");
    plugIn.setBypassed(false);
    applyChanges(plugIn);
    plugIn.stop();
}

/** A broken plug-in in front of this one must not silence it for good. */
void checkBrokenInput(PlugIn& plugIn, Checks& checks)
{
    plugIn.start(usualRate, usualBlock);
    Noise noise;
    for (const float bad : {NAN, INFINITY, -INFINITY})
    {
        auto block = noise.make(usualBlock);
        block.setSample(0, 100, bad);
        block.setSample(1, usualBlock - 1, bad);
        auto loudest = getPeak(play(plugIn, block));
        for (int i = 0; i < 20; ++i)
            loudest = std::max(loudest, getPeak(play(plugIn, noise.make(usualBlock))));
        block.clear();
        const float tail = getPeak(play(plugIn, block));
        checks.expect(loudest < loudestOutput && tail < loudestOutput && tail > 0.01f * noiseAmplitude,
                      "the reverb keeps its level and rings on behind " + std::to_string(bad));
    }
    plugIn.stop();
}

/** Forty at once, playing on while others go. */
void checkInstances(const Loader& load, Checks& checks)
{
    constexpr std::size_t numInstances = 40;
    std::vector<std::unique_ptr<PlugIn>> plugIns;
    while (plugIns.size() < numInstances)
    {
        plugIns.push_back(load());
        if (!checks.expect(plugIns.back() != nullptr, "another instance loads"))
            return;
        plugIns.back()->start(usualRate, usualBlock);
    }

    std::shuffle(plugIns.begin(), plugIns.end(), std::minstd_rand(3));
    bool isAlike = true;
    for (Noise noise; !plugIns.empty(); plugIns.pop_back())
    {
        const auto input = noise.make(usualBlock);
        const auto expected = play(*plugIns.front(), input);
        for (auto plugIn = std::next(plugIns.begin()); plugIn != plugIns.end(); ++plugIn)
            isAlike = isAlike && getDifference(play(**plugIn, input), expected) == 0.0f;
    }
    checks.expect(isAlike, "all instances sound alike");
}
} // namespace

int checkFormat(const Loader& load, int numPresets)
{
    Checks checks;
    const auto plugIn = load();
    if (plugIn == nullptr)
        return 1;
    plugIn->checkIdentity(checks);
    checks.expect(plugIn->getNumPrograms() == numPresets, "each preset is a program");
    checkRatesAndBlocks(load, checks);
    checkBypass(*plugIn, checks);
    checkBrokenInput(*plugIn, checks);
    checkAutomationAndState(*plugIn, checks);
    checkInstances(load, checks);
    return checks.failures;
}

int checkAcrossFormats(const std::vector<Loader>& loaders)
{
    const auto input = makeInput(48000);
    Checks checks;
    std::vector<std::unique_ptr<PlugIn>> plugIns;
    std::vector<Block> sounds;
    for (const auto& load : loaders)
    {
        plugIns.push_back(load());
        if (plugIns.back() == nullptr)
            return 1;
        plugIns.back()->start(usualRate, usualBlock);
        sounds.push_back(playStream(load, input, usualRate, usualBlock));
        checks.expect(getDifference(sounds.back(), sounds.front()) == 0.0f,
                      "new instances of all formats sound alike");
        checks.expect(plugIns.back()->getState() == plugIns.front()->getState(),
                      "all formats open on the same state");
    }

    // A program change just behind a restored state is taken for the host's own echo and ignored.
    constexpr int guardMilliseconds = 250;
    runMessageLoop(guardMilliseconds);
    auto& first = *plugIns.front();
    std::set<State> states;
    for (int i = 0; i < first.getNumPrograms(); ++i)
    {
        const auto name = first.getProgramName(i);
        for (const auto& plugIn : plugIns)
        {
            selectProgram(*plugIn, name, checks);
            checks.expect(plugIn->getState() == first.getState(), name + " is the same in all formats");
        }
        checks.expect(states.insert(first.getState()).second, name + " has a state of its own");
    }

    float character = 0.1f;
    for (const auto& from : plugIns)
        for (const auto& to : plugIns)
        {
            character += 0.07f;
            runMessageLoop(guardMilliseconds);
            selectProgram(*from, "Cathedral", checks);
            from->setParameter(0, character);
            applyChanges(*from);
            const auto state = from->getState();
            selectProgram(*to, "Studio plate", checks);
            to->setState(state);
            applyChanges(*to);
            checks.expect(to->getState() == state, "a state goes from each format to each");
        }
    return checks.failures;
}

} // namespace hosts
