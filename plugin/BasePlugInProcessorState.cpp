/** The two lasting forms of the settings.

    State block, stored by hosts and kept for undo; little-endian on every platform that the plug-in is built
    for:

        0       4  magic, "KSEV"
        4       4  plug-in code
        8       4  version code, not looked at by a reader
        12      4  N, the number of entries
        16+8i   4  engine parameter
        20+8i   4  value, 32-bit float in the engine's unit
        16+8N   8  marker
        24+8N   ?  preset name, UTF-8, closed by a zero byte

    Marker and name may be missing.

    Preset file: XML, <Preset><ParameterSettings><Parameter id unit value
    name/>...</ParameterSettings></Preset>. Written are the described parameters; read are all that the engine
    has, so factory presets can set all. */
#include "plugin/BasePlugInProcessor.h"
#include "plugin/ForeignData.h"

#include <exception>
#include <stdexcept>

namespace
{
constexpr juce::uint32 stateMagic = 0x5645534b; // 'VESK'
constexpr auto stateMarker = static_cast<juce::int64>(0x8704af4a0943473eULL);
constexpr int headerLength = 16;
constexpr int entryLength = 8;
constexpr int markerLength = 8;

const juce::Identifier presetTag("Preset");
const juce::Identifier settingsTag("ParameterSettings");
const juce::Identifier parameterTag("Parameter");
const juce::Identifier customTag("CustomData");
const juce::Identifier idAttribute("id");
const juce::Identifier unitAttribute("unit");
const juce::Identifier valueAttribute("value");
const juce::Identifier nameAttribute("name");

constexpr int presetLineLength = 60;

template <typename T>
void writeRaw(juce::OutputStream& output, T value)
{
    static_assert(sizeof(T) == 4);
    output.write(&value, sizeof(value));
}

template <typename T>
T readRaw(juce::InputStream& input)
{
    static_assert(sizeof(T) == 4);
    T value{};
    input.read(&value, static_cast<int>(sizeof(value)));
    return value;
}

/** Marks a thread as importing for as long as this lives. */
class ScopedImport
{
public:
    explicit ScopedImport(std::atomic<juce::Thread::ThreadID>& importing) : importingThread(importing)
    {
        importingThread.store(juce::Thread::getCurrentThreadId(), std::memory_order_relaxed);
    }
    ~ScopedImport() { importingThread.store(nullptr, std::memory_order_relaxed); }

private:
    std::atomic<juce::Thread::ThreadID>& importingThread;

    JUCE_DECLARE_NON_COPYABLE(ScopedImport)
};
} // namespace

void BasePlugInProcessor::getStateInformation(juce::MemoryBlock& destination)
{
    getCurrentProgramStateInformation(destination);
}

void BasePlugInProcessor::setStateInformation(const void* data, int size)
{
    setCurrentProgramStateInformation(data, size);
}

void BasePlugInProcessor::getCurrentProgramStateInformation(juce::MemoryBlock& destination)
{
    juce::MemoryOutputStream output(destination, false);
    getParameterSettings(output);
}

void BasePlugInProcessor::setCurrentProgramStateInformation(const void* data, int size)
{
    juce::MemoryInputStream input(data, static_cast<std::size_t>(juce::jmax(size, 0)), false);
    try
    {
        setParameterSettings(input);
    }
    catch (const std::exception&)
    {
        // The engine could not bring itself up to date, for want of memory say. Hosts know no exceptions.
    }
    lastStateRestoreTime.store(juce::Time::getMillisecondCounter(), std::memory_order_relaxed);
}

void BasePlugInProcessor::getParameterSettings(juce::OutputStream& output)
{
    writeRaw(output, stateMagic);
    writeRaw(output, plugInCode);
    writeRaw(output, getVersionCode());
    writeRaw(output, parameterDescriptions.size());
    for (const auto* description : parameterDescriptions)
    {
        writeRaw(output, description->internalId);
        writeRaw(output, description->getEngineValue());
    }
    output.writeInt64(stateMarker);
    output.writeString(currentPresetName);
}

