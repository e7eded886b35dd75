/**
    ambrel-gallery: pictures of every control in every look, for those who change a look.

        ambrel-gallery [FOLDER]

    writes dark.png, steel.png and reverb.png, and each with @1.5x and @2x for dense displays, to the folder,
    which is made if need be. Without one it is the current folder.
*/
#include "editor/themes/DarkTheme.h"
#include "editor/themes/ReverbTheme.h"
#include "editor/themes/SteelTheme.h"
#include "tools/gallery/GalleryPage.h"

#include <iostream>

namespace
{

bool writePicture(const juce::File& file, const juce::Image& picture)
{
    juce::FileOutputStream stream(file);

    if (stream.failedToOpen() || !stream.setPosition(0) || stream.truncate().failed() ||
        !juce::PNGImageFormat().writeImageToStream(picture, stream))
    {
        std::cerr << "ambrel-gallery: cannot write " << file.getFullPathName() << '\n';
        return false;
    }

    std::cout << file.getFullPathName() << '\n';
    return true;
}

template <typename Theme>
bool writePages(const juce::File& folder, const juce::String& name, const juce::String& title)
{
    Theme theme;
    juce::LookAndFeel::setDefaultLookAndFeel(&theme);

    // Each look has typefaces of its own, and the library keeps those of the one before.
    juce::Typeface::clearTypefaceCache();

    bool isWritten = true;
    {
        GalleryPage page(theme, title);
        for (const auto& [suffix, scale] : {std::pair{".png", 1.0f}, {"@1.5x.png", 1.5f}, {"@2x.png", 2.0f}})
            isWritten =
                isWritten && writePicture(folder.getChildFile(name + suffix),
                                          page.createComponentSnapshot(page.getLocalBounds(), true, scale));
    }
    juce::LookAndFeel::setDefaultLookAndFeel(nullptr);
    return isWritten;
}

} // namespace

int main(int argc, char* argv[])
{
    const juce::ScopedJuceInitialiser_GUI juceInitialiser;

    const juce::String argument = argc > 1 ? juce::String::fromUTF8(argv[1]) : juce::String(".");

    if (argc > 2 || argument.startsWith("-"))
    {
        std::cerr << "usage: ambrel-gallery [FOLDER]\n";
        return 2;
    }

    const auto folder = juce::File::getCurrentWorkingDirectory().getChildFile(argument);

    if (const auto result = folder.createDirectory(); result.failed())
    {
        std::cerr << "ambrel-gallery: " << result.getErrorMessage() << '\n';
        return 1;
    }

    const bool isWritten = writePages<DarkTheme>(folder, "dark", "Simplistic dark") &&
                           writePages<SteelTheme>(folder, "steel", "Brushed steel") &&
                           writePages<ReverbTheme>(folder, "reverb", "Reverb");
    return isWritten ? 0 : 1;
}
