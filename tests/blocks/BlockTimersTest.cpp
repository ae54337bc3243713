// The long delays of traps and items, on a clock that costs no time.

#include "ManualClock.h"
#include "blocks/BlockItem.h"
#include "blocks/BlockTrap.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Ball.h"
#include "level/Level.h"
#include "support/BlockTest.h"
#include "support/DifferingPixels.h"
#include "support/SceneSearch.h"

#include <QThread>
#include <osg/NodeVisitor>

#include <atomic>
#include <thread>

namespace {

constexpr int trapHue = 0;
constexpr int itemHue = 45;
constexpr int buttonHue = 270;
constexpr int ghostHue = 225;
constexpr int elevatorHue = 180;
constexpr int flatHalf = 73;

constexpr double rest = 10.0;
constexpr double blast = 0.5;

class BlockTimersTest : public BlockTest
{
protected:
    void loadsBlock(const Cell& cell)
    {
        loads(LevelPicture(9, 9, cells::floor).set(0, 0, cells::start).set(4, 4, cell));
        ticks();
    }

    void loadsTrap(int saturation) { loadsBlock({trapHue, saturation, flatHalf}); }
    void loadsItem(int saturation) { loadsBlock({itemHue, saturation, flatHalf}); }

    Block& block() const { return blockAs<Block>(4, 4); }
    float mineRadius() const { return shapesOf<osg::Sphere>(block()).at(0)->getRadius(); }
    bool hasExploded() const { return mineRadius() > 0.4f; }
    float plungerHeight() const { return shapesOf<osg::Cylinder>(block()).at(0)->getHeight(); }

    /// Whether a cull traversal goes on below the block's transform.
    bool isDrawn() const
    {
        struct Counter : osg::NodeVisitor
        {
            Counter() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}
            void apply(osg::Geode&) override { ++geodes; }
            int geodes = 0;
        } counter;
        block().getTransform()->getCullCallback()->run(block().getTransform(), &counter);
        return counter.geodes > 0;
    }

    bool isSolid()
    {
        putsBall(positionOf(block()) + osg::Vec3d(0.0, 0.0, 0.6));
        ticks(12);
        return ballPosition().z() > positionOf(block()).z() + 0.4;
    }

    bool ballFalls()
    {
        putsBall(osg::Vec3d(0.0, 3.0, 5.0));
        ticks();
        return ballVelocity().z() < -0.1f;
    }

    /// Expects the condition to come true so many seconds from now. Timers may be off by a
    /// twentieth.
    void comesTrueIn(double seconds, const std::function<bool()>& condition)
    {
        constexpr int step = 20;  // milliseconds
        int passed = 0;
        while (!condition() && passed < seconds * 1050.0 + step) {
            clock.passes(step);
            passed += step;
        }
        EXPECT_TRUE(condition()) << "later than " << seconds << " s";
        EXPECT_GE(passed, seconds * 950.0 - step);
    }

    /// Behind the pause menu; the loop ticks on.
    void pausesFor(double seconds)
    {
        releases(Qt::Key_Escape);
        ASSERT_TRUE(GameLoop::isPaused());
        plays(int(seconds * 1000.0));
        releases(Qt::Key_Escape);
        ASSERT_FALSE(GameLoop::isPaused());
    }

    ManualClock clock;
};

}  // namespace

TEST_F(BlockTimersTest, MineGoesThroughFuseBlastAndRestAndIsArmedAgain)
{
    for (int fuse = 1; fuse <= 3; ++fuse) {
        SCOPED_TRACE(fuse);
        loadsTrap(90 + 3 * fuse);
        hoversAbove(block(), 2.0);
        touches(block());
        // Further contacts change nothing, whenever they come.
        const auto touched = [this](const std::function<bool()>& condition) {
            return [this, condition] {
                touches(block());
                return condition();
            };
        };
        comesTrueIn(fuse, touched([this] { return hasExploded(); }));
        EXPECT_EQ(level().livesLeft(), 4);
        comesTrueIn(blast, touched([this] { return mineRadius() < 0.05f; }));
        comesTrueIn(rest, [this] { return mineRadius() > 0.05f; });
        EXPECT_FLOAT_EQ(mineRadius(), 0.1f);
        EXPECT_EQ(level().livesLeft(), 4);

        touches(block());
        comesTrueIn(fuse, [this] { return hasExploded(); });
        EXPECT_EQ(level().livesLeft(), 3);
    }
}

