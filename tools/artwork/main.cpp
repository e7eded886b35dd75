/**
    ambrel-artwork: makes the derived artwork, and shows any drawing as the plug-in's renderer draws it.

        ambrel-artwork make <resources folder>
            writes artwork/knobLabels.svg, artwork/veskoraLogo.png and artwork/steel.jpg from their sources
        ambrel-artwork render <drawing.svg> <pixels per unit> <picture.png> [<background, as ffd27900>]
*/
#include "tools/artwork/GlyphOutlines.h"
#include "tools/artwork/KnobLabels.h"
#include "tools/artwork/Rasteriser.h"
#include "tools/artwork/SteelTile.h"

#include <cstdio>
#include <stdexcept>

namespace
{

using namespace ambrel::artwork;

/** The logo is shown at half its size in pixels, so that it stays sharp on displays of twice the density. */
constexpr float logoScale = 2.0f;

/** Enough to keep the strokes of the metal clean. */
constexpr float steelQuality = 0.9f;

juce::File fileFromArgument(const juce::String& path)
{
    return juce::File::getCurrentWorkingDirectory().getChildFile(path);
}

void write(const juce::File& file, const void* data, std::size_t size)
{
    if (!file.replaceWithData(data, size))
        throw std::runtime_error("cannot write " + file.getFullPathName().toStdString());
}

void writeImage(const juce::File& file, const juce::Image& image, juce::ImageFileFormat&& format)
{
    juce::MemoryOutputStream encoded;
    if (!format.writeImageToStream(image, encoded))
        throw std::runtime_error("cannot encode " + file.getFullPathName().toStdString());
    write(file, encoded.getData(), encoded.getDataSize());
}

juce::String loadText(const juce::File& file)
{
    if (!file.existsAsFile())
        throw std::runtime_error("cannot read " + file.getFullPathName().toStdString());
    return file.loadFileAsString();
}

void make(const juce::File& resources)
{
    const juce::File artwork = resources.getChildFile("artwork");

    const GlyphOutlines bold(resources.getChildFile("fonts/roboto/Roboto-Bold.ttf"));
    const juce::String labels = makeKnobLabels(bold);
    write(artwork.getChildFile("knobLabels.svg"), labels.toRawUTF8(), labels.getNumBytesAsUTF8());

    const Rasteriser logo(loadText(artwork.getChildFile("source/veskoraLogo.svg")));
    writeImage(artwork.getChildFile("veskoraLogo.png"),
               logo.render(logoScale, juce::Colours::transparentBlack), juce::PNGImageFormat());

    juce::JPEGImageFormat steelFormat;
    steelFormat.setQuality(steelQuality);
    writeImage(artwork.getChildFile("steel.jpg"), makeSteelTile(), std::move(steelFormat));
}

void render(const juce::StringArray& arguments)
{
    const float scale = arguments[2].getFloatValue();
    if (!(scale > 0.0f))
        throw std::runtime_error("the scale must be above 0");
    const auto background =
        arguments.size() > 4 ? juce::Colour::fromString(arguments[4]) : juce::Colours::white;
    const Rasteriser drawing(loadText(fileFromArgument(arguments[1])));
    writeImage(fileFromArgument(arguments[3]), drawing.render(scale, background), juce::PNGImageFormat());
}

int run(const juce::StringArray& arguments)
{
    const juce::ScopedJuceInitialiser_GUI juceInitialiser;
    try
    {
        if (arguments.size() == 2 && arguments[0] == "make")
            make(fileFromArgument(arguments[1]));
        else if ((arguments.size() == 4 || arguments.size() == 5) && arguments[0] == "render")
            render(arguments);
        else
        {
            std::fputs(
                "usage: ambrel-artwork make <resources folder>\n"
                "       ambrel-artwork render <drawing.svg> <pixels per unit> <picture.png> [<background>]\n",
                stderr);
            return 2;
        }
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "ambrel-artwork: %s\n", error.what());
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[]) { return run(juce::StringArray(argv + 1, argc - 1)); }
