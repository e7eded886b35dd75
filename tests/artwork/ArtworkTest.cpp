// The artwork as the window gets them: rendered by JUCE from the compiled-in data, then measured.

#include "tests/artwork/Picture.h"

#include "Artwork.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace
{

const juce::Colour orange(0xffd27900);
const juce::Colour grey(0xff424142);

struct Drawing
{
    const char* name;
    const char* data;
    int size;
    float width;
    float height;
};

Drawing icon(const char* name, const char* data, int size) { return {name, data, size, 24.0f, 24.0f}; }

const Drawing arrowLeft = icon("arrowLeft", Artwork::arrowLeft_svg, Artwork::arrowLeft_svgSize);
const Drawing arrowRight = icon("arrowRight", Artwork::arrowRight_svg, Artwork::arrowRight_svgSize);
const Drawing copyLeft = icon("copyLeft", Artwork::copyLeft_svg, Artwork::copyLeft_svgSize);
const Drawing copyRight = icon("copyRight", Artwork::copyRight_svg, Artwork::copyRight_svgSize);
const Drawing undo = icon("undo", Artwork::undo_svg, Artwork::undo_svgSize);
const Drawing redo = icon("redo", Artwork::redo_svg, Artwork::redo_svgSize);
const Drawing menu = icon("menu", Artwork::menu_svg, Artwork::menu_svgSize);
const std::vector<Drawing> icons = {arrowLeft, arrowRight, copyLeft, copyRight, undo, redo, menu};

const Drawing wordMark = {"ambrel", Artwork::ambrel_svg, Artwork::ambrel_svgSize, 152.8f, 80.0f};
const Drawing knobLabels = {"knobLabels", Artwork::knobLabels_svg, Artwork::knobLabels_svgSize, 640.0f,
                            100.0f};
const Drawing headerWaves = {"headerWaves", Artwork::headerWaves_svg, Artwork::headerWaves_svgSize, 400.0f,
                             60.0f};
const Drawing logoWaves = {"logoWaves", Artwork::logoWaves_svg, Artwork::logoWaves_svgSize, 400.0f, 80.0f};

std::unique_ptr<juce::Drawable> load(const Drawing& drawing)
{
    return juce::Drawable::createFromImageData(drawing.data, static_cast<std::size_t>(drawing.size));
}

bool isOpaqueWhite(juce::Colour colour) { return colour == juce::Colours::white; }
bool isOpaqueGrey(juce::Colour colour) { return colour == grey; }

} // namespace

TEST(ArtworkTest, DrawingsHaveTheirSizeAndStayWithinIt)
{
    std::vector<Drawing> drawings = icons;
    drawings.insert(drawings.end(), {wordMark, knobLabels, headerWaves, logoWaves});
    for (const Drawing& drawing : drawings)
    {
        SCOPED_TRACE(drawing.name);
        const auto drawable = load(drawing);
        ASSERT_NE(drawable, nullptr);
        // Placement within a rectangle goes by these bounds, and an icon's width by the component's size.
        const auto bounds = drawable->getDrawableBounds();
        EXPECT_NEAR(bounds.getX(), 0.0f, 0.001f);
        EXPECT_NEAR(bounds.getY(), 0.0f, 0.001f);
        EXPECT_NEAR(bounds.getWidth(), drawing.width, 0.001f);
        EXPECT_NEAR(bounds.getHeight(), drawing.height, 0.001f);
    }
    for (const Drawing& drawing : icons)
        EXPECT_EQ(load(drawing)->getLocalBounds(), juce::Rectangle<int>(24, 24)) << drawing.name;
}

