#include "plugin/BasePlugInProcessor.h"

#include <utility>

juce::MemoryBlock BasePlugInProcessor::makeSnapshot()
{
    juce::MemoryBlock snapshot;
    juce::MemoryOutputStream output(snapshot, false);
    getParameterSettings(output);
    output.flush();
    return snapshot;
}

void BasePlugInProcessor::applySnapshot(const juce::MemoryBlock& snapshot)
{
    juce::MemoryInputStream input(snapshot, false);
    setParameterSettings(input);
}

void BasePlugInProcessor::addUndoState()
{
    undoStates.push_back(makeSnapshot());
    redoStates.clear();
}

void BasePlugInProcessor::undo()
{
    if (undoStates.empty())
        return;

    redoStates.push_back(makeSnapshot());
    applySnapshot(juce::MemoryBlock(undoStates.back()));
    undoStates.pop_back();
}

void BasePlugInProcessor::redo()
{
    if (redoStates.empty())
        return;

    undoStates.push_back(makeSnapshot());
    applySnapshot(juce::MemoryBlock(redoStates.back()));
    redoStates.pop_back();
}

void BasePlugInProcessor::copyToAlternate() { alternateSettings = makeSnapshot(); }

void BasePlugInProcessor::switchToAlternateSettings()
{
    auto present = makeSnapshot();
    applySnapshot(alternateSettings);
    alternateSettings = std::move(present);
}
