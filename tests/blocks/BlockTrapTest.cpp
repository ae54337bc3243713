#include "blocks/BlockTrap.h"

#include "SparksOfBlock.h"
#include "base/WorldNumbers.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/BlockTest.h"
#include "support/DifferingPixels.h"

#include <osgParticle/ParticleSystem>

#include <cmath>

namespace {

constexpr int trapHue = 0;
constexpr int flatHalf = 73;  // 0.5 high
constexpr int flatTwo = 100;  // 2.0 high

/// Saturations of each kind by the step of their option, 0 to 3.
constexpr int mineOfFuse[] = {90, 93, 96, 99};
constexpr int springOfStep[] = {80, 83, 86, 88};
constexpr int trapdoorOfDelay[] = {70, 73, 76, 78};
constexpr int wellOfStep[] = {50, 53, 56, 58};

/// A trap in the middle, where a ball on it does not tilt the board, and a start cell at the left,
/// with nothing between and below.
LevelPicture oneTrap(int saturation, int value = flatHalf)
{
    return LevelPicture(9, 1)
        .set(0, 0, cells::start)
        .set(4, 0, {trapHue, saturation, value})
        .set(8, 0, cells::floor);
}

class BlockTrapTest : public BlockTest
{
protected:
    BlockTrap& loadsTrap(int saturation, int value = flatHalf)
    {
        loads(oneTrap(saturation, value));
        ticks();
        return trap();
    }

    /// The same with floor all round, a board that a ball at rest does not tip.
    BlockTrap& loadsTrapInFloor(int saturation)
    {
        loads(LevelPicture(9, 9, cells::floor)
                  .set(0, 0, cells::start)
                  .set(4, 4, {trapHue, saturation, flatHalf}));
        ticks();
        return blockAs<BlockTrap>(4, 4);
    }

    BlockTrap& trap() const { return blockAs<BlockTrap>(4, 0); }

    float mineRadius() const { return shapesOf<osg::Sphere>(trap()).at(0)->getRadius(); }
    float plungerHeight() const { return shapesOf<osg::Cylinder>(trap()).at(0)->getHeight(); }
};

}  // namespace

TEST_F(BlockTrapTest, MineCostsLivesByTheDistanceOfTheBlast)
{
    struct
    {
        double distance;
        int lives;
    } const table[] = {{1.3, 2},  {1.5, 2},  {1.57, 2}, {1.6, 1}, {2.0, 1},
                       {2.23, 1}, {2.24, 0}, {2.3, 0},  {3.0, 0}};
    for (const auto& row : table) {
        SCOPED_TRACE(row.distance);
        loadsTrap(mineOfFuse[0]);
        hoversAbove(trap(), row.distance);
        touches(trap());
        EXPECT_EQ(level().livesLeft(), 5 - row.lives);
        EXPECT_NE(game.state, GameState::LevelFailed);
    }
}

TEST_F(BlockTrapTest, MineCostsAllFiveLivesAtOneUnitButFourAHairFurtherOff)
{
    loadsTrap(mineOfFuse[0]);
    hoversAbove(trap(), 0.999);
    touches(trap());
    EXPECT_EQ(game.state, GameState::LevelFailed);
    EXPECT_EQ(level().livesLeft(), 5);

    loadsTrap(mineOfFuse[0]);
    hoversAbove(trap(), 1.001);
    touches(trap());
    EXPECT_NE(game.state, GameState::LevelFailed);
    EXPECT_EQ(level().livesLeft(), 1);
}

TEST_F(BlockTrapTest, MineBlowsTheBallAwayWithTheInverseSquareOfTheDistance)
{
    for (const double distance : {1.3, 2.0, 3.0}) {
        SCOPED_TRACE(distance);
        loadsTrap(mineOfFuse[0]);
        const osg::Vec3d outward(0.6, 0.0, 0.8);
        hovers(positionOf(trap()) + outward * distance);
        touches(trap());
        ticks();
        const osg::Vec3d expected = outward * speedOfForce(100.0 / (distance * distance));
        EXPECT_NEAR((osg::Vec3d(ballVelocity()) - expected).length(), 0.0, 0.002);
    }
}

TEST_F(BlockTrapTest, MineWithoutFuseExplodesInTheContactItself)
{
    for (const int saturation : {mineOfFuse[0], 89, 91, 20, 48}) {
        SCOPED_TRACE(saturation);
        loadsTrap(saturation);
        hoversAbove(trap(), 2.0);
        EXPECT_FLOAT_EQ(mineRadius(), 0.1f);
        touches(trap());
        EXPECT_FLOAT_EQ(mineRadius(), 0.5f);
        EXPECT_EQ(level().livesLeft(), 4);
    }
}