TEST(ArtworkTest, IconsShowWhatTheyMean)
{
    struct Row
    {
        Drawing drawing;
        std::vector<juce::Point<float>> ink;
        std::vector<juce::Point<float>> blank;
        /** Where a stroke runs level, and the height of its ink there. */
        juce::Point<float> shaft;
    };
    const std::vector<Row> rows = {
        {arrowLeft, {{8, 12}, {15, 5}, {15, 19}}, {{15, 12}, {8, 5}, {8, 19}}, {}},
        {arrowRight, {{16, 12}, {9, 5}, {9, 19}}, {{9, 12}, {16, 5}, {16, 19}}, {}},
        {copyLeft, {{3, 12}, {21, 12}, {9, 6}, {9, 18}}, {{15, 6}, {15, 18}}, {16, 12}},
        {copyRight, {{21, 12}, {3, 12}, {15, 6}, {15, 18}}, {{9, 6}, {9, 18}}, {8, 12}},
        {undo, {{3, 8}, {7, 4}, {7, 12}, {21, 14}}, {{3, 14}, {17, 4}, {12, 14}}, {12, 20}},
        {redo, {{21, 8}, {17, 4}, {17, 12}, {3, 14}}, {{21, 14}, {7, 4}, {12, 14}}, {12, 20}},
        {menu, {{3, 4}, {21, 12}, {12, 20}}, {{12, 8}, {12, 16}}, {12, 12}},
    };
    constexpr float strokeWeight = 3.5f;
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.drawing.name);
        const Picture picture(*load(row.drawing), 16.0f);
        for (const auto point : row.ink)
            EXPECT_TRUE(picture.isInk(point.x, point.y)) << point.toString();
        for (const auto point : row.blank)
            EXPECT_FALSE(picture.isInk(point.x, point.y)) << point.toString();
        if (row.shaft.y > 0.0f)
        {
            EXPECT_NEAR(picture.inkHeight(row.shaft.x, row.shaft.y), strokeWeight, 0.13f);
        }

        // Centred in the button, and clear of the edge that would cut it.
        const auto ink =
            picture.boundsOf({24.0f, 24.0f}, [](juce::Colour colour) { return colour.getAlpha() > 8; });
        EXPECT_NEAR(ink.getCentreX(), 12.0f, 0.3f);
        EXPECT_NEAR(ink.getCentreY(), 12.0f, 0.6f);
        EXPECT_TRUE(juce::Rectangle<float>(24.0f, 24.0f).reduced(0.5f).contains(ink)) << ink.toString();
    }
    // A slanting stroke of the same weight is higher by the root of two.
    EXPECT_NEAR(Picture(*load(arrowLeft), 16.0f).inkHeight(12.0f, 8.0f), strokeWeight * std::sqrt(2.0f),
                0.3f);
}

TEST(ArtworkTest, IconsAreRecolouredAsAWhole)
{
    for (const Drawing& drawing : icons)
    {
        const auto drawable = load(drawing);
        ASSERT_TRUE(drawable->replaceColour(juce::Colours::black, juce::Colours::red)) << drawing.name;
        const Picture picture(*drawable, 4.0f);
        const auto isRed = [](juce::Colour colour) { return colour.withAlpha(1.0f) == juce::Colours::red; };
        const auto area = picture.image.getBounds();
        const int inked = count(picture.image, area, [](auto colour) { return colour.getAlpha() > 0; });
        EXPECT_EQ(count(picture.image, area, isRed), inked) << drawing.name;
        EXPECT_GT(inked, 960) << drawing.name << ": a tenth of the picture";
    }
}

TEST(ArtworkTest, BandLeavesANotchForTheKnob)
{
    // The circle through (193.59, 0) and (231.27, 40), and through the points opposite.
    constexpr float radius = 150.0f, centreX = 319.9f, centreY = -81.1f, tolerance = 0.5f;
    const Picture picture(*load(knobLabels), 8.0f);
    for (float y = 0.5625f; y < 40.0f; y += 3.25f)
        for (const float side : {-1.0f, 1.0f})
        {
            const float edge = std::sqrt(radius * radius - (y - centreY) * (y - centreY));
            EXPECT_EQ(picture.at(centreX + side * (edge + tolerance), y), orange) << y;
            EXPECT_EQ(picture.at(centreX + side * (edge - tolerance), y).getAlpha(), 0) << y;
        }

    for (const auto corner : {juce::Point<float>(0.2f, 0.2f), {639.8f, 0.2f}, {0.2f, 39.8f}, {639.8f, 39.8f}})
        EXPECT_LE(difference(picture.at(corner.x, corner.y), orange), 3) << corner.toString();
    for (const auto blank :
         {juce::Point<float>(320.0f, 0.2f), {320.0f, 39.8f}, {100.0f, 40.3f}, {540.0f, 40.3f}})
        EXPECT_EQ(picture.at(blank.x, blank.y).getAlpha(), 0) << blank.toString();
}

