#include "tools/render/FilePaths.h"

#include <filesystem>

namespace ambrel::render
{

std::optional<FileKind> fileKindOf(const std::string& path)
{
    const juce::String text = juce::String::fromUTF8(path.c_str());

    if (text.endsWithIgnoreCase(".wav"))
        return FileKind::wav;
    if (text.endsWithIgnoreCase(".flac"))
        return FileKind::flac;
    return std::nullopt;
}

std::string outputNameFor(const std::string& inputPath)
{
    const std::filesystem::path path(inputPath);
    const std::string name = path.filename().string();

    if (fileKindOf(name))
        return name;
    return path.stem().string() + ".wav";
}

juce::File toFile(const std::string& path)
{
    return juce::File::getCurrentWorkingDirectory().getChildFile(juce::String::fromUTF8(path.c_str()));
}

} // namespace ambrel::render