TEST_F(BlockTrapTest, MineWithFuseDoesNothingAtFirst)
{
    loadsTrap(mineOfFuse[1]);
    hoversAbove(trap(), 1.5);
    touches(trap());
    ticks(3);
    EXPECT_FLOAT_EQ(mineRadius(), 0.1f);
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_NEAR(ballVelocity().length(), 0.0, 1e-3);
}

TEST_F(BlockTrapTest, MineIsSetOffByABallThatFallsOnIt)
{
    loadsTrap(mineOfFuse[0], flatTwo);
    putsBall(positionOf(trap()) + osg::Vec3d(0.0, 0.0, 1.8));
    ASSERT_TRUE(ticksUntil([this] { return mineRadius() > 0.4f; }, 60));
    // The ball's middle is then 0.3 over the top, 1.3 from the block's.
    EXPECT_EQ(level().livesLeft(), 3);
    ticks();
    EXPECT_GT(ballVelocity().z(), 10.0f);
}

TEST_F(BlockTrapTest, MineThatTakesTheLastLifeFlashesArmedOnTheFreshLevel)
{
    loadsTrap(mineOfFuse[0]);
    level().changeCoins(30);
    hoversAbove(trap(), 0.9);
    touches(trap());
    EXPECT_EQ(game.state, GameState::LevelFailed);
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_EQ(level().coinCount(), 0);
    EXPECT_FLOAT_EQ(mineRadius(), 0.5f);

    hoversAbove(trap(), 2.0);
    touches(trap());
    EXPECT_EQ(level().livesLeft(), 4);
    EXPECT_TRUE(comesTrue([this] { return mineRadius() == 0.0f; }));
}

TEST_F(BlockTrapTest, MineIsArmedAgainAfterARestart)
{
    loadsTrap(mineOfFuse[0]);
    hoversAbove(trap(), 2.0);
    touches(trap());
    level().restart(true);
    EXPECT_FLOAT_EQ(mineRadius(), 0.1f);
    waits(700);
    EXPECT_FLOAT_EQ(mineRadius(), 0.1f) << "the old blast goes on";

    hoversAbove(trap(), 2.0);
    touches(trap());
    EXPECT_EQ(level().livesLeft(), 4);
}

TEST_F(BlockTrapTest, MineIsDrawnSmallThenLargeThenNotAtAll)
{
    loadsTrap(mineOfFuse[0]);
    looksAt(positionOf(trap()), 7.0f);
    const osg::Vec3d aside(-7.0, 0.0, 1.0);
    hovers(aside);
    const QPoint place = pixelOf(positionOf(trap()) + osg::Vec3d(0.0, 0.0, 0.35));
    const QImage armed = cutout(frame(false), place, 60);
    EXPECT_GT(redPixels(armed), 20);

    // The blast lasts half a second, and a busy machine may draw too late.
    QImage blast;
    for (int i = 0; i < 20 && mineRadius() != 0.5f; ++i) {
        level().restart(true);
        hovers(aside);
        touches(trap());
        blast = cutout(frame(false), place, 60);
    }
    EXPECT_GT(differingPixels(armed, blast), 2000);

    ASSERT_TRUE(comesTrue([this] { return mineRadius() == 0.0f; }));
    const QImage gone = cutout(frame(false), place, 60);
    EXPECT_EQ(redPixels(gone), 0);
    EXPECT_GT(differingPixels(armed, gone), 20);
}

TEST_F(BlockTrapTest, SpringThrowsTheBallWithTwiceItsStrength)
{
    const double strength[] = {5.0, 8.0, 11.0, 14.0};
    for (int step = 0; step < 4; ++step) {
        SCOPED_TRACE(step);
        loadsTrap(springOfStep[step]);
        hoversAbove(trap(), 1.5);
        touches(trap());
        EXPECT_FLOAT_EQ(plungerHeight(), 1.0f);
        ticks();
        EXPECT_NEAR(ballVelocity().z(), speedOfForce(2.0 * strength[step]), 0.002);
        EXPECT_NEAR(ballVelocity().x(), 0.0, 0.002);
    }
}