TEST_F(BlockTimersTest, MineWaitsWithItsHarmWhileAnotherThreadHasTheWorld)
{
    loadsTrap(90);
    for (int life = 5; life > 1; --life)
        level().changeLives(-1, false);
    hoversAbove(block(), 1.0);
    std::atomic<bool> locked{false};
    bool changedMeanwhile = false;
    std::thread other([&] {
        const GameLoop::Lock worldLock;
        locked = true;
        QThread::msleep(200);
        changedMeanwhile = level().livesLeft() != 1;
    });
    while (!locked)
        std::this_thread::yield();
    // It has no fuse, so that it goes off here, as the others do from their timers: between two
    // ticks.
    touches(block());
    other.join();
    EXPECT_FALSE(changedMeanwhile);
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_EQ(game.state, GameState::LevelFailed);
}

TEST_F(BlockTimersTest, RestingMineIsHarmless)
{
    loadsTrap(90);
    hoversAbove(block(), 2.0);
    touches(block());
    ticks();
    comesTrueIn(blast, [this] { return mineRadius() < 0.05f; });
    hoversAbove(block(), 1.0);
    touches(block());
    EXPECT_EQ(level().livesLeft(), 4);
    ticks();
    EXPECT_NEAR(ballVelocity().length(), 0.0, 0.002);
}

TEST_F(BlockTimersTest, BallThatHasRolledOffBeforeTheFuseEndsFeelsAWeakBlast)
{
    loadsTrap(93);
    hoversAbove(block(), 1.0);
    touches(block());
    hoversAbove(block(), 3.0);
    comesTrueIn(1.0, [this] { return hasExploded(); });
    EXPECT_EQ(level().livesLeft(), 5);
    ticks();
    EXPECT_NEAR(ballVelocity().z(), speedOfForce(100.0 / 9.0), 0.002);
}

TEST_F(BlockTimersTest, SpringGoesInAfterTenSecondsAndThrowsAgain)
{
    loadsTrap(80);
    hoversAbove(block(), 1.5);
    touches(block());
    comesTrueIn(rest, [this] { return plungerHeight() < 0.5f; });
    EXPECT_FLOAT_EQ(plungerHeight(), 0.3f);
    ticks();
    hoversAbove(block(), 1.5);
    touches(block());
    ticks();
    EXPECT_NEAR(ballVelocity().z(), speedOfForce(10.0), 0.002);
}

TEST_F(BlockTimersTest, MineIsDrawnAgainAfterItsRest)
{
    loadsTrap(90);
    looksAt(positionOf(block()), 7.0f);
    const auto redOfMine = [this] {
        hovers(osg::Vec3d(-7.0, 0.0, 1.0));
        const QPoint place = pixelOf(positionOf(block()) + osg::Vec3d(0.0, 0.0, 0.35));
        return redPixels(cutout(frame(false), place, 60));
    };
    const int armed = redOfMine();
    ASSERT_GT(armed, 20);
    touches(block());
    comesTrueIn(blast, [this] { return mineRadius() < 0.05f; });
    ASSERT_EQ(redOfMine(), 0);
    comesTrueIn(rest, [this] { return mineRadius() > 0.05f; });
    EXPECT_NEAR(redOfMine(), armed, armed / 4);
}

