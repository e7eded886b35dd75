#include "tools/render/FileOutput.h"

#include "tools/render/Errors.h"
#include "tools/render/FilePaths.h"

namespace ambrel::render
{

juce::File resolveOutputFile(const std::string& path)
{
    const juce::File file = toFile(path);
    const juce::File target = file.isSymbolicLink() ? file.getLinkedTarget() : file;

    if (target.isDirectory())
        throw RenderError("'" + path + "' cannot be written: it is a folder");
    if (!target.getParentDirectory().isDirectory())
        throw RenderError("'" + path + "' cannot be written: there is no folder '" +
                          target.getParentDirectory().getFullPathName().toStdString() + "'");
    return target;
}

void writeOutputFile(const std::string& path, const juce::MemoryBlock& content)
{
    const juce::TemporaryFile temporary(resolveOutputFile(path), juce::TemporaryFile::useHiddenFile);

    {
        juce::FileOutputStream stream(temporary.getFile());
        const bool written = stream.openedOk() && stream.write(content.getData(), content.getSize());
        stream.flush();

        if (!written || stream.getStatus().failed())
            throwWriteError(path, stream.getStatus());
    }

    if (!temporary.overwriteTargetFileWithTemporary())
        throwWriteError(path, juce::Result::fail("the finished file cannot be given its name"));
}

void throwWriteError(const std::string& path, const juce::Result& result)
{
    const std::string reason = result.getErrorMessage().toStdString();
    throw RenderError("'" + path +
                      "' cannot be written: " + (reason.empty() ? "the disk may be full" : reason));
}

} // namespace ambrel::render
