#include "blocks/BlockPortal.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Level.h"
#include "support/BlockTest.h"

namespace {

constexpr int trapHue = 0;
constexpr int itemHue = 45;
constexpr int portalHue = 315;
constexpr int flatHalf = 73;
constexpr int flatOne = 86;
constexpr int linked = 200;

/// One level with every kind at work at once.
class BlockRestartTest : public BlockTest
{
protected:
    void loadsEverything()
    {
        loads(LevelPicture(13, 9, cells::floor)
                  .set(0, 0, cells::start)
                  .set(1, 4, {trapHue, 93, flatHalf})   // mine, fuse of a second
                  .set(3, 4, {trapHue, 90, flatHalf})   // mine without
                  .set(1, 7, {trapHue, 80, flatHalf})   // spring
                  .set(3, 7, {trapHue, 70, flatHalf})   // trapdoor without delay
                  .set(5, 7, {trapHue, 73, flatHalf})   // trapdoor, delay of a second
                  .set(11, 4, {trapHue, 58, flatHalf})  // well, reaches the sender
                  .set(5, 1, {itemHue, 90, flatHalf})   // coin
                  .set(7, 1, {itemHue, 50, flatHalf})   // weight of a second
                  .set(8, 4, {portalHue, 90, flatOne, linked})
                  .set(8, 7, {portalHue, 60, flatOne, linked}));
        ticks(2);
    }

    void setsEverythingOff()
    {
        const auto& sender = blockAs<BlockPortal>(8, 4);
        hovers(positionOf(sender) + osg::Vec3d(0.6, 0.0, 0.31));
        ASSERT_EQ(sender.getState(), BlockPortal::Sending);
        for (const auto& [column, row] :
             {std::pair(1, 4), std::pair(3, 4), std::pair(1, 7), std::pair(3, 7), std::pair(5, 7),
              std::pair(5, 1), std::pair(7, 1)})
            touches(*blockAt(column, row));
        ticks();
        EXPECT_EQ(GameLoop::frameTaskCount(), 2u) << "well and sender";
    }

    float mineRadius(int column) const
    {
        return shapesOf<osg::Sphere>(*blockAt(column, 4)).at(0)->getRadius();
    }

    bool holdsABall(int column, int row)
    {
        const osg::Vec3d top = positionOf(*blockAt(column, row)) + osg::Vec3d(0.0, 0.0, 0.56);
        putsBall(top);
        ticks(5);
        return ballPosition().z() > top.z() - 0.05;
    }
};

}  // namespace

TEST_F(BlockRestartTest, RestartInTheMiddleOfEverythingLeavesACleanLevel)
{
    loadsEverything();
    setsEverythingOff();
    level().restart(true);
    // Longer than every delay that was under way.
    waits(1300);
    ticks(3);

    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_EQ(level().coinCount(), 0);
    EXPECT_FLOAT_EQ(mineRadius(1), 0.1f);
    EXPECT_FLOAT_EQ(mineRadius(3), 0.1f);
    EXPECT_FLOAT_EQ(shapesOf<osg::Cylinder>(*blockAt(1, 7)).at(0)->getHeight(), 0.3f);
    EXPECT_EQ(blockAs<BlockPortal>(8, 4).getState(), BlockPortal::Idle);
    EXPECT_EQ(blockAs<BlockPortal>(8, 7).getState(), BlockPortal::Idle);
    bool active = true;
    ball().getTransform()->getStateSet()->getUniform("a_PortalActive")->get(active);
    EXPECT_FALSE(active);

    putsBall(osg::Vec3d(-5.0, 0.0, 5.0));
    ticks();
    EXPECT_LT(ballVelocity().z(), -0.1f);
    EXPECT_TRUE(holdsABall(5, 7)) << "the trapdoor with a delay";
    touches(*blockAt(5, 1));
    EXPECT_EQ(level().coinCount(), 10);
}

TEST_F(BlockRestartTest, NewLevelInTheMiddleOfEverythingHearsNothingOfTheOldOne)
{
    loadsEverything();
    setsEverythingOff();
    frame();
    loads(LevelPicture({"S..", "...", "..."}));
    waits(1300);
    ticks(3);
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_EQ(level().coinCount(), 0);
    putsBall(osg::Vec3d(0.0, 0.0, 5.0));
    ticks();
    EXPECT_LT(ballVelocity().z(), -0.1f);
}
