#include "tools/artwork/Rasteriser.h"

#include <stdexcept>

namespace ambrel::artwork
{

Rasteriser::Rasteriser(const juce::String& svg)
    : drawable(juce::Drawable::createFromImageData(svg.toRawUTF8(), svg.getNumBytesAsUTF8()))
{
    if (drawable == nullptr || drawable->getDrawableBounds().isEmpty())
        throw std::runtime_error("not a drawing that JUCE can show");
}

juce::Image Rasteriser::render(float scale, juce::Colour background) const
{
    const juce::Rectangle<float> area = bounds();
    juce::Image image(juce::Image::ARGB, juce::roundToInt(area.getWidth() * scale),
                      juce::roundToInt(area.getHeight() * scale), true);
    juce::Graphics graphics(image);
    graphics.fillAll(background);
    drawable->draw(graphics, 1.0f,
                   juce::AffineTransform::translation(-area.getX(), -area.getY()).scaled(scale));
    return image;
}

} // namespace ambrel::artwork