TEST_F(BlockTimersTest, SpringIsDrawnInAgainAfterItsRest)
{
    loadsTrap(80);
    looksAt(positionOf(block()), 7.0f);
    const auto picture = [this] {
        hovers(osg::Vec3d(-7.0, 0.0, 1.0));
        const QPoint place = pixelOf(positionOf(block()) + osg::Vec3d(0.0, 0.0, 0.5));
        return cutout(frame(false), place, 60);
    };
    const QImage in = picture();
    touches(block());
    ASSERT_GT(differingPixels(in, picture()), 400);
    comesTrueIn(rest, [this] { return plungerHeight() < 0.5f; });
    EXPECT_LT(differingPixels(in, picture()), 10);
}

TEST_F(BlockTimersTest, TrapdoorOpensAfterItsDelayAndShutsAfterTenSeconds)
{
    const int saturation[] = {70, 73, 76, 78};
    for (int delay = 1; delay <= 3; ++delay) {
        SCOPED_TRACE(delay);
        loadsTrap(saturation[delay]);
        ASSERT_TRUE(isDrawn());
        touches(block());
        comesTrueIn(delay, [this] { return !isDrawn(); });
        EXPECT_FALSE(isSolid());
        comesTrueIn(rest, [this] { return isDrawn(); });
        EXPECT_TRUE(isSolid());
    }
}

TEST_F(BlockTimersTest, TrapdoorDropsABallThatSleepsOnIt)
{
    loadsTrap(78);
    const double height = positionOf(block()).z();
    putsBall(positionOf(block()) + osg::Vec3d(0.0, 0.0, 0.56));
    // Two and a half seconds of the world: what rests has gone to sleep.
    ticks(75);
    ASSERT_NEAR(ballPosition().z(), height + 0.55, 0.02);
    comesTrueIn(3.0, [this] { return !isDrawn(); });
    ticks(30);
    EXPECT_LT(ballPosition().z(), height - 1.0);
}

TEST_F(BlockTimersTest, CoinAndHeartComeBackAfterTenSeconds)
{
    loadsItem(90);
    touches(block());
    comesTrueIn(rest, [this] {
        touches(block());
        return level().coinCount() == 20;
    });

    loadsItem(60);
    touches(block());
    comesTrueIn(rest, [this] {
        touches(block());
        return level().livesLeft() == 3;
    });
}

TEST_F(BlockTimersTest, HeartOfTheLastLifeIsLeftAloneByTheResetThatFollows)
{
    loadsItem(60);
    level().changeLives(-4, false);
    touches(block());
    ASSERT_EQ(game.state, GameState::LevelFailed);
    waits(11000);
    touches(block());
    EXPECT_EQ(level().livesLeft(), 4);
}

TEST_F(BlockTimersTest, FallDuringAWeightPutsTheBallBackWithoutGravityUntilTheWeightEnds)
{
    loadsItem(53);
    touches(block());
    putsBall(osg::Vec3d(20.0, 0.0, -9.0), osg::Vec3f(0.0f, 0.0f, -20.0f));
    ASSERT_TRUE(ticksUntil([this] { return level().livesLeft() == 4; }, 30));
    ticks();
    const osg::Vec3d place = ballPosition();
    EXPECT_NEAR(place.z(), 1.0, 1e-4) << "half a unit over the start cell";
    ticks(20);
    EXPECT_NEAR((ballPosition() - place).length(), 0.0, 1e-3);
    touches(block());
    comesTrueIn(4.0, [this] {
        ticks();
        return ballVelocity().z() < -0.1f;
    });
}

TEST_F(BlockTimersTest, WeightLastsItsSecondsAndComesBackTenLater)
{
    const int saturation[] = {50, 53, 56, 58};
    const int seconds[] = {1, 4, 7, 10};
    for (int step = 0; step < 4; ++step) {
        SCOPED_TRACE(step);
        loadsItem(saturation[step]);
        ASSERT_TRUE(ballFalls());
        touches(block());
        EXPECT_FALSE(ballFalls());
        comesTrueIn(seconds[step], [this] { return ballFalls(); });
        comesTrueIn(rest, [this] {
            touches(block());
            return !ballFalls();
        });
    }
}

