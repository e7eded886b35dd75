/**
    Files appear under their name only when they are whole: what is written goes to a hidden file in the same folder
    first, and that takes the name in one step.
*/
#pragma once

#include <juce_core/juce_core.h>

#include <string>

namespace ambrel::render
{

/** The file that a path stands for: a link stays a link, and what it points to is replaced.
    @throws RenderError if it is a folder, or its folder does not exist */
juce::File resolveOutputFile(const std::string& path);

/** Writes a whole file. @throws RenderError, and then nothing has changed */
void writeOutputFile(const std::string& path, const juce::MemoryBlock& content);

/** @throws RenderError about a file that cannot be written, with the reason if there is one */
[[noreturn]] void throwWriteError(const std::string& path, const juce::Result& result);

} // namespace ambrel::render
