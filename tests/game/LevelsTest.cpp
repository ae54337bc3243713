#include "support/GameTest.h"
#include "support/Playthrough.h"

/// The levels that come with the game, each finished by the arrow keys alone on the real physics.
class LevelsTest : public GameTest
{
};

TEST_F(LevelsTest, TheFirstWayIsFinishedByTheArrowKeysAlone)
{
    Playthrough play(*this, 0);
    EXPECT_TRUE(play.finishes());
}

TEST_F(LevelsTest, RampsAndHeightsAreFinishedByTheArrowKeysAlone)
{
    Playthrough play(*this, 1);
    EXPECT_TRUE(play.finishes());
}

TEST_F(LevelsTest, NarrowAndOpenWaysAreFinishedByTheArrowKeysAlone)
{
    Playthrough play(*this, 2);
    EXPECT_TRUE(play.finishes());
}
