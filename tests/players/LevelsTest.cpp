#include "Played.h"

#include <gtest/gtest.h>

namespace {

constexpr int teachingLevels = 15;
constexpr int firstLevels = 6;

class EveryLevel : public ::testing::TestWithParam<int>
{
};

class EveryFirstLevel : public ::testing::TestWithParam<int>
{
};

struct Lesson
{
    int level;
    BlockKind kind;
};

class EveryLesson : public ::testing::TestWithParam<Lesson>
{
};

}  // namespace

TEST_P(EveryLevel, IsWonByThePerfectPlayer)
{
    PlayWish wish;
    wish.pictures = {levelFile(GetParam())};
    const auto level = played(wish)[0];
    EXPECT_EQ(level["won"], 1) << level.dump(1);
}

TEST_P(EveryLevel, IsKindAtTheFirstTouch)
{
    PlayWish wish;
    wish.pictures = {levelFile(GetParam())};
    wish.firstTouch = true;
    const auto touch = played(wish)[0]["first_touch"];
    EXPECT_EQ(touch["of"], 12);
    for (const auto& unkind : touch["unkind"]) {
        EXPECT_FALSE(unkind["life_lost"].get<bool>()) << unkind;
        EXPECT_GE(GetParam(), teachingLevels) << unkind << " throws the ball";
    }
}

INSTANTIATE_TEST_SUITE_P(OfTheGame, EveryLevel, ::testing::Range(0, levelCount));

TEST_P(EveryFirstLevel, IsWonAtTheKeysAndByHand)
{
    for (const char* player : {"taps", "hand"}) {
        PlayWish wish;
        wish.pictures = {levelFile(GetParam())};
        wish.player = player;
        wish.runs = 3;
        EXPECT_EQ(played(wish)[0]["won"], 3) << player;
    }
}

INSTANTIATE_TEST_SUITE_P(OfTheGame, EveryFirstLevel, ::testing::Range(0, firstLevels));

TEST_P(EveryLesson, CannotBeWonWithoutItsBlocks)
{
    const QTemporaryDir folder;
    PlayWish wish;
    wish.pictures = {levelWithout(GetParam().kind, GetParam().level, folder)};
    wish.limit = 60.0;
    EXPECT_EQ(played(wish)[0]["won"], 0);
}

INSTANTIATE_TEST_SUITE_P(
    OfTheGame, EveryLesson,
    ::testing::Values(Lesson{6, BlockKind::Item}, Lesson{9, BlockKind::Trap},
                      Lesson{10, BlockKind::Portal}, Lesson{11, BlockKind::Elevator},
                      Lesson{12, BlockKind::Button}, Lesson{12, BlockKind::Ghost},
                      Lesson{13, BlockKind::Item}, Lesson{14, BlockKind::Ghost}));
