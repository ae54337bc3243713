#include "level/LevelPixel.h"

#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <vector>

namespace {

/// A value's shape as the level format lists it: heights in halves of a unit.
struct Shape
{
    int low;
    int high;
    int slope;
};

/// Every value that has a body.
std::map<int, Shape> shapesByValue()
{
    std::map<int, Shape> shapes{
        {73, {1, 1, 4}}, {86, {2, 2, 4}}, {95, {3, 3, 4}}, {100, {4, 4, 4}}};
    int value = 57;
    for (int low = 0; low < 4; ++low) {
        for (int high = low + 1; high <= 4; ++high)
            for (int slope = 0; slope < 4; ++slope)
                shapes[value++] = {low, high, slope};
        ++value;  // the flat one of the next level
    }
    return shapes;
}

TEST(LevelPixel, GivesEveryValueItsShape)
{
    const std::map<int, Shape> shapes = shapesByValue();
    ASSERT_EQ(shapes.size(), 44u) << "40 ramps and 4 flats";
    for (int value = 0; value <= 100; ++value) {
        SCOPED_TRACE(value);
        const BlockShape shape = BlockShape::ofValue(value);
        EXPECT_EQ(shape.hasBody, value >= 57);
        if (value < 57) {
            EXPECT_EQ(shape.lowHeight, 0.0f);
            EXPECT_EQ(shape.highHeight, 0.0f);
            continue;
        }
        ASSERT_EQ(shapes.count(value), 1u);
        EXPECT_EQ(shape.lowHeight, float(shapes.at(value).low) * 0.5f);
        EXPECT_EQ(shape.highHeight, float(shapes.at(value).high) * 0.5f);
        EXPECT_EQ(shape.slope, shapes.at(value).slope);
    }
}

TEST(LevelPixel, GivesEveryHueItsKind)
{
    const auto expected = [](int hue) {
        const std::vector<std::pair<int, BlockKind>> nominal{
            {90, BlockKind::Standard}, {135, BlockKind::Checkpoint}, {270, BlockKind::Button},
            {225, BlockKind::Ghost},   {180, BlockKind::Elevator},   {0, BlockKind::Trap},
            {360, BlockKind::Trap},    {45, BlockKind::Item},        {315, BlockKind::Portal}};
        for (const auto& [middle, kind] : nominal)
            if (std::abs(hue - middle) <= 10)
                return kind;
        return BlockKind::None;
    };
    int kinds = 0;
    for (int hue = -359; hue <= 370; ++hue) {
        EXPECT_EQ(blockKindOfHue(hue), expected(hue)) << hue;
        kinds += blockKindOfHue(hue) != BlockKind::None;
    }
    EXPECT_EQ(kinds, 9 * 21);
    for (int outside : {79, 101, 124, 146, 169, 191, 214, 236, 259, 281, 304, 326, 349, 11, 34, 56})
        EXPECT_EQ(blockKindOfHue(outside), BlockKind::None) << outside;
}

TEST(LevelPixel, RoundsOptionsToStepsOfThree)
{
    for (int offset = -10; offset <= 1; ++offset)
        EXPECT_EQ(pixelStep(offset), 0) << offset;
    for (int offset = 2; offset <= 100; ++offset)
        EXPECT_EQ(pixelStep(offset), 3 * ((offset + 1) / 3)) << offset;
}

TEST(LevelPixel, ReadsAlphaAsItIsAndColourUnderIt)
{
    for (int alpha = 0; alpha <= 255; ++alpha) {
        const LevelPixel pixel = LevelPixel::decode(qRgba(93, 186, 0, alpha));
        EXPECT_EQ(pixel.alpha, alpha);
        EXPECT_EQ(pixel.hue, 90) << "not premultiplied";
        EXPECT_EQ(pixel.saturation, 100);
        EXPECT_EQ(pixel.value, 73);
    }
}

TEST(LevelPixel, ReadsTheColoursOfAPaintProgram)
{
    const auto is = [](QRgb color, int hue, int saturation, int value) {
        const LevelPixel pixel = LevelPixel::decode(color);
        return pixel.hue == hue && pixel.saturation == saturation && pixel.value == value;
    };
    EXPECT_TRUE(is(qRgb(128, 255, 0), 90, 100, 100));
    EXPECT_TRUE(is(qRgb(93, 186, 0), 90, 100, 73));
    EXPECT_TRUE(is(qRgb(255, 0, 0), 0, 100, 100));
    EXPECT_TRUE(is(qRgb(255, 0, 21), 355, 100, 100));
    EXPECT_TRUE(is(qRgb(0, 255, 255), 180, 100, 100));
    EXPECT_TRUE(is(qRgb(255, 128, 255), 300, 50, 100));
    EXPECT_TRUE(is(qRgb(0, 0, 255), 240, 100, 100));
}

TEST(LevelPixel, TakesNoGreyForAKind)
{
    for (int grey = 0; grey <= 255; ++grey) {
        const LevelPixel pixel = LevelPixel::decode(qRgb(grey, grey, grey));
        EXPECT_EQ(pixel.hue, -359);
        EXPECT_EQ(pixel.saturation, 0);
        EXPECT_EQ(pixel.value, int(std::lround(grey / 2.55)));
        EXPECT_EQ(blockKindOfHue(pixel.hue), BlockKind::None);
    }
}

TEST(LevelPixel, TakesTheNearestWholeNumberOfEveryChannel)
{
    for (int red = 0; red <= 255; red += 15) {
        for (int green = 0; green <= 255; green += 17) {
            for (int blue = 0; blue <= 255; blue += 15) {
                const QColor color(red, green, blue);
                const LevelPixel pixel = LevelPixel::decode(color.rgba());
                if (color.hsvHueF() >= 0.0) {
                    EXPECT_NEAR(pixel.hue, color.hsvHueF() * 360.0, 0.5 + 1e-6);
                    EXPECT_LE(pixel.hue, 360);
                    EXPECT_GE(pixel.hue, 0);
                }
                EXPECT_NEAR(pixel.saturation, color.hsvSaturationF() * 100.0, 0.5 + 1e-6);
                EXPECT_NEAR(pixel.value, color.valueF() * 100.0, 0.5 + 1e-6);
            }
        }
    }
}

}  // namespace
