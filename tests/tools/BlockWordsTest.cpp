#include "BlockWords.h"

#include <gtest/gtest.h>

namespace {

std::string wordsOf(int hue, int saturation)
{
    return blockInWords({hue, saturation, 73, 255});
}

std::string shapeOf(int value)
{
    return shapeInWords({90, 100, value, 255});
}

}  // namespace

TEST(BlockWords, TellStartFlagsAndGoal)
{
    EXPECT_EQ(wordsOf(135, 91), "start");
    EXPECT_EQ(wordsOf(135, 90), "flag that must be passed, 40 coins");
    EXPECT_EQ(wordsOf(135, 79), "flag that must be passed, 10 coins");
    EXPECT_EQ(wordsOf(135, 78), "flag that may be passed, 40 coins");
    EXPECT_EQ(wordsOf(135, 68), "goal, 350 coins");
    EXPECT_EQ(wordsOf(135, 50), "goal, 50 coins");
    EXPECT_EQ(wordsOf(135, 48), "flag that may be passed, 10 coins");
}

TEST(BlockWords, TellHowAButtonWorks)
{
    EXPECT_EQ(wordsOf(270, 100), "button, works once");
    EXPECT_EQ(wordsOf(270, 60), "button, comes back after 1 second");
    EXPECT_EQ(wordsOf(270, 90), "button, comes back after 11 seconds");
    EXPECT_EQ(wordsOf(270, 50), "button, works at every touch");
}

TEST(BlockWords, TellTheRhythmOfAGhost)
{
    EXPECT_EQ(wordsOf(225, 50), "ghost, starts as air, changes every 0.5 seconds");
    EXPECT_EQ(wordsOf(225, 83), "ghost, starts solid, changes every 1 second");
    EXPECT_EQ(wordsOf(225, 70), "ghost, starts as air, waits for buttons");
    EXPECT_EQ(wordsOf(225, 100), "ghost, starts solid, waits for buttons");
}

TEST(BlockWords, TellTheWayOfAnElevator)
{
    EXPECT_EQ(wordsOf(180, 50), "elevator, 2 down, moves by itself");
    EXPECT_EQ(wordsOf(180, 90), "elevator, 1 up, waits for buttons");
}

TEST(BlockWords, TellTheHazards)
{
    EXPECT_EQ(wordsOf(0, 90), "mine, no fuse");
    EXPECT_EQ(wordsOf(0, 93), "mine, fuse of 1 second");
    EXPECT_EQ(wordsOf(0, 80), "spring of strength 5");
    EXPECT_EQ(wordsOf(0, 70), "trapdoor, opens at once");
    EXPECT_EQ(wordsOf(0, 79 - 1), "trapdoor, opens after 3 seconds");
    EXPECT_EQ(wordsOf(0, 60), "trap that does nothing");
    EXPECT_EQ(wordsOf(0, 50), "gravity well, pulls in a cube of 3");
}

TEST(BlockWords, TellWhatAnItemGivesAndTakes)
{
    EXPECT_EQ(wordsOf(45, 100), "item, gives 40 coins");
    EXPECT_EQ(wordsOf(45, 80), "item, takes 10 coins");
    EXPECT_EQ(wordsOf(45, 70), "item, gives 1 life");
    EXPECT_EQ(wordsOf(45, 63), "item, takes 2 lives");
    EXPECT_EQ(wordsOf(45, 53), "weight, no gravity for 4 seconds");
}

TEST(BlockWords, TellMouthAndPullOfAPortal)
{
    EXPECT_EQ(wordsOf(315, 96), "portal, mouth to the right, pull 1");
    EXPECT_EQ(wordsOf(315, 80), "portal, mouth to the left, pull 0");
    EXPECT_EQ(wordsOf(315, 73), "portal, mouth to the top of the picture, pull 0.5");
    EXPECT_EQ(wordsOf(315, 60), "portal, mouth to the bottom of the picture, pull 0");
    EXPECT_EQ(wordsOf(315, 50), "portal, mouth upward, pull 0");
}

TEST(BlockWords, TellFloorsAndWhatIsNothing)
{
    EXPECT_EQ(wordsOf(90, 100), "floor or wall");
    EXPECT_EQ(wordsOf(20, 100), "nothing");
    EXPECT_EQ(wordsOf(-359, 0), "nothing");
}

TEST(BlockWords, TellHeightsAndRamps)
{
    EXPECT_EQ(shapeOf(73), "0.5 high");
    EXPECT_EQ(shapeOf(100), "2 high");
    EXPECT_EQ(shapeOf(57), "ramp from 0 to 0.5, rises to the bottom of the picture");
    EXPECT_EQ(shapeOf(75), "ramp from 0.5 to 1, rises to the right");
    EXPECT_EQ(shapeOf(89), "ramp from 1 to 1.5, rises to the top of the picture");
    EXPECT_EQ(shapeOf(99), "ramp from 1.5 to 2, rises to the left");
    EXPECT_EQ(shapeOf(56), "no body");
}