TEST_F(BlockTrapTest, SpringThrowsAlongTheBoardsNormal)
{
    loadsTrap(springOfStep[2]);
    ASSERT_TRUE(ticksUntil(
        [this] {
            presses(Qt::Key_Left);
            return tiltDegrees() > 20.0;
        },
        200));
    releases(Qt::Key_Left);
    hoversAbove(trap(), 1.5);
    const osg::Vec3d up = osg::Vec3d(0.0, 0.0, 1.0) * boardPose();
    touches(trap());
    ticks();
    const osg::Vec3d expected = up * speedOfForce(22.0);
    EXPECT_GT(std::abs(expected.x()), 1.0);
    EXPECT_NEAR((osg::Vec3d(ballVelocity()) - expected).length(), 0.0, 0.01);
}

TEST_F(BlockTrapTest, SpringThrowsABallThatFallsOnItAsHighAsItsStrengthSays)
{
    // Heights over the block's top that the ball's lower side reaches.
    double last = 0.0;
    for (const int saturation : springOfStep) {
        SCOPED_TRACE(saturation);
        loadsTrap(saturation);
        const double top = positionOf(trap()).z() + 0.25;
        putsBall(positionOf(trap()) + osg::Vec3d(0.0, 0.0, 0.75));
        ASSERT_TRUE(ticksUntil([this] { return plungerHeight() > 0.9f; }, 60));
        double highest = 0.0;
        for (int i = 0; i < 60; ++i) {
            ticks();
            highest = std::max(highest, ballPosition().z() - 0.3 - top);
        }
        RecordProperty("height of " + std::to_string(saturation), std::to_string(highest));
        EXPECT_GT(highest, last + 0.1);
        last = highest;
    }
    EXPECT_GT(last, 1.5);
}

TEST_F(BlockTrapTest, SpringThatIsOutThrowsNoMore)
{
    loadsTrap(springOfStep[3]);
    hoversAbove(trap(), 1.5);
    touches(trap());
    ticks();
    hoversAbove(trap(), 1.5);
    touches(trap());
    ticks();
    EXPECT_NEAR(ballVelocity().length(), 0.0, 0.002);
}

TEST_F(BlockTrapTest, SpringIsInAgainAfterARestart)
{
    loadsTrap(springOfStep[0]);
    hoversAbove(trap(), 1.5);
    touches(trap());
    level().restart(true);
    EXPECT_FLOAT_EQ(plungerHeight(), 0.3f);
    hoversAbove(trap(), 1.5);
    touches(trap());
    ticks();
    EXPECT_NEAR(ballVelocity().z(), speedOfForce(10.0), 0.002);
}

TEST_F(BlockTrapTest, SpringIsDrawnTallWhenItIsOut)
{
    loadsTrap(springOfStep[0]);
    looksAt(positionOf(trap()), 7.0f);
    hovers(osg::Vec3d(-7.0, 0.0, 1.0));
    const QPoint place = pixelOf(positionOf(trap()) + osg::Vec3d(0.0, 0.0, 0.5));
    const QImage in = cutout(frame(false), place, 60);
    touches(trap());
    EXPECT_GT(differingPixels(in, cutout(frame(false), place, 60)), 400);
}

TEST_F(BlockTrapTest, TrapdoorLetsTheBallFallThrough)
{
    loadsTrap(trapdoorOfDelay[0]);
    const osg::Vec3d place = positionOf(trap());
    putsBall(place + osg::Vec3d(0.0, 0.0, 0.8));
    EXPECT_TRUE(ticksUntil([&] { return ballPosition().z() < place.z() - 1.0; }, 60));
    EXPECT_EQ(level().livesLeft(), 5);
}

TEST_F(BlockTrapTest, TrapdoorWithDelayHoldsTheBallAtFirst)
{
    const osg::Vec3d place = positionOf(loadsTrapInFloor(trapdoorOfDelay[1]));
    putsBall(place + osg::Vec3d(0.0, 0.0, 0.6));
    ticks(40);
    EXPECT_NEAR(ballPosition().z(), place.z() + 0.55, 0.02);
}

