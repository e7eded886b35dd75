// The artwork as the window gets it: rendered by JUCE from the compiled-in data. How the window places it is tested there.

#include "tests/artwork/Picture.h"

#include "Artwork.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace
{
constexpr int pixelsPerUnit = 4;

std::unique_ptr<juce::Drawable> loadDrawing(const std::string& name)
{
    int size = 0;
    const auto* data = Artwork::getNamedResource((name + "_svg").c_str(), size);
    return juce::Drawable::createFromImageData(data, static_cast<std::size_t>(size));
}

juce::Image render(const juce::Drawable& drawing)
{
    const auto area = (drawing.getDrawableBounds() * pixelsPerUnit).toNearestInt();
    juce::Image image(juce::Image::ARGB, area.getWidth(), area.getHeight(), true);
    juce::Graphics graphics(image);
    drawing.draw(graphics, 1.0f, juce::AffineTransform::scale(pixelsPerUnit));
    return image;
}

/** The lowest contrast of black text with any pixel of an image that lies on white, after WCAG 2: from 1 to 21. */
double lowestContrastWithBlack(const juce::Image& image)
{
    const auto linear = [](float value)
    { return value <= 0.04045f ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); };
    double lowest = 21.0;
    for (int y = 0; y < image.getHeight(); ++y)
        for (int x = 0; x < image.getWidth(); ++x)
        {
            const auto colour = juce::Colours::white.overlaidWith(image.getPixelAt(x, y));
            const double luminance = 0.2126 * linear(colour.getFloatRed()) +
                                     0.7152 * linear(colour.getFloatGreen()) +
                                     0.0722 * linear(colour.getFloatBlue());
            lowest = std::min(lowest, (luminance + 0.05) / 0.05);
        }
    return lowest;
}
} // namespace

TEST(ArtworkTest, IconsShowWhatTheyMeanInTheTextsColour)
{
    struct Row
    {
        const char* name;
        std::vector<juce::Point<int>> ink, blank;
    };
    const Row rows[] = {
        {"arrowLeft", {{8, 12}, {15, 5}, {15, 19}}, {{15, 12}, {8, 5}, {8, 19}}},
        {"arrowRight", {{16, 12}, {9, 5}, {9, 19}}, {{9, 12}, {16, 5}, {16, 19}}},
        {"copyLeft", {{3, 12}, {21, 12}, {9, 6}, {9, 18}}, {{15, 6}, {15, 18}}},
        {"copyRight", {{21, 12}, {3, 12}, {15, 6}, {15, 18}}, {{9, 6}, {9, 18}}},
        {"undo", {{3, 8}, {7, 4}, {7, 12}, {21, 14}}, {{3, 14}, {17, 4}, {12, 14}}},
        {"redo", {{21, 8}, {17, 4}, {17, 12}, {3, 14}}, {{21, 14}, {7, 4}, {12, 14}}},
        {"menu", {{3, 4}, {21, 12}, {12, 20}}, {{12, 8}, {12, 16}}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        const auto drawing = loadDrawing(row.name);
        ASSERT_EQ(drawing->getDrawableBounds(), juce::Rectangle<float>(24.0f, 24.0f));
        ASSERT_TRUE(drawing->replaceColour(juce::Colours::black, juce::Colours::red));
        const auto image = render(*drawing);
        const auto at = [&](juce::Point<int> point)
        { return image.getPixelAt(point.x * pixelsPerUnit, point.y * pixelsPerUnit); };
        for (const auto point : row.ink)
            EXPECT_EQ(at(point), juce::Colours::red) << point.toString();
        for (const auto point : row.blank)
            EXPECT_EQ(at(point).getAlpha(), 0) << point.toString();
    }
}

TEST(ArtworkTest, BackgroundsLeaveBlackTextReadable)
{
    for (const auto* waves : {"headerWaves", "logoWaves"})
    {
        const auto lowest = lowestContrastWithBlack(render(*loadDrawing(waves)));
        EXPECT_GT(lowest, 4.5) << waves;
        EXPECT_LT(lowest, 12.0) << waves << ": something must be there to see";
    }
    const auto steel = juce::ImageFileFormat::loadFrom(Artwork::steel_jpg, Artwork::steel_jpgSize);
    EXPECT_GT(lowestContrastWithBlack(steel), 10.0);
}
