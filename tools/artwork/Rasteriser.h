/**
    Draws SVG text into an image with the plug-in's own renderer, so that what is seen is what the window shows:

        const juce::Image image = Rasteriser("<svg ...>").render(2.0f, juce::Colours::white);

    A drawing that this renderer does not take is an error, since the plug-in would show nothing for it.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

namespace ambrel::artwork
{

class Rasteriser
{
public:
    /** Throws std::runtime_error if the text is no drawing. */
    explicit Rasteriser(const juce::String& svg);

    /** The drawing's bounds in its own units. */
    juce::Rectangle<float> bounds() const { return drawable->getDrawableBounds(); }

    /** The whole drawing at a number of pixels per unit, each side rounded to whole pixels, over a background
        that may be transparent. */
    juce::Image render(float scale, juce::Colour background) const;

private:
    std::unique_ptr<juce::Drawable> drawable;
};

} // namespace ambrel::artwork