TEST_F(BlockTrapTest, TrapdoorIsNotDrawnWhileItIsOpenAndIsShutByARestart)
{
    loadsTrap(trapdoorOfDelay[0]);
    const osg::Vec3d place = positionOf(trap());
    looksAt(place, 7.0f);
    hovers(osg::Vec3d(-7.0, 0.0, 1.0));
    const QPoint pixel = pixelOf(place);
    const QImage shut = cutout(frame(false), pixel, 20);

    touches(trap());
    const QImage open = cutout(frame(false), pixel, 20);
    EXPECT_GT(differingPixels(shut, open), 1200);

    level().restart(true);
    ticks();
    EXPECT_EQ(differingPixels(shut, cutout(frame(false), pixel, 20)), 0);
    putsBall(place + osg::Vec3d(0.0, 0.0, 0.56));
    ticks(2);
    EXPECT_GT(ballPosition().z(), place.z() + 0.5);
}

TEST_F(BlockTrapTest, TrapOfNoKindIsABlockLikeAnyOther)
{
    for (const int saturation : {59, 63, 68}) {
        SCOPED_TRACE(saturation);
        const BlockTrap& inert = loadsTrapInFloor(saturation);
        EXPECT_EQ(geodesOf(inert).size(), 1u) << "its body";
        const osg::Vec3d place = positionOf(inert);
        putsBall(place + osg::Vec3d(0.0, 0.0, 0.7));
        ticks(60);
        EXPECT_NEAR(ballPosition().z(), place.z() + 0.55, 0.02);
        EXPECT_EQ(level().livesLeft(), 5);
        level().restart(true);
        ticks();
        EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
    }
}

TEST_F(BlockTrapTest, WellPullsWithTheInverseSquareOnceATick)
{
    for (const double distance : {1.0, 1.5}) {
        SCOPED_TRACE(distance);
        loadsTrap(wellOfStep[3]);
        const osg::Vec3d inward(-1.0, 0.0, 0.0);
        hovers(positionOf(trap()) - inward * distance);
        EXPECT_NEAR(ballVelocity().length(), 0.0, 1e-4) << "the ball has only just come in";
        ticks();
        const double pull = speedOfForce(1.0 / (distance * distance));
        EXPECT_NEAR(ballVelocity().x(), -pull, 0.01 * pull);
        EXPECT_NEAR(ballVelocity().z(), 0.0, 0.01);
        const double nearer = ballPosition().x() - positionOf(trap()).x();
        ticks();
        EXPECT_NEAR(ballVelocity().x(), -pull - speedOfForce(1.0 / (nearer * nearer)), 0.02);
    }
}

TEST_F(BlockTrapTest, WellPullsInsideTheCubeOfItsSideOnly)
{
    const double side[] = {3.0, 4.0, 6.0, 7.0};
    for (int step = 0; step < 4; ++step) {
        SCOPED_TRACE(step);
        loadsTrap(wellOfStep[step]);
        hoversAbove(trap(), side[step] / 2.0 + world::ballRadius + 0.05);
        ticks(3);
        EXPECT_NEAR(ballVelocity().length(), 0.0, 1e-4);
        hoversAbove(trap(), side[step] / 2.0 + world::ballRadius - 0.05);
        ticks();
        EXPECT_LT(ballVelocity().z(), -0.01f);
    }
}

TEST_F(BlockTrapTest, WellStopsPullingAtOnceWhenTheBallLeavesAndNeverRests)
{
    loadsTrap(wellOfStep[0]);
    for (int time = 0; time < 3; ++time) {
        SCOPED_TRACE(time);
        hoversAbove(trap(), 1.5);
        ticks();
        EXPECT_LT(ballVelocity().z(), -0.05f);
        EXPECT_EQ(GameLoop::frameTaskCount(), 1u);
        hoversAbove(trap(), 3.0);
        const osg::Vec3f left = ballVelocity();
        ticks();
        EXPECT_NEAR((ballVelocity() - left).length(), 0.0, 1e-4);
        EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
    }
}

TEST_F(BlockTrapTest, WellLetsGoOnARestartAndWithTheLevel)
{
    loadsTrap(wellOfStep[0]);
    hoversAbove(trap(), 1.5);
    level().restart(true);
    ticks(2);
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);

    hoversAbove(trap(), 1.5);
    ticks();
    EXPECT_EQ(GameLoop::frameTaskCount(), 1u);
    loadsTrap(wellOfStep[0]);
    ticks();
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
}

TEST_F(BlockTrapTest, WellHasABlackDiscOfItsSize)
{
    const float radius[] = {0.5f, 0.6f, 0.8f, 0.9f};
    for (int step = 0; step < 4; ++step) {
        loadsTrap(wellOfStep[step]);
        const auto discs = shapesOf<osg::Cylinder>(trap());
        ASSERT_EQ(discs.size(), 1u);
        EXPECT_FLOAT_EQ(discs[0]->getRadius(), radius[step]);
        EXPECT_FLOAT_EQ(discs[0]->getHeight(), 0.01f);
    }
}

