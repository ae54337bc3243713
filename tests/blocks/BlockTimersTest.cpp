// The long delays of traps and items. This program runs on a clock that goes twenty times as fast;
// all times here are the program's own.

#include "BlockTest.h"
#include "blocks/BlockItem.h"
#include "blocks/BlockTrap.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Level.h"

#include <QElapsedTimer>
#include <QThread>
#include <osg/NodeVisitor>

#include <atomic>
#include <thread>

namespace {

constexpr int trapHue = 0;
constexpr int itemHue = 45;
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

    /// A clock to be started before the cause of what is to be timed.
    static QElapsedTimer started()
    {
        QElapsedTimer clock;
        clock.start();
        return clock;
    }

    /// Expects the condition to come true `total` seconds after the clock's start and `last`
    /// seconds from now. A busy machine does not matter: the clock was started before the cause,
    /// and a timer of our own that is due later is also served later. Timers may be off by a
    /// twentieth.
    void comesTrueIn(const QElapsedTimer& clock, double total, double last,
                     const std::function<bool()>& condition)
    {
        bool isLate = false;
        QTimer late;
        late.setSingleShot(true);
        late.setTimerType(Qt::PreciseTimer);
        QObject::connect(&late, &QTimer::timeout, [&] {
            EXPECT_TRUE(condition()) << "later than " << last << " s";
            isLate = true;
        });
        late.start(int(last * 1100.0) + 100);
        while (!isLate && !condition())
            waits(5);
        EXPECT_GE(double(clock.elapsed()) / 1000.0, total * 0.94);
    }
};

}  // namespace

TEST_F(BlockTimersTest, MineGoesThroughFuseBlastAndRestAndIsArmedAgain)
{
    for (int fuse = 1; fuse <= 3; ++fuse) {
        SCOPED_TRACE(fuse);
        loadsTrap(90 + 3 * fuse);
        hoversAbove(block(), 2.0);
        const QElapsedTimer clock = started();
        touches(block());
        // Further contacts change nothing, whenever they come.
        const auto touched = [this](const std::function<bool()>& condition) {
            return [this, condition] {
                touches(block());
                return condition();
            };
        };
        comesTrueIn(clock, fuse, fuse, touched([this] { return hasExploded(); }));
        EXPECT_EQ(level().livesLeft(), 4);
        comesTrueIn(clock, fuse + blast, blast, touched([this] { return mineRadius() < 0.05f; }));
        comesTrueIn(clock, fuse + blast + rest, rest, [this] { return mineRadius() > 0.05f; });
        EXPECT_FLOAT_EQ(mineRadius(), 0.1f);
        EXPECT_EQ(level().livesLeft(), 4);

        const QElapsedTimer again = started();
        touches(block());
        comesTrueIn(again, fuse, fuse, [this] { return hasExploded(); });
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
    const QElapsedTimer clock = started();
    touches(block());
    ticks();
    comesTrueIn(clock, blast, blast, [this] { return mineRadius() < 0.05f; });
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
    const QElapsedTimer clock = started();
    touches(block());
    hoversAbove(block(), 3.0);
    comesTrueIn(clock, 1.0, 1.0, [this] { return hasExploded(); });
    EXPECT_EQ(level().livesLeft(), 5);
    ticks();
    EXPECT_NEAR(ballVelocity().z(), speedOfForce(100.0 / 9.0), 0.002);
}

TEST_F(BlockTimersTest, SpringGoesInAfterTenSecondsAndThrowsAgain)
{
    loadsTrap(80);
    hoversAbove(block(), 1.5);
    const QElapsedTimer clock = started();
    touches(block());
    comesTrueIn(clock, rest, rest, [this] { return plungerHeight() < 0.5f; });
    EXPECT_FLOAT_EQ(plungerHeight(), 0.3f);
    ticks();
    hoversAbove(block(), 1.5);
    touches(block());
    ticks();
    EXPECT_NEAR(ballVelocity().z(), speedOfForce(10.0), 0.002);
}

TEST_F(BlockTimersTest, TrapdoorOpensAfterItsDelayAndShutsAfterTenSeconds)
{
    const int saturation[] = {70, 73, 76, 78};
    for (int delay = 1; delay <= 3; ++delay) {
        SCOPED_TRACE(delay);
        loadsTrap(saturation[delay]);
        ASSERT_TRUE(isDrawn());
        const QElapsedTimer clock = started();
        touches(block());
        comesTrueIn(clock, delay, delay, [this] { return !isDrawn(); });
        EXPECT_FALSE(isSolid());
        comesTrueIn(clock, delay + rest, rest, [this] { return isDrawn(); });
        EXPECT_TRUE(isSolid());
    }
}

TEST_F(BlockTimersTest, TrapdoorDropsABallThatSleepsOnIt)
{
    loadsTrap(78);
    const double height = positionOf(block()).z();
    putsBall(positionOf(block()) + osg::Vec3d(0.0, 0.0, 0.56));
    const QElapsedTimer clock = started();
    // Two and a half seconds of the world: what rests has gone to sleep.
    ticks(75);
    ASSERT_NEAR(ballPosition().z(), height + 0.55, 0.02);
    comesTrueIn(clock, 3.0, 3.0, [this] { return !isDrawn(); });
    ticks(30);
    EXPECT_LT(ballPosition().z(), height - 1.0);
}

TEST_F(BlockTimersTest, CoinAndHeartComeBackAfterTenSeconds)
{
    loadsItem(90);
    const QElapsedTimer clock = started();
    touches(block());
    comesTrueIn(clock, rest, rest, [this] {
        touches(block());
        return level().coinCount() == 20;
    });

    loadsItem(60);
    const QElapsedTimer again = started();
    touches(block());
    comesTrueIn(again, rest, rest, [this] {
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

TEST_F(BlockTimersTest, WeightLastsItsSecondsAndComesBackTenLater)
{
    const int saturation[] = {50, 53, 56, 58};
    const int seconds[] = {1, 4, 7, 10};
    for (int step = 0; step < 4; ++step) {
        SCOPED_TRACE(step);
        loadsItem(saturation[step]);
        ASSERT_TRUE(ballFalls());
        const QElapsedTimer clock = started();
        touches(block());
        EXPECT_FALSE(ballFalls());
        comesTrueIn(clock, seconds[step], seconds[step], [this] { return ballFalls(); });
        comesTrueIn(clock, seconds[step] + rest, rest, [this] {
            touches(block());
            return !ballFalls();
        });
    }
}
