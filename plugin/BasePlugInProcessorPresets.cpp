#include "plugin/BasePlugInProcessor.h"
#include "plugin/ForeignData.h"

#include <exception>

namespace
{
constexpr juce::uint32 programChangeGuardMilliseconds = 200;

const juce::Identifier rootType("Root");
const juce::Identifier folderType("PresetFolder");
const juce::Identifier presetType("Preset");
const juce::Identifier nameProperty("Name");
const juce::Identifier indexProperty("Index");

constexpr auto resetPresetName = "Reset";
constexpr auto presetFilePattern = "*.xml";

juce::ValueTree makeFolderNode(const juce::String& name)
{
    juce::ValueTree node(folderType);
    node.setProperty(nameProperty, name, nullptr);
    return node;
}
} // namespace

void BasePlugInProcessor::initializePresetHandling()
{
    factoryPresetFolder = places.getFactoryPresetFolder();
    userPresetFolder = places.getUserPresetFolder();
    userPresetFolder.createDirectory();

    presetTree = juce::ValueTree(rootType);
    updatePresetTree();

    // No preset is loaded: the engine keeps its defaults, which are what the preset of this name holds.
    currentProgram.store(resetPresetIndex, std::memory_order_relaxed);
    if (presets.size() > resetPresetIndex)
        currentPresetName = presets[resetPresetIndex].name;
}

void BasePlugInProcessor::updatePresetTree()
{
    presetTree.removeAllChildren(nullptr);
    presets.clear();

    auto factoryNode = makeFolderNode("Factory presets");
    auto userNode = makeFolderNode("User presets");
    presetTree.addChild(factoryNode, 0, nullptr);
    presetTree.addChild(userNode, 1, nullptr);

    int nextIndex = 0;
    loadPresetDirectory(factoryNode, factoryPresetFolder, nextIndex);
    loadPresetDirectory(userNode, userPresetFolder, nextIndex);
}

/** The files of the folder, then one level of subfolders. Subfolders stand before files in the tree, yet
    their presets have the higher numbers. */
void BasePlugInProcessor::loadPresetDirectory(juce::ValueTree& folderNode, const juce::File& folder,
                                              int& nextIndex)
{
    const auto subfolders = folder.findChildFiles(juce::File::findDirectories, false, "*");
    addPresetFilesToFolderNode(folder, folderNode, nextIndex);

    for (int position = 0; position < subfolders.size(); ++position)
    {
        const auto& subfolder = subfolders.getReference(position);
        auto node = makeFolderNode(ForeignData::toValidText(subfolder.getFileNameWithoutExtension()));
        addPresetFilesToFolderNode(subfolder, node, nextIndex);
        folderNode.addChild(node, position, nullptr);
    }
}

void BasePlugInProcessor::addPresetFilesToFolderNode(const juce::File& folder, juce::ValueTree& folderNode,
                                                     int& nextIndex)
{
    const auto files = folder.findChildFiles(juce::File::findFiles, false, presetFilePattern);

    for (int position = 0; position < files.size(); ++position)
    {
        const auto& file = files.getReference(position);
        const auto name = ForeignData::toValidText(file.getFileNameWithoutExtension());

        juce::ValueTree node(presetType);
        node.setProperty(nameProperty, name, nullptr);
        node.setProperty(indexProperty, nextIndex, nullptr);
        folderNode.addChild(node, position, nullptr);

        if (name.equalsIgnoreCase(resetPresetName))
            resetPresetIndex = nextIndex;
        presets.set(nextIndex, {name, file.getFullPathName()});
        ++nextIndex;
    }
}

int BasePlugInProcessor::getNumPrograms() { return presets.size(); }

int BasePlugInProcessor::getCurrentProgram() { return currentProgram.load(std::memory_order_relaxed); }

void BasePlugInProcessor::setCurrentProgram(int index)
{
    const auto restored = lastStateRestoreTime.load(std::memory_order_relaxed);
    if (juce::Time::getMillisecondCounter() - restored < programChangeGuardMilliseconds)
        return;

    addUndoState();
    currentProgram.store(index, std::memory_order_relaxed);
    try
    {
        importFromPresetFile(juce::File(presets[index].path));
    }
    catch (const std::exception&)
    {
        // The file names a parameter that the engine does not have. Hosts know no exceptions: what was read
        // before it stays and is put into force.
        effectuateQuietly();
    }
    callListeners(-1);
}

/** If it fails, for want of memory say, what is out of date stays marked and the next change tries again. */
void BasePlugInProcessor::effectuateQuietly() noexcept
{
    try
    {
        baseProcessor->effectuateParameterChanges();
    }
    catch (const std::exception&)
    {
    }
}

const juce::String BasePlugInProcessor::getProgramName(int index) { return presets[index].name; }

void BasePlugInProcessor::changeProgramName(int, const juce::String&) {}
