// The artwork as the window gets it: rendered by JUCE from the compiled-in data, then measured.

#include "tests/artwork/Picture.h"

#include "Artwork.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace
{

const juce::Colour orange(0xffd27900);
const juce::Colour grey(0xff424142);

std::unique_ptr<juce::Drawable> loadDrawing(const std::string& name)
{
    int size = 0;
    const auto* data = Artwork::getNamedResource((name + "_svg").c_str(), size);
    return juce::Drawable::createFromImageData(data, static_cast<std::size_t>(size));
}

auto is(juce::Colour wanted)
{
    return [wanted](juce::Colour colour) { return colour == wanted; };
}

} // namespace

TEST(ArtworkTest, DrawingsHaveTheirSizeAndStayWithinIt)
{
    const std::pair<const char*, juce::Rectangle<float>> rows[] = {{"ambrel", {152.8f, 80.0f}},
                                                                   {"knobLabels", {640.0f, 100.0f}},
                                                                   {"headerWaves", {400.0f, 60.0f}},
                                                                   {"logoWaves", {400.0f, 80.0f}}};
    for (const auto& [name, expected] : rows)
    {
        // Placement within a rectangle goes by these bounds.
        const auto bounds = loadDrawing(name)->getDrawableBounds();
        EXPECT_LT(bounds.getPosition().getDistanceFromOrigin(), 0.001f) << name;
        EXPECT_NEAR(bounds.getWidth(), expected.getWidth(), 0.001f) << name;
        EXPECT_NEAR(bounds.getHeight(), expected.getHeight(), 0.001f) << name;
    }
}

TEST(ArtworkTest, IconsShowWhatTheyMeanInTheTextsColour)
{
    struct Row
    {
        const char* name;
        std::vector<juce::Point<float>> ink, blank;
        juce::Point<float> stroke; ///< a point of one
        float strokeHeight;
    };
    constexpr float level = 3.5f, slanting = 4.95f;
    const Row rows[] = {
        {"arrowLeft", {{8, 12}, {15, 5}, {15, 19}}, {{15, 12}, {8, 5}, {8, 19}}, {12, 8}, slanting},
        {"arrowRight", {{16, 12}, {9, 5}, {9, 19}}, {{9, 12}, {16, 5}, {16, 19}}, {12, 8}, slanting},
        {"copyLeft", {{3, 12}, {21, 12}, {9, 6}, {9, 18}}, {{15, 6}, {15, 18}}, {16, 12}, level},
        {"copyRight", {{21, 12}, {3, 12}, {15, 6}, {15, 18}}, {{9, 6}, {9, 18}}, {8, 12}, level},
        {"undo", {{3, 8}, {7, 4}, {7, 12}, {21, 14}}, {{3, 14}, {17, 4}, {12, 14}}, {12, 20}, level},
        {"redo", {{21, 8}, {17, 4}, {17, 12}, {3, 14}}, {{21, 14}, {7, 4}, {12, 14}}, {12, 20}, level},
        {"menu", {{3, 4}, {21, 12}, {12, 20}}, {{12, 8}, {12, 16}}, {12, 12}, level},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        const auto drawing = loadDrawing(row.name);
        EXPECT_EQ(drawing->getDrawableBounds(), juce::Rectangle<float>(24.0f, 24.0f));
        EXPECT_EQ(drawing->getLocalBounds(), juce::Rectangle<int>(24, 24));

        ASSERT_TRUE(drawing->replaceColour(juce::Colours::black, juce::Colours::red));
        const Picture picture(*drawing, 16.0f);
        for (const auto point : row.ink)
            EXPECT_TRUE(picture.isInk(point.x, point.y)) << point.toString();
        for (const auto point : row.blank)
            EXPECT_FALSE(picture.isInk(point.x, point.y)) << point.toString();
        EXPECT_NEAR(picture.inkHeight(row.stroke.x, row.stroke.y), row.strokeHeight, 0.13f);
        EXPECT_EQ(count(picture.image, picture.image.getBounds(),
                        [](auto colour)
                        { return colour.getAlpha() > 0 && colour.withAlpha(1.0f) != juce::Colours::red; }),
                  0);

        // Centred in the button, and clear of the edge that would cut it.
        const auto ink = picture.boundsOf({24.0f, 24.0f}, [](auto colour) { return colour.getAlpha() > 8; });
        EXPECT_NEAR(ink.getCentreX(), 12.0f, 0.3f);
        EXPECT_NEAR(ink.getCentreY(), 12.0f, 0.6f);
        EXPECT_TRUE(juce::Rectangle<float>(24.0f, 24.0f).reduced(0.5f).contains(ink)) << ink.toString();
    }
}

