/** A folder of its own for a test's files, which goes away with the object. */
#pragma once

#include <juce_core/juce_core.h>

#include <string>

class TemporaryFolder
{
public:
    TemporaryFolder() { folder.createDirectory(); }
    ~TemporaryFolder() { folder.deleteRecursively(); }

    juce::File get(const std::string& name) const { return folder.getChildFile(name); }
    std::string path(const std::string& name) const { return get(name).getFullPathName().toStdString(); }
    bool contains(const std::string& name) const { return get(name).exists(); }
    int count() const { return folder.getNumberOfChildFiles(juce::File::findFilesAndDirectories); }

    juce::File write(const std::string& name, const std::string& content = "<Preset/>") const
    {
        const auto file = get(name);
        file.deleteFile();
        file.create();
        file.appendData(content.data(), content.size());
        return file;
    }

    /** All bytes of a file; none if it is not there. */
    std::string read(const std::string& name) const
    {
        juce::MemoryBlock content;
        get(name).loadFileAsData(content);
        return {content.begin(), content.end()};
    }

    const juce::File folder = juce::File::createTempFile("test");
};
