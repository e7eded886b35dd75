/**
    Paths as the user writes them: relative ones start from the working directory, and the extension of an
    output file tells its kind. Plain text work, except toFile, which asks for the working directory.
*/
#pragma once

#include <juce_core/juce_core.h>

#include <optional>
#include <string>

namespace ambrel::render
{

enum class FileKind
{
    wav,
    flac
};

/** The kind of file that a path's extension asks for, in any case; empty for an extension that cannot be
    written. */
std::optional<FileKind> fileKindOf(const std::string& path);

/** The name that an input's output gets in an output folder: the input's own, as FLAC if it is FLAC, else as
    WAV. */
std::string outputNameFor(const std::string& inputPath);

juce::File toFile(const std::string& path);

} // namespace ambrel::render