TEST(ArtworkTest, BandLeavesANotchForTheKnob)
{
    // The circle through (193.59, 0) and (231.27, 40), and through the points opposite.
    constexpr float radius = 150.0f, centreX = 319.9f, centreY = -81.1f, tolerance = 0.5f;
    const Picture picture(*loadDrawing("knobLabels"), 8.0f);
    for (float y = 0.5625f; y < 40.0f; y += 3.25f)
        for (const float side : {-1.0f, 1.0f})
        {
            const float edge = std::sqrt(radius * radius - (y - centreY) * (y - centreY));
            EXPECT_EQ(picture.at(centreX + side * (edge + tolerance), y), orange) << y;
            EXPECT_EQ(picture.at(centreX + side * (edge - tolerance), y).getAlpha(), 0) << y;
        }
    for (const float x : {0.2f, 639.8f})
    {
        EXPECT_LE(difference(picture.at(x, 0.2f), orange), 3) << x;
        EXPECT_LE(difference(picture.at(x, 39.8f), orange), 3) << x;
        EXPECT_EQ(picture.at(x, 40.3f).getAlpha(), 0) << x;
    }
}

TEST(ArtworkTest, WordsStandWhereTheyLabel)
{
    const Picture picture(*loadDrawing("knobLabels"), 8.0f);
    const auto small = picture.boundsOf({0.0f, 0.0f, 320.0f, 40.0f}, is(juce::Colours::white));
    const auto large = picture.boundsOf({320.0f, 0.0f, 320.0f, 40.0f}, is(juce::Colours::white));
    const auto dry = picture.boundsOf({0.0f, 42.0f, 320.0f, 58.0f}, is(grey));
    const auto wet = picture.boundsOf({320.0f, 42.0f, 320.0f, 58.0f}, is(grey));

    // In the middle of the band, equally far from the window's edges, and clear of the notch.
    for (const auto& word : {small, large})
    {
        EXPECT_NEAR(word.getCentreY(), 20.0f, 0.3f);
        EXPECT_GT(word.getHeight(), 11.0f);
        EXPECT_GT(word.getWidth(), 110.0f);
    }
    EXPECT_NEAR(small.getX(), 640.0f - large.getRight(), 0.5f);
    EXPECT_LT(small.getRight(), 185.0f);
    EXPECT_GT(large.getX(), 455.0f);

    // On one line with the fader's ends between them, which reach from x = 64 to 568.
    for (const auto& word : {dry, wet})
    {
        EXPECT_NEAR(word.getBottom(), 78.0f, 0.3f);
        EXPECT_NEAR(word.getHeight(), 12.0f, 0.3f);
    }
    EXPECT_NEAR(dry.getX(), small.getX(), 0.5f);
    EXPECT_NEAR(wet.getRight(), large.getRight(), 0.5f);
    EXPECT_LT(dry.getRight(), 64.0f);
    EXPECT_GT(wet.getX(), 568.0f);
}