TEST_F(BlockTimersTest, MineTakesTheLastLifeWhenItsFuseEnds)
{
    loadsTrap(93);
    level().changeLives(-4, false);
    hoversAbove(block(), 1.0);
    touches(block());
    comesTrueIn(1.0, [this] { return game.state == GameState::LevelFailed; });
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_TRUE(game.messageText->isVisible());
    EXPECT_FALSE(game.endMenu->isVisible());
}

TEST_F(BlockTimersTest, MineTakesTheLastLifeBehindAPauseMenuAndTheMenuWithIt)
{
    loadsTrap(93);
    level().changeLives(-4, false);
    hoversAbove(block(), 1.0);
    touches(block());
    releases(Qt::Key_Escape);
    ASSERT_TRUE(game.pauseMenu->isVisible());
    comesTrueIn(1.0, [this] { return game.state == GameState::LevelFailed; });
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_FALSE(game.pauseMenu->isVisible());
    EXPECT_FALSE(game.endMenu->isVisible());
    EXPECT_FALSE(GameLoop::isPaused());
}

TEST_F(BlockTimersTest, ItemComesBackDuringAPause)
{
    loadsItem(90);
    touches(block());
    ASSERT_EQ(level().coinCount(), 10);
    pausesFor(rest * 1.05);
    touches(block());
    EXPECT_EQ(level().coinCount(), 20);
}

TEST_F(BlockTimersTest, ButtonFiresAgainDuringAPause)
{
    loads(LevelPicture(9, 9, cells::floor)
              .set(0, 0, cells::start)
              .set(4, 4, {buttonHue, 60, flatHalf, 254})
              .set(6, 6, {ghostHue, 100, flatHalf, 254}));
    ticks();
    const auto isGhostThere = [this] {
        return valueOf<bool>(uniformBelow(blockAt(6, 6)->getTransform(), "a_Opaque"));
    };
    ASSERT_TRUE(isGhostThere());
    touches(block());
    ASSERT_FALSE(isGhostThere());
    pausesFor(1.05);
    EXPECT_TRUE(isGhostThere());
}

TEST_F(BlockTimersTest, ElevatorsRestEndsDuringAPauseAndItsTravelWaits)
{
    loadsBlock({elevatorHue, 62, flatHalf});
    putsBall(osg::Vec3d(0.0, 0.0, 2000.0));
    ticks(60);
    const osg::Vec3d home = positionOf(block());
    pausesFor(1.05);
    ticks();
    EXPECT_NEAR((positionOf(block()) - home).length(), 0.0, 0.1);
    ticks(20);
    EXPECT_GT((positionOf(block()) - home).length(), 0.3) << "it left without another second";
}

TEST_F(BlockTimersTest, TimersWaitWhileAnotherThreadHasTheWorld)
{
    const auto isRaised = [this] {
        osg::Uniform* target = uniformBelow(block().getTransform(), "a_PoseAnimationTarget");
        return valueOf<osg::Vec3f>(target) == osg::Vec3f();
    };
    const struct
    {
        Cell cell;
        double delay;
        std::function<bool()> hasActed;
    } kinds[] = {{{trapHue, 93, flatHalf},
                  1.0,
                  [this] {
                      return hasExploded();
                  }},
                 {{trapHue, 78, flatHalf},
                  3.0,
                  [this] {
                      return !isDrawn();
                  }},
                 {{buttonHue, 60, flatHalf}, 1.0, isRaised}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.cell.hue);
        loadsBlock(kind.cell);
        hoversAbove(block(), 3.0);
        touches(block());
        ASSERT_FALSE(kind.hasActed());
        std::atomic<bool> locked{false};
        bool actedMeanwhile = false;
        std::thread other([&] {
            const GameLoop::Lock worldLock;
            locked = true;
            QThread::msleep(50);
            actedMeanwhile = kind.hasActed();
        });
        while (!locked)
            std::this_thread::yield();
        clock.passes(int(kind.delay * 1050.0));
        other.join();
        EXPECT_FALSE(actedMeanwhile);
        EXPECT_TRUE(kind.hasActed());
    }
}
