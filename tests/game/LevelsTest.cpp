#include "level/LevelPixel.h"
#include "support/GameTest.h"
#include "support/ManualClock.h"
#include "support/Playthrough.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <osg/Timer>

#include <iostream>

namespace {

constexpr int tickMilliseconds = 20;
constexpr int longestRun = 15000;     // ticks: five minutes of play
constexpr int longestVainRun = 3000;  // the longest that succeeds takes two thirds of it

/// The levels that come with the game, each finished by the arrow keys alone on the real physics,
/// timers and all.
class LevelsTest : public GameTest
{
protected:
    void letTickPass()
    {
        clock.advance(tickMilliseconds);
        QCoreApplication::processEvents();
    }

    bool finishes(unsigned int number)
    {
        Playthrough play(*this, number, [this] { letTickPass(); });
        const bool finished = play.finishes(longestRun);
        std::cout << "level " << number << ": " << play.ticksPlayed() << " ticks, "
                  << play.livesLost() << " lives lost" << std::endl;
        return finished;
    }

    /// With all blocks of the kind replaced, by a player who does not know it.
    bool finishesWithout(BlockKind kind, unsigned int number, const Cell& replacement)
    {
        const QImage picture = Playthrough::truePicture(number);
        QImage changed = picture;
        for (int row = 0; row < picture.height(); ++row) {
            for (int column = 0; column < picture.width(); ++column) {
                const LevelPixel pixel = LevelPixel::decode(picture.pixel(column, row));
                if (blockKindOfHue(pixel.hue) == kind)
                    changed.setPixel(column, row, colorOf(replacement));
            }
        }
        EXPECT_NE(changed, picture) << "the level has no such block";
        return Playthrough(*this, number, changed, picture, [this] { letTickPass(); })
            .finishes(longestVainRun);
    }

    ManualClock clock;
};

}  // namespace

TEST_F(LevelsTest, RunOnAClockThatTheTestsMove)
{
    // The libraries bring calls of their own.
    QElapsedTimer qtClock;
    qtClock.start();
    const osg::Timer_t osgStart = osg::Timer::instance()->tick();
    clock.advance(1000);
    EXPECT_EQ(qtClock.elapsed(), 1000);
    EXPECT_NEAR(osg::Timer::instance()->delta_s(osgStart, osg::Timer::instance()->tick()), 1.0,
                1e-3);
}

TEST_F(LevelsTest, TheFirstWayIsFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(0));
}

TEST_F(LevelsTest, RampsAndHeightsAreFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(1));
}

TEST_F(LevelsTest, NarrowAndOpenWaysAreFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(2));
}

TEST_F(LevelsTest, BridgesOfButtonsAreFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(3));
}

TEST_F(LevelsTest, BridgesOfButtonsNeedTheirButtons)
{
    EXPECT_FALSE(finishesWithout(BlockKind::Button, 3, cells::hole));
    EXPECT_FALSE(finishesWithout(BlockKind::Button, 3, cells::floor));
}

TEST_F(LevelsTest, BridgesOfButtonsNeedTheirGhosts)
{
    EXPECT_FALSE(finishesWithout(BlockKind::Ghost, 3, cells::hole));
}

TEST_F(LevelsTest, TheRhythmOfGhostsIsFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(4));
}

TEST_F(LevelsTest, TheRhythmOfGhostsNeedsItsGhosts)
{
    EXPECT_FALSE(finishesWithout(BlockKind::Ghost, 4, cells::hole));
}

TEST_F(LevelsTest, ElevatorsAreFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(5));
}

TEST_F(LevelsTest, ElevatorsAreNeeded)
{
    EXPECT_FALSE(finishesWithout(BlockKind::Elevator, 5, cells::hole));
    EXPECT_FALSE(finishesWithout(BlockKind::Elevator, 5, cells::floor));
}

TEST_F(LevelsTest, TrapsAreFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(6));
}

TEST_F(LevelsTest, TrapsNeedTheirSpring)
{
    EXPECT_FALSE(finishesWithout(BlockKind::Trap, 6, cells::hole));
    EXPECT_FALSE(finishesWithout(BlockKind::Trap, 6, cells::floor));
}

TEST_F(LevelsTest, ItemsAreFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(7));
}

TEST_F(LevelsTest, ItemsNeedTheirWeight)
{
    EXPECT_FALSE(finishesWithout(BlockKind::Item, 7, cells::hole));
    EXPECT_FALSE(finishesWithout(BlockKind::Item, 7, cells::floor));
}

TEST_F(LevelsTest, PortalsAreFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(8));
}

TEST_F(LevelsTest, PortalsAreNeeded)
{
    EXPECT_FALSE(finishesWithout(BlockKind::Portal, 8, cells::hole));
    EXPECT_FALSE(finishesWithout(BlockKind::Portal, 8, cells::floor));
}

TEST_F(LevelsTest, TheGrandTourIsFinishedByTheArrowKeysAlone)
{
    EXPECT_TRUE(finishes(9));
}

TEST_F(LevelsTest, TheGrandTourNeedsAllThatItShows)
{
    for (const BlockKind kind : {BlockKind::Button, BlockKind::Ghost, BlockKind::Elevator,
                                 BlockKind::Trap, BlockKind::Item, BlockKind::Portal}) {
        SCOPED_TRACE(int(kind));
        EXPECT_FALSE(finishesWithout(kind, 9, cells::hole));
    }
}