TEST(ArtworkTest, WordMarkIsSharpInTheWindow)
{
    // As the window places it: centred across 640 pixels, at its own size.
    juce::Image window(juce::Image::RGB, 640, 124, true);
    {
        juce::Graphics graphics(window);
        graphics.fillAll(juce::Colours::white);
        loadDrawing("ambrel")->drawWithin(
            graphics, window.getBounds().toFloat(),
            juce::RectanglePlacement::centred | juce::RectanglePlacement::onlyReduceInSize, 1.0f);
    }
    const auto area = window.getBounds();
    const auto ink = boundsOf(window, area, [](auto colour) { return colour != juce::Colours::white; });
    EXPECT_NEAR(ink.toFloat().getCentreX(), 320.0f, 1.0f);
    // The small mark is all flat edges: four bars of 2 by 22, 14, 9 and 5, without a blurred pixel.
    EXPECT_EQ(count(window, area, is(grey)), 2 * (22 + 14 + 9 + 5));
    EXPECT_GT(count(window, area, is(orange)), 1000);

    // The stem of the last letter, 34 high, is four full pixels wide with white on both sides.
    const int stem = 126 + 244;
    EXPECT_EQ(count(window, {stem, 22 + 16, 4, 34}, is(orange)), 4 * 34);
    for (const int beside : {stem - 1, stem + 4})
        EXPECT_EQ(count(window, {beside, 22 + 16, 1, 34}, is(juce::Colours::white)), 34);
}

TEST(ArtworkTest, BackgroundsLeaveBlackTextReadable)
{
    for (const auto* waves : {"headerWaves", "logoWaves"})
    {
        const auto lowest = lowestContrast(Picture(*loadDrawing(waves), 2.0f).image, juce::Colours::black);
        EXPECT_GT(lowest, 4.5) << waves;
        EXPECT_LT(lowest, 12.0) << waves << ": something must be there to see";
    }
    const auto steel = juce::ImageFileFormat::loadFrom(Artwork::steel_jpg, Artwork::steel_jpgSize);
    EXPECT_GT(lowestContrast(steel, juce::Colours::black), 10.0);
}

TEST(ArtworkTest, SteelTileRepeatsWithoutASeam)
{
    constexpr int size = 256;
    const auto tile = juce::ImageFileFormat::loadFrom(Artwork::steel_jpg, Artwork::steel_jpgSize);
    ASSERT_EQ(tile.getBounds(), juce::Rectangle<int>(size, size));
    const auto level = [&](int x, int y) { return tile.getPixelAt(x % size, y % size).getGreen(); };

    // Mean square step from each column to the next, and from each row to the next, the last one to the first.
    std::vector<double> acrossColumns, acrossRows;
    for (int i = 0; i < size; ++i)
    {
        double column = 0.0, row = 0.0;
        for (int k = 0; k < size; ++k)
        {
            column += std::pow(level(i + 1, k) - level(i, k), 2.0);
            row += std::pow(level(k, i + 1) - level(k, i), 2.0);
        }
        acrossColumns.push_back(column / size);
        acrossRows.push_back(row / size);
    }
    for (auto* steps : {&acrossColumns, &acrossRows})
    {
        const double seam = steps->back();
        steps->pop_back();
        std::sort(steps->begin(), steps->end());
        EXPECT_LT(seam, steps->back());
    }
    // Brushed from left to right: it changes far less along the strokes than across them.
    EXPECT_LT(4.0 * acrossColumns[size / 2], acrossRows[size / 2]);
}

TEST(ArtworkTest, MakersLogoFitsItsButton)
{
    const auto logo = juce::ImageFileFormat::loadFrom(Artwork::veskoraLogo_png, Artwork::veskoraLogo_pngSize);
    // Twice the button's 83 by 42, for displays of twice the density.
    ASSERT_EQ(logo.getBounds(), juce::Rectangle<int>(166, 84));
    EXPECT_EQ(logo.getPixelAt(0, 0).getAlpha(), 0);

    const juce::Colour headerStrip(0xffdfe1db);
    const auto isReadable = [&](juce::Colour colour)
    { return contrast(headerStrip.overlaidWith(colour), headerStrip) > 4.5; };
    const auto bounds = boundsOf(logo, logo.getBounds(), isReadable).toFloat() / 2.0f;
    EXPECT_NEAR(bounds.getCentreX(), 41.5f, 1.0f);
    EXPECT_NEAR(bounds.getCentreY(), 21.0f, 0.5f);
    EXPECT_GT(bounds.getWidth(), 70.0f);
}
