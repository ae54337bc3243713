#include "level/ShadeField.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

constexpr int columns = 7;
constexpr int rows = 5;
constexpr float floorHeight = 0.5f;
constexpr float wallHeight = 1.5f;
const osg::Vec3f lamp(8.0f, -8.0f, 16.0f);

CornerHeights flat(float height)
{
    return {height, height, height, height};
}

/// A floor with a wall of one cell in its middle.
class ShadeFieldTest : public ::testing::Test
{
protected:
    ShadeFieldTest()
    {
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column)
                field.setTop(column, row, flat(floorHeight));
        field.setTop(3, 2, flat(wallHeight));
    }

    float depth(int column, int row, float u = 0.5f, float v = 0.5f) const
    {
        return field.shadowDepth(column, row, u, v, lamp);
    }

    std::vector<unsigned char> pointsUnder(const osg::Vec3f& place)
    {
        while (field.update(place)) {
        }
        const unsigned char* points = field.points();
        return {points, points + field.width() * field.height() * 4};
    }

    /// The four bytes of a point of a cell's picture.
    const unsigned char* point(int column, int row, int i, int j) const
    {
        const int perCell = field.pointsOfCell();
        const int x = (column + 1) * perCell + i;
        const int y = (row + 1) * perCell + j;
        return field.points() + (y * field.width() + x) * 4;
    }

    ShadeField field = ShadeField(columns, rows);
};

TEST_F(ShadeFieldTest, LaysTheWallsShadowAwayFromTheLamp)
{
    EXPECT_NEAR(depth(2, 2, 1.0f), wallHeight - floorHeight, 0.01f) << "at the wall's foot";
    EXPECT_GT(depth(2, 3, 0.9f, 0.1f), 0.3f) << "behind its corner";
    EXPECT_LT(depth(4, 1), 0.0f) << "before it";
    EXPECT_LT(depth(0, 4), 0.0f) << "far behind it";
    EXPECT_LT(depth(3, 2), 0.0f) << "on it";
}

TEST_F(ShadeFieldTest, LengthensAShadowAsTheLampComesDown)
{
    const osg::Vec3f low(8.0f, 0.0f, 4.0f);
    EXPECT_LT(field.shadowDepth(1, 2, 0.5f, 0.5f, osg::Vec3f(8.0f, 0.0f, 16.0f)), 0.0f);
    EXPECT_GT(field.shadowDepth(1, 2, 0.5f, 0.5f, low), 0.3f);
}

TEST_F(ShadeFieldTest, SeesLessOfTheSkyBesideAWallAndLeastInAPit)
{
    const float open = field.openness(5, 2, 0.5f, 0.5f);
    const float corner = field.openness(2, 2, 0.95f, 0.5f);
    EXPECT_EQ(open, 1.0f);
    EXPECT_LT(corner, 0.8f);
    field.setHole(5, 2);
    EXPECT_LT(field.openness(5, 2, 0.5f, 0.5f), 0.5f);
}

TEST_F(ShadeFieldTest, FollowsARampsFace)
{
    field.setTop(3, 2, CornerHeights::of(0.5f, 1.5f, 1));  // high towards +x
    const osg::Vec3f level(20.0f, 0.0f, 1.0f);
    EXPECT_NEAR(field.shadowDepth(3, 2, 0.0f, 0.5f, osg::Vec3f(0.0f, 0.0f, 20.0f)),
                ShadeField::lowestShadow, 0.01f)
        << "a face does not shade itself";
    EXPECT_NEAR(field.shadowDepth(2, 2, 1.0f, 0.5f, level), 0.97f, 0.05f) << "by its far edge";
}

TEST_F(ShadeFieldTest, AgreesWithItsNeighbourOnTheirBorder)
{
    pointsUnder(lamp);
    const int last = field.pointsOfCell() - 1;
    for (int j = 0; j <= last; ++j) {
        for (int channel = 0; channel < 4; ++channel)
            EXPECT_NEAR(point(1, 2, last, j)[channel], point(2, 2, 0, j)[channel], 2)
                << "channel " << channel << " at " << j;
    }
    EXPECT_GT(point(3, 2, 0, 3)[2], point(2, 2, last, 3)[2] + 20) << "but not where a wall begins";
}

TEST_F(ShadeFieldTest, TakesTheShadowAlongWithWhatThrewIt)
{
    const auto before = pointsUnder(lamp);
    field.setHole(3, 2);
    const auto without = pointsUnder(lamp);
    EXPECT_NE(before, without);
    EXPECT_EQ(depth(2, 2, 1.0f), ShadeField::lowestShadow);
    field.setTop(3, 2, flat(wallHeight));
    EXPECT_EQ(pointsUnder(lamp), before);
}

TEST_F(ShadeFieldTest, SoftensTheSidesOfAShadow)
{
    // Along the row: at its sides the shadow is over from one point to the next.
    const osg::Vec3f low(-20.0f, 0.0f, 12.0f);
    pointsUnder(low);
    ASSERT_GT(field.shadowDepth(4, 2, 0.5f, 0.9f, low), 0.5f);
    ASSERT_EQ(field.shadowDepth(4, 3, 0.5f, 0.1f, low), ShadeField::lowestShadow);
    int steepest = 0;
    for (int j = 1; j < field.pointsOfCell(); ++j) {
        for (int row = 1; row <= 3; ++row)
            steepest =
                std::max(steepest, std::abs(point(4, row, 1, j)[0] - point(4, row, 1, j - 1)[0]));
    }
    EXPECT_GT(steepest, 10);
    EXPECT_LT(steepest, 80);
}

TEST_F(ShadeFieldTest, DarkensTheFloorBehindAThingThatHovers)
{
    const auto bare = pointsUnder(lamp);
    field.setHovering({{osg::Vec3f(-2.0f, 0.0f, 1.2f), 0.2f}});
    pointsUnder(lamp);
    // 0.7 over the floor, so half of that towards -x and +y: cell (1, 2), a third into its left.
    EXPECT_LT(point(1, 2, 1, 6)[3], 150);
    EXPECT_EQ(point(1, 2, 7, 0)[3], 255);
    field.setHovering({});
    EXPECT_EQ(pointsUnder(lamp), bare);
}

TEST_F(ShadeFieldTest, HasNothingToDoUntilSomethingChanges)
{
    pointsUnder(lamp);
    EXPECT_FALSE(field.update(lamp));
    field.setTop(3, 2, flat(wallHeight));
    EXPECT_FALSE(field.update(lamp)) << "it stood like that";
    EXPECT_TRUE(field.update(lamp + osg::Vec3f(0.1f, 0.0f, 0.0f)));
}

TEST_F(ShadeFieldTest, FollowsALampThatCreepsAsOneThatLeaps)
{
    pointsUnder(lamp);
    const osg::Vec3f step(0.004f, 0.0f, 0.0f);
    EXPECT_FALSE(field.update(lamp + step)) << "too little to be seen";
    EXPECT_FALSE(field.update(lamp + step * 2.0f));
    EXPECT_TRUE(field.update(lamp + step * 3.0f)) << "since the shadows were laid";
}

TEST(ShadeField, NeedsTwoCallsForABoardOfTwentyTimesTwenty)
{
    ShadeField field(20, 20);
    EXPECT_TRUE(field.update(lamp));
    EXPECT_TRUE(field.update(lamp));
    EXPECT_FALSE(field.update(lamp));
}

TEST(ShadeField, IsEmptyForABoardWithoutCells)
{
    ShadeField field(0, 0);
    EXPECT_TRUE(field.update(lamp));
    EXPECT_FALSE(field.update(lamp));
}

}  // namespace
