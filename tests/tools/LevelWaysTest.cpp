#include "LevelWays.h"

#include "support/LevelPicture.h"

#include <gtest/gtest.h>

namespace {

/// Whether a ball that starts in the upper left comes to the lower right.
bool comesThrough(const LevelPicture& picture)
{
    const LevelMap map(picture.image());
    return LevelWays(map, {0, 0}).reaches({map.width() - 1, map.height() - 1});
}

LevelPicture with(LevelPicture picture, int column, const Cell& cell)
{
    return picture.set(column, 0, cell);
}

constexpr Cell button{270, 100, 73, 254};
constexpr Cell airGhost{225, 70, 73, 254};
constexpr Cell solidGhost{225, 100, 73, 254};

}  // namespace

TEST(LevelWays, LeadUpNoEdgeAndDownEveryEdge)
{
    EXPECT_TRUE(comesThrough(LevelPicture({"T#..."})));
    EXPECT_FALSE(comesThrough(LevelPicture({"...#"})));
}

TEST(LevelWays, LeadUpRampsAndNotOverTheirSides)
{
    EXPECT_TRUE(comesThrough(with(LevelPicture({"..##"}), 1, {90, 100, 75})));
    for (const int turned : {74, 76, 77})
        EXPECT_FALSE(comesThrough(with(LevelPicture({"..##"}), 1, {90, 100, turned}))) << turned;
}

TEST(LevelWays, LeadOverAHoleOfOneCellAfterAStraightRun)
{
    EXPECT_TRUE(comesThrough(LevelPicture({"..... ."})));
    EXPECT_FALSE(comesThrough(LevelPicture({".... ."}))) << "too short a run";
    EXPECT_TRUE(comesThrough(LevelPicture({"### ."}))) << "half a unit down";
    EXPECT_FALSE(comesThrough(LevelPicture({"## ."})));
    EXPECT_FALSE(comesThrough(LevelPicture({".......  ."}))) << "two cells";
    EXPECT_FALSE(comesThrough(LevelPicture({"..... #"}))) << "half a unit up";
}

TEST(LevelWays, LeadOverABridgeOnceItsButtonIsInReach)
{
    EXPECT_TRUE(comesThrough(with(with(LevelPicture({"......"}), 2, airGhost), 1, button)));
    EXPECT_FALSE(comesThrough(with(with(LevelPicture({"......"}), 2, airGhost), 4, button)))
        << "the button lies behind the bridge";
    EXPECT_TRUE(comesThrough(with(LevelPicture({"..."}), 1, solidGhost)));
    EXPECT_FALSE(comesThrough(with(LevelPicture({"..."}), 1, airGhost)));
    EXPECT_TRUE(comesThrough(with(LevelPicture({"..."}), 1, {225, 50, 73}))) << "on a rhythm";
}

TEST(LevelWays, LeadOverBridgesWhoseButtonsComeAfterOneAnother)
{
    LevelPicture picture({"......."});
    picture.set(1, 0, button).set(2, 0, airGhost);
    picture.set(3, 0, {270, 100, 73, 253}).set(4, 0, {225, 70, 73, 253});
    EXPECT_TRUE(comesThrough(picture));
    EXPECT_EQ(LevelWays(LevelMap(picture.image()), {0, 0}).openingButtons().size(), 2u);
}

TEST(LevelWays, LeadUpByAnElevatorThatSomethingMoves)
{
    // Half a unit up, to the wall beside it.
    const auto lift = [](int saturation) {
        return with(LevelPicture({"...##"}), 2, {180, saturation, 73, 254});
    };
    EXPECT_TRUE(comesThrough(lift(62))) << "by itself";
    EXPECT_FALSE(comesThrough(lift(87))) << "without a button";
    EXPECT_TRUE(comesThrough(with(lift(87), 1, button)));
}

TEST(LevelWays, LeadAsHighAsASpringThrows)
{
    const auto thrown = [](int saturation, const Cell& to) {
        return comesThrough(
            with(with(LevelPicture({"...."}), 1, {0, saturation, 73}), 2, to).set(3, 0, to));
    };
    EXPECT_FALSE(thrown(80, cells::wall)) << "strength 5";
    EXPECT_TRUE(thrown(83, cells::wall)) << "strength 8";
    EXPECT_FALSE(thrown(83, cells::tower));
    EXPECT_FALSE(thrown(86, cells::tower)) << "strength 11";
    EXPECT_TRUE(thrown(88, cells::tower)) << "strength 14";
}

TEST(LevelWays, LeadOverAsManyHolesAsASpringThrows)
{
    EXPECT_TRUE(comesThrough(with(LevelPicture({".. ."}), 1, {0, 83, 73})));
    EXPECT_FALSE(comesThrough(with(LevelPicture({"..  ."}), 1, {0, 83, 73})));
    EXPECT_TRUE(comesThrough(with(LevelPicture({"..   ."}), 1, {0, 88, 73})));
    EXPECT_FALSE(comesThrough(with(LevelPicture({"..    ."}), 1, {0, 88, 73})));
}

TEST(LevelWays, LeadTwoCellsFartherForEverySecondWithoutGravity)
{
    EXPECT_TRUE(comesThrough(with(LevelPicture({"..  ."}), 1, {45, 50, 73})));
    EXPECT_FALSE(comesThrough(with(LevelPicture({"..   ."}), 1, {45, 50, 73})));
    EXPECT_TRUE(comesThrough(with(LevelPicture({"..        ."}), 1, {45, 53, 73})));
}

TEST(LevelWays, LeadThroughPortalsByTheirMouths)
{
    const auto through = [](int in, int out, int value) {
        return comesThrough(LevelPicture({"S.  .G"})
                                .set(1, 0, {315, in, value, 253})
                                .set(4, 0, {315, out, value, 253}));
    };
    constexpr int right = 90;
    constexpr int left = 80;
    constexpr int upward = 50;
    EXPECT_TRUE(through(left, right, 86));
    EXPECT_FALSE(through(right, right, 86)) << "the mouth looks away";
    EXPECT_FALSE(through(left, left, 86)) << "it comes out over a hole";
    EXPECT_FALSE(through(left, right, 73)) << "a mouth in the floor";
    EXPECT_TRUE(through(upward, upward, 73)) << "rolled over";
    EXPECT_FALSE(through(upward, upward, 86)) << "a block that is higher than the floor";
}

TEST(LevelWays, LeadOverNoMineWithoutAFuse)
{
    EXPECT_FALSE(comesThrough(with(LevelPicture({"..."}), 1, {0, 90, 73})));
    EXPECT_TRUE(comesThrough(with(LevelPicture({"..."}), 1, {0, 96, 73})));
}