bool BasePlugInProcessor::setParameterSettings(juce::InputStream& input)
{
    if (input.getTotalLength() < headerLength)
        return false;

    const auto magic = readRaw<juce::uint32>(input);
    const auto code = readRaw<juce::uint32>(input);
    readRaw<juce::int32>(input); // blocks of all versions are alike
    if (magic != stateMagic || code != plugInCode)
        return false;

    // The test admits counts whose entries run past the end: reading then stops there.
    const juce::int64 count = readRaw<juce::int32>(input);
    if (input.getTotalLength() >= count * entryLength + 4)
    {
        for (juce::int64 entry = 0; entry < count && input.getNumBytesRemaining() >= entryLength; ++entry)
        {
            const auto id = readRaw<juce::int32>(input);
            const auto value = readRaw<float>(input);
            try
            {
                baseProcessor->setParameterValue(id, value, false);
            }
            catch (const std::out_of_range&)
            {
                return false;
            }
        }
    }

    baseProcessor->effectuateParameterChanges();
    callListeners(-1);

    if (input.getPosition() + markerLength >= input.getTotalLength())
        return true;
    if (input.readInt64() == stateMarker)
        currentPresetName = ForeignData::toValidText(input.readString());
    else
        input.setPosition(input.getPosition() - markerLength);
    return true;
}

bool BasePlugInProcessor::exportToPresetFile(const juce::File& file)
{
    juce::XmlElement preset(presetTag);

    auto* parameters = preset.createNewChildElement(settingsTag);
    for (const auto* description : parameterDescriptions)
    {
        auto* parameter = parameters->createNewChildElement(parameterTag);
        parameter->setAttribute(idAttribute, description->internalId);
        parameter->setAttribute(unitAttribute, description->unit);
        parameter->setAttribute(valueAttribute, static_cast<double>(description->getEngineValue()));
        parameter->setAttribute(nameAttribute, description->name);
    }

    auto customData = std::make_unique<juce::XmlElement>(customTag);
    if (fillCustomDataXmlElement(customData.get()))
        preset.addChildElement(customData.release());

    juce::XmlElement::TextFormat format;
    format.customEncoding = "UTF-8";
    format.lineWrapLength = presetLineLength;
    const bool written = preset.writeTo(file, format);
    if (written)
        currentPresetName = ForeignData::toValidText(file.getFileNameWithoutExtension());
    return written;
}

bool BasePlugInProcessor::importFromPresetFile(const juce::File& file)
{
    const auto preset = ForeignData::readXml(file);
    const auto* parameters = preset != nullptr ? preset->getChildByName(settingsTag) : nullptr;
    if (parameters == nullptr)
        return false;

    {
        const ScopedImport importing(importingThread);
        clearSettings();
    }

    for (const auto* parameter : parameters->getChildIterator())
    {
        const int id = parameter->getIntAttribute(idAttribute, -1);
        if (id < 0 || presetExemptParameters.contains(id))
            continue;
        const auto value = static_cast<float>(parameter->getDoubleAttribute(valueAttribute, 0.0));
        baseProcessor->setParameterValue(id, value, false);
        notifyInternalParameterChange(id);
    }
    baseProcessor->effectuateParameterChanges();

    if (auto* customData = preset->getChildByName(customTag))
        parseCustomDataXmlElement(customData);

    callListeners(-1);
    currentPresetName = ForeignData::toValidText(file.getFileNameWithoutExtension());
    return true;
}

bool BasePlugInProcessor::fillCustomDataXmlElement(juce::XmlElement*) { return false; }

void BasePlugInProcessor::parseCustomDataXmlElement(juce::XmlElement*) {}

void BasePlugInProcessor::clearSettings()
{
    for (int index = 0; index < parameterDescriptions.size(); ++index)
        if (!presetExemptParameters.contains(parameterDescriptions.getUnchecked(index)->internalId))
            resetParameter(index, false);
}
