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
        SCOPED_TRACE(drawing.name);
        const auto drawable = load(drawing);
        const Picture black(*drawable, 4.0f);
        ASSERT_TRUE(drawable->replaceColour(juce::Colours::black, juce::Colours::red));
        const Picture red(*drawable, 4.0f);
        int inked = 0;
        for (int y = 0; y < red.image.getHeight(); ++y)
        {
            for (int x = 0; x < red.image.getWidth(); ++x)
            {
                const auto before = black.image.getPixelAt(x, y);
                const auto after = red.image.getPixelAt(x, y);
                ASSERT_EQ(before, juce::Colours::black.withAlpha(before.getAlpha()));
                ASSERT_EQ(after.getAlpha(), before.getAlpha());
                if (after.getAlpha() > 0)
                {
                    ASSERT_EQ(after.withAlpha(1.0f), juce::Colours::red);
                }
                inked += before.getAlpha() > 127;
            }
        }
        EXPECT_GT(inked, red.image.getWidth() * red.image.getHeight() / 10);
    }
}

TEST(ArtworkTest, BandLeavesANotchForTheKnob)
{
    constexpr float scale = 8.0f; // pixels to a unit
    constexpr float notchRadius = 150.0f;
    constexpr float tolerance = 0.25f;
    const Picture picture(*load(knobLabels), scale);

    struct Side
    {
        /** Where the notch cuts the upper and the lower edge of the band. */
        juce::Point<float> upper, lower;
        /** From the band into the notch. */
        float direction;
    };
    for (const Side& side :
         {Side{{193.59f, 0.0f}, {231.27f, 40.0f}, 1.0f}, Side{{446.24f, 0.0f}, {408.58f, 40.0f}, -1.0f}})
    {
        SCOPED_TRACE(side.direction > 0 ? "left" : "right");
        // The notch's centre lies above the band, at the radius from both points.
        const auto middle = (side.upper + side.lower) / 2.0f;
        const float halfChord = side.upper.getDistanceFrom(side.lower) / 2.0f;
        const float toCentre = std::sqrt(notchRadius * notchRadius - halfChord * halfChord);
        const auto along = (side.lower - side.upper) / (2.0f * halfChord);
        const auto centre = middle + juce::Point<float>(along.y, -along.x) * (toCentre * side.direction);
        EXPECT_NEAR(centre.x, 320.0f, 0.3f);

        for (float y = 0.5625f; y < 40.0f; y += 3.25f)
        {
            const float fall = y - centre.y;
            const float edge = centre.x - side.direction * std::sqrt(notchRadius * notchRadius - fall * fall);
            EXPECT_EQ(picture.at(edge - side.direction * tolerance, y), orange) << y;
            EXPECT_EQ(picture.at(edge + side.direction * tolerance, y).getAlpha(), 0) << y;
        }
    }

    for (const auto corner : {juce::Point<float>(0.2f, 0.2f), {639.8f, 0.2f}, {0.2f, 39.8f}, {639.8f, 39.8f}})
        EXPECT_TRUE(isNearly(picture.at(corner.x, corner.y), orange)) << corner.toString();
    for (const auto blank :
         {juce::Point<float>(320.0f, 0.2f), {320.0f, 39.8f}, {100.0f, 40.3f}, {540.0f, 40.3f}})
        EXPECT_EQ(picture.at(blank.x, blank.y).getAlpha(), 0) << blank.toString();

    // Where the window shows it, the band stays clear of the knob's ring.
    constexpr float ringRadius = 138.0f;
    const juce::Point<float> knobCentre(320.0f, 308.0f - 380.0f);
    for (float y = 0.125f; y < 40.0f; y += 0.25f)
        for (float x = 180.0f; x < 460.0f; x += 0.25f)
            EXPECT_TRUE(knobCentre.getDistanceFrom({x, y}) > ringRadius + 4.0f ||
                        picture.at(x, y).getAlpha() == 0)
                << x << ", " << y;
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
    int orangePixels = 0;
    int greyPixels = 0;
    juce::RectangleList<int> ink;
    for (int y = 0; y < window.getHeight(); ++y)
    {
        for (int x = 0; x < window.getWidth(); ++x)
        {
            const auto colour = window.getPixelAt(x, y);
            orangePixels += colour == orange;
            greyPixels += colour == grey;
            if (colour != juce::Colours::white)
                ink.addWithoutMerging({x, y, 1, 1});
        }
    }
    // The small mark is all flat edges: four bars of 2 by 22, 14, 9 and 5, without a blurred pixel.
    EXPECT_EQ(greyPixels, 2 * (22 + 14 + 9 + 5));
    EXPECT_GT(orangePixels, 1000);
    EXPECT_NEAR(ink.getBounds().toFloat().getCentreX(), 320.0f, 1.0f);

    // The stem of the last letter, 34 high, is four full pixels wide with white on both sides.
    const int stem = 126 + 244;
    for (int y = 22 + 16; y < 22 + 50; ++y)
    {
        EXPECT_EQ(window.getPixelAt(stem - 1, y), juce::Colours::white);
        for (int x = stem; x < stem + 4; ++x)
            EXPECT_EQ(window.getPixelAt(x, y), orange);
        EXPECT_EQ(window.getPixelAt(stem + 4, y), juce::Colours::white);
    }
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
    juce::RectangleList<int> ink;
    for (int y = 0; y < logo.getHeight(); ++y)
        for (int x = 0; x < logo.getWidth(); ++x)
            if (contrast(headerStrip.overlaidWith(logo.getPixelAt(x, y)), headerStrip) > 4.5)
                ink.addWithoutMerging({x, y, 1, 1});
    const auto bounds = ink.getBounds().toFloat() / 2.0f;
    EXPECT_NEAR(bounds.getCentreX(), 41.5f, 1.0f);
    EXPECT_NEAR(bounds.getCentreY(), 21.0f, 0.5f);
    EXPECT_GT(bounds.getWidth(), 70.0f);
}