TEST_F(BlockTrapTest, WellSpraysRedSparksFromItsFourCornersDownward)
{
    loadsTrap(wellOfStep[0]);
    const SparksOfBlock sparks(trap());
    const osgParticle::Particle& spark = sparks.system->getDefaultParticleTemplate();
    EXPECT_EQ(spark.getShape(), osgParticle::Particle::HEXAGON);
    EXPECT_FLOAT_EQ(spark.getSizeRange().minimum, 0.03f);
    EXPECT_FLOAT_EQ(spark.getSizeRange().maximum, 0.07f);
    EXPECT_EQ(spark.getColorRange().minimum, osg::Vec4f(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(spark.getColorRange().maximum, osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
    sparks.expectsCommonSettings();
    sparks.expectsRate(100.0f, 200.0f);
    sparks.expectsSource({{-0.5, -0.5, 1.0}, {-0.5, 0.5, 1.0}, {0.5, 0.5, 1.0}, {0.5, -0.5, 1.0}});
    sparks.expectsWind({0.0f, 0.0f, -1.0f});
}

TEST_F(BlockTrapTest, IsPaintedInRedOnEitherSideOfTheSeamOfTheCircle)
{
    const int hues[] = {350, 355, 359, 0, 5, 10, 349, 11};
    LevelPicture picture(8, 1);
    for (int column = 0; column < 8; ++column)
        picture.set(column, 0, {hues[column], springOfStep[0], flatTwo});
    loads(picture);
    for (int column = 0; column < 8; ++column) {
        SCOPED_TRACE(hues[column]);
        const Block* block = blockAt(column, 0);
        if (column >= 6) {
            EXPECT_EQ(block, nullptr);
            continue;
        }
        ASSERT_TRUE(dynamic_cast<const BlockTrap*>(block));
        EXPECT_EQ(shapesOf<osg::Cylinder>(*block).size(), 1u) << "the plunger of its spring";
    }
}

TEST_F(BlockTrapTest, WellSpraysSparksThatLeaveNothingBehindWithTheLevel)
{
    loadsTrap(wellOfStep[0]);
    const auto systems = drawablesOf<osgParticle::ParticleSystem>(trap());
    ASSERT_EQ(systems.size(), 1u);
    osg::observer_ptr<const osgParticle::ParticleSystem> sparks = systems[0];
    draws(true);
    plays(1500);
    const int living = sparks->numParticles() - sparks->numDeadParticles();
    EXPECT_GT(living, 60);
    EXPECT_LT(living, 400);

    loadsTrap(wellOfStep[0]);
    EXPECT_FALSE(sparks.valid());
}

TEST_F(BlockTrapTest, DecorationsStandOnTheMiddleOfARamp)
{
    constexpr int rampOfOne = 64;  // from 0 to 1.0
    loadsTrap(mineOfFuse[0], rampOfOne);
    // The block's own origin lies at half its height, so the middle of the slope is at its level.
    EXPECT_NEAR(shapesOf<osg::Sphere>(trap()).at(0)->getCenter().z(), 0.1f, 1e-6);
    loadsTrap(springOfStep[0], rampOfOne);
    EXPECT_NEAR(shapesOf<osg::Cylinder>(trap()).at(0)->getCenter().z(), 0.0f, 1e-6);
    loadsTrap(wellOfStep[0], flatTwo);
    EXPECT_NEAR(shapesOf<osg::Cylinder>(trap()).at(0)->getCenter().z(), 1.0f, 1e-6);
}

TEST_F(BlockTrapTest, SpringHasAPlungerOfSteel)
{
    loadsTrap(springOfStep[0]);
    for (const auto* drawable : drawablesOf<osg::ShapeDrawable>(trap())) {
        if (!dynamic_cast<const osg::Cylinder*>(drawable->getShape()))
            continue;
        const osg::Uniform* lacquer =
            drawable->getParent(0)->getStateSet()->getUniform("a_Lacquer");
        ASSERT_TRUE(lacquer);
        osg::Vec4f steel;
        lacquer->get(steel);
        EXPECT_GT(steel.a(), 0.5f) << "little wood is seen through it";
        EXPECT_NEAR(steel.r(), steel.b(), 0.15f) << "and it is grey";
        return;
    }
    FAIL() << "no plunger";
}