TEST(ArtworkTest, WordsStandWhereTheyLabel)
{
    const Picture picture(*load(knobLabels), 8.0f);
    const juce::Rectangle<float> band(0.0f, 0.0f, 640.0f, 40.0f);
    const juce::Rectangle<float> lower(0.0f, 42.0f, 640.0f, 58.0f);
    const auto halves = [](juce::Rectangle<float> area)
    { return std::pair(area.removeFromLeft(area.getWidth() / 2.0f), area); };

    const auto small = picture.boundsOf(halves(band).first, isOpaqueWhite);
    const auto large = picture.boundsOf(halves(band).second, isOpaqueWhite);
    const auto dry = picture.boundsOf(halves(lower).first, isOpaqueGrey);
    const auto wet = picture.boundsOf(halves(lower).second, isOpaqueGrey);

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
        load(wordMark)->drawWithin(
            graphics, window.getBounds().toFloat(),
            juce::RectanglePlacement::centred | juce::RectanglePlacement::onlyReduceInSize, 1.0f);
    }
    const auto area = window.getBounds();
    const auto is = [](juce::Colour wanted)
    { return [wanted](juce::Colour colour) { return colour == wanted; }; };
    const auto ink =
        boundsOf(window, area, [](juce::Colour colour) { return colour != juce::Colours::white; });
    // The small mark is all flat edges: four bars of 2 by 22, 14, 9 and 5, without a blurred pixel.
    EXPECT_EQ(count(window, area, is(grey)), 2 * (22 + 14 + 9 + 5));
    EXPECT_GT(count(window, area, is(orange)), 1000);
    EXPECT_NEAR(ink.toFloat().getCentreX(), 320.0f, 1.0f);

    // The stem of the last letter, 34 high, is four full pixels wide with white on both sides.
    const int stem = 126 + 244;
    EXPECT_EQ(count(window, {stem, 22 + 16, 4, 34}, is(orange)), 4 * 34);
    for (const int beside : {stem - 1, stem + 4})
        EXPECT_EQ(count(window, {beside, 22 + 16, 1, 34}, is(juce::Colours::white)), 34);
}

TEST(ArtworkTest, BackgroundsLeaveBlackTextReadable)
{
    for (const Drawing& waves : {headerWaves, logoWaves})
    {
        const Picture picture(*load(waves), 2.0f);
        EXPECT_GT(lowestContrast(picture.image, juce::Colours::black), 4.5) << waves.name;
        // Something must be there to see.
        EXPECT_LT(lowestContrast(picture.image, juce::Colours::black), 12.0) << waves.name;
    }
    const auto steel = juce::ImageFileFormat::loadFrom(Artwork::steel_jpg, Artwork::steel_jpgSize);
    EXPECT_GT(lowestContrast(steel, juce::Colours::black), 10.0);
}

TEST(ArtworkTest, SteelTileRepeatsWithoutASeam)
{
    const auto tile = juce::ImageFileFormat::loadFrom(Artwork::steel_jpg, Artwork::steel_jpgSize);
    ASSERT_EQ(tile.getBounds(), juce::Rectangle<int>(256, 256));
    constexpr int size = 256;
    const auto level = [&](int x, int y) { return tile.getPixelAt(x % size, y % size).getGreen(); };

    // Mean square step from each column to the next, and from each row to the next, the last one to the first.
    std::vector<double> acrossColumns(size), acrossRows(size);
    for (int i = 0; i < size; ++i)
    {
        for (int k = 0; k < size; ++k)
        {
            acrossColumns[static_cast<std::size_t>(i)] += std::pow(level(i + 1, k) - level(i, k), 2.0) / size;
            acrossRows[static_cast<std::size_t>(i)] += std::pow(level(k, i + 1) - level(k, i), 2.0) / size;
        }
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
