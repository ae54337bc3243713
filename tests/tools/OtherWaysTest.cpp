#include "OtherWays.h"

#include "support/LevelPicture.h"

#include <gtest/gtest.h>

namespace {

/// How many of the stretches from the upper left to the lower right corner and back have another
/// way: 0, 1 or 2.
int twofold(const LevelPicture& picture)
{
    const LevelMap map(picture.image());
    const CellPosition corner{map.width() - 1, map.height() - 1};
    const OtherWays ways = otherWays(map, {{0, 0}, corner, {0, 0}});
    EXPECT_EQ(ways.stretches, 2);
    return ways.twofold;
}

}  // namespace

TEST(OtherWays, LeadRoundWallsAndHoles)
{
    EXPECT_EQ(twofold(LevelPicture({"......", ".    .", ".    .", "......"})), 2);
    EXPECT_EQ(twofold(LevelPicture({"......", ".####.", ".####.", "......"})), 2);
}

TEST(OtherWays, AreNotTwoTracksOfOneRoad)
{
    EXPECT_EQ(twofold(LevelPicture({"......", "......", "......", "......"})), 0);
    EXPECT_EQ(twofold(LevelPicture({".....", ".....", "..#..", ".....", "....."})), 0)
        << "a pillar";
    EXPECT_EQ(twofold(LevelPicture({"......", "#####.", "     ."})), 0) << "the only road";
}

TEST(OtherWays, MayLeadOneWayOnly)
{
    // Down the edge below, which is no way back.
    EXPECT_EQ(twofold(LevelPicture({"########", "#TTTTTT#", "#TTTTTT#", "#......#", "########"})),
              2);
    EXPECT_EQ(twofold(LevelPicture({"########", "#TTTTTT#", "#TTTTTT#", "........", "   TTTT#"})),
              0);
}

TEST(OtherWays, DoNotCountWhereTheyAreShut)
{
    LevelPicture bridge({"......", ".    .", ".    .", "......"});
    bridge.set(0, 1, {225, 70, 73, 254});
    EXPECT_EQ(twofold(bridge), 0) << "a ghost without a button";
    bridge.set(3, 0, {270, 100, 73, 254}).set(3, 3, {270, 100, 73, 254});
    EXPECT_EQ(twofold(bridge), 2);
}
