#include "level/BlockCheckpoint.h"

#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/SceneSearch.h"

#include <osg/FrameStamp>
#include <osg/Geometry>
#include <osg/ShapeDrawable>

namespace {

constexpr Cell flagOf(int saturation, int value = 73)
{
    return {135, saturation, value};
}

class BlockCheckpointTest : public GameTest
{
protected:
    BlockCheckpoint& checkpoint(int column, int row = 0)
    {
        return static_cast<BlockCheckpoint&>(*blockAt(column, row));
    }

    void touches(int column, int row = 0) { checkpoint(column, row).onBallContact(&ball()); }

    template <typename Value>
    Value uniform(Block* block, const std::string& name)
    {
        return valueOf<Value>(uniformBelow(block->getTransform(), name));
    }

    /// Where the flag is on its way from and to, and between which times.
    void expectsFlag(Block* block, float from, float to, float start, float end)
    {
        EXPECT_EQ(uniform<osg::Vec3f>(block, "a_Pose"), osg::Vec3f(0.0f, 0.0f, from));
        EXPECT_EQ(uniform<osg::Vec3f>(block, "a_PoseAnimationTarget"), osg::Vec3f(0.0f, 0.0f, to));
        EXPECT_EQ(uniform<float>(block, "a_PoseAnimationStart"), start);
        EXPECT_EQ(uniform<float>(block, "a_PoseAnimationEnd"), end);
    }

    static float now() { return float(GameLoop::frameStamp()->getSimulationTime()); }
};

TEST_F(BlockCheckpointTest, IsOfTheKindAndWorthThatItsSaturationSays)
{
    loads({"S"});
    ticks();
    BlockGroup group;
    const int reward[] = {1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 5, 5, 6, 6, 6, 7, 7};
    for (int saturation = 0; saturation <= 100; ++saturation) {
        SCOPED_TRACE(saturation);
        const osg::ref_ptr<BlockCheckpoint> before = level().checkpoint;
        osg::ref_ptr<BlockCheckpoint> block = new BlockCheckpoint(
            level(), float(saturation) * 1.5f + 5.0f, 0.0f, saturation, 73, group);
        const bool isStart = saturation >= 91;
        const bool isGoal = saturation >= 49 && saturation <= 68;
        const bool isRequired = saturation >= 79 && saturation <= 90;
        EXPECT_EQ(level().checkpoint == block, isStart);
        const int coins = level().coinCount();
        game.state = GameState::Playing;
        block->onBallContact(&ball());
        const int paid = level().coinCount() - coins;
        EXPECT_EQ(game.state == GameState::LevelCompleted, isGoal);
        osg::Node* flag = nodeWithUniform(block->getTransform(), "a_FlagType");
        if (isStart) {
            EXPECT_EQ(paid, 0);
            EXPECT_EQ(flag, nullptr);
            continue;
        }
        ASSERT_NE(flag, nullptr);
        EXPECT_EQ(uniform<int>(block, "a_FlagType"), isGoal ? 2 : 1);
        osg::Uniform* color = flag->getStateSet()->getUniform("a_FlagColor");
        if (isGoal) {
            EXPECT_EQ(paid, 50 * reward[saturation - 49]);
            EXPECT_EQ(color, nullptr);
            EXPECT_NE(level().checkpoint, block);
            continue;
        }
        const int n = saturation >= 79 ? saturation - 79 : saturation >= 69 ? saturation - 69 : 0;
        EXPECT_EQ(paid, 10 * reward[n]);
        EXPECT_EQ(valueOf<osg::Vec4f>(color), isRequired ? osg::Vec4f(0.8f, 0.0f, 0.0f, 1.0f)
                                                         : osg::Vec4f(0.0f, 0.0f, 0.8f, 1.0f));
        EXPECT_EQ(level().checkpoint, block);
    }
}

TEST_F(BlockCheckpointTest, DrawsTheLineBetweenItsKindsWhereThePictureDoes)
{
    LevelPicture picture(8, 2, cells::floor);
    const int saturations[] = {100, 91, 90, 79, 78, 69, 68, 49};
    for (int column = 0; column < 8; ++column)
        picture.set(column, 0, flagOf(saturations[column]));
    picture.set(0, 1, flagOf(48));
    loads(picture);
    ticks();
    EXPECT_EQ(level().checkpoint, blockAt(1, 0)) << "of two starts the last counts";
    for (int column = 0; column < 8; ++column) {
        SCOPED_TRACE(saturations[column]);
        osg::Uniform* color = uniformBelow(blockAt(column, 0)->getTransform(), "a_FlagColor");
        const bool isCheckpoint = column >= 2 && column <= 5;
        ASSERT_EQ(color != nullptr, isCheckpoint);
        if (isCheckpoint)
            EXPECT_EQ(valueOf<osg::Vec4f>(color).r() > 0.5f, column <= 3) << "red if required";
    }
    EXPECT_EQ(uniform<int>(blockAt(0, 1), "a_FlagType"), 1);
    EXPECT_GT(uniform<osg::Vec4f>(blockAt(0, 1), "a_FlagColor").b(), 0.5f);
}

TEST_F(BlockCheckpointTest, SharesItsProgramWithFlagsThatSetTheSameUniforms)
{
    // In a shared program, a flag sees whatever uniform it does not set as another has set it.
    loads({"SROGG"});
    const auto programOf = [this](int column) {
        const osg::Node* flag = nodeWithUniform(blockAt(column, 0)->getTransform(), "a_FlagType");
        return flag->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM);
    };
    EXPECT_NE(programOf(1), nullptr);
    EXPECT_EQ(programOf(1), programOf(2));
    EXPECT_NE(programOf(3), nullptr);
    EXPECT_NE(programOf(3), programOf(1)) << "a goal has no colour";
    EXPECT_NE(programOf(4), programOf(1));
}

TEST_F(BlockCheckpointTest, PaysOnceAndSinksWithinASecond)
{
    loads({"SO."});
    ticks(3);
    expectsFlag(blockAt(1, 0), 0.0f, 0.0f, 0.0f, 0.0f);
    const float touched = now();
    touches(1);
    EXPECT_EQ(level().coinCount(), 10);
    EXPECT_EQ(level().checkpoint, blockAt(1, 0));
    expectsFlag(blockAt(1, 0), 0.0f, -1.0f, touched, touched + 1.0f);
    level().checkpoint = nullptr;
    ticks(2);
    touches(1);
    EXPECT_EQ(level().coinCount(), 10);
    EXPECT_EQ(level().checkpoint, nullptr);
    expectsFlag(blockAt(1, 0), 0.0f, -1.0f, touched, touched + 1.0f);
}

TEST_F(BlockCheckpointTest, RisesAgainWhenTheRunStartsOver)
{
    loads({"SOG"});
    ticks(3);
    touches(1);
    ticks(2);
    const float restarted = now();
    level().restart(true);
    expectsFlag(blockAt(1, 0), -1.0f, 0.0f, restarted, restarted + 1.0f);
    expectsFlag(blockAt(2, 0), -1.0f, 0.0f, restarted, restarted + 1.0f);
    touches(1);
    EXPECT_EQ(level().coinCount(), 10);
}

TEST_F(BlockCheckpointTest, StaysDownThroughAFall)
{
    loads({"SO."});
    ticks(3);
    touches(1);
    const float touched = now();
    ticks(2);
    level().restart(false);
    expectsFlag(blockAt(1, 0), 0.0f, -1.0f, touched, touched + 1.0f);
}

TEST_F(BlockCheckpointTest, LetsNobodyWinPastARequiredFlag)
{
    loads({"SROG"});
    ticks();
    game.state = GameState::Playing;
    touches(3);
    EXPECT_EQ(game.state, GameState::Playing);
    EXPECT_EQ(level().coinCount(), 0) << "nothing at all happens";
    touches(1);
    touches(3);
    EXPECT_EQ(game.state, GameState::LevelCompleted) << "the optional one does not matter";
    EXPECT_EQ(level().coinCount(), 10 + 50);
    touches(3);
    EXPECT_EQ(level().coinCount(), 10 + 100) << "a goal has no memory";
}

TEST_F(BlockCheckpointTest, MeansNothingAsAStart)
{
    loads({"S."});
    ticks();
    game.state = GameState::Playing;
    touches(0);
    checkpoint(0).reset();
    EXPECT_EQ(level().coinCount(), 0);
    EXPECT_EQ(game.state, GameState::Playing);
    EXPECT_EQ(blockAt(0, 0)->getTransform()->getNumChildren(), 1u) << "a block, and no flag on it";
}

TEST_F(BlockCheckpointTest, IsToldOfTheTrueBall)
{
    loads({"SOG"});
    ticksUntil([&] { return ballPosition().z() < 0.81; }, 60);
    game.state = GameState::Playing;
    game.setLinearVelocity(ball().getId(), osg::Vec3f(3.0f, 0.0f, 0.0f), true);
    EXPECT_TRUE(ticksUntil([&] { return level().coinCount() == 10; }, 60));
    EXPECT_EQ(level().checkpoint, blockAt(1, 0));
    EXPECT_TRUE(ticksUntil([&] { return game.state == GameState::LevelCompleted; }, 60));
    EXPECT_EQ(level().coinCount(), 60);
}

TEST_F(BlockCheckpointTest, FliesItsFlagFromTheMiddleOfItsTop)
{
    LevelPicture picture(3, 1, cells::floor);
    // Flat 1.0, a ramp from 0 to 0.5, a ramp from 0.5 to 1.5.
    const int values[] = {86, 58, 79};
    const float middles[] = {1.0f, 0.25f, 1.0f};
    for (int column = 0; column < 3; ++column)
        picture.set(column, 0, flagOf(70, values[column]));
    loads(picture);
    for (int column = 0; column < 3; ++column) {
        SCOPED_TRACE(values[column]);
        Block* block = blockAt(column, 0);
        osg::MatrixTransform* transform = block->getTransform();
        const double origin = transform->getMatrix().getTrans().z();
        auto* cloth = nodeWithUniform(transform, "a_FlagType")->asGroup();
        ASSERT_NE(cloth, nullptr);
        const osg::Geometry* geometry = cloth->getChild(0)->asGeometry();
        const auto& vertices = static_cast<const osg::Vec3Array&>(*geometry->getVertexArray());
        ASSERT_EQ(vertices.size(), 10u);
        for (unsigned int i = 0; i < 10; ++i) {
            EXPECT_NEAR(vertices[i].x(), float(i / 2) * 0.1f, 1e-6f);
            EXPECT_EQ(vertices[i].y(), 0.0f);
            EXPECT_NEAR(vertices[i].z() + origin, middles[column] + (i % 2 ? 1.15 : 1.55), 1e-5);
        }
        EXPECT_EQ(geometry->getPrimitiveSet(0)->getMode(), GLenum(GL_QUAD_STRIP));
        EXPECT_EQ(geometry->getDataVariance(), osg::Object::STATIC);

        const auto* pole =
            dynamic_cast<const osg::ShapeDrawable*>(transform->getChild(2)->asGroup()->getChild(0));
        ASSERT_NE(pole, nullptr);
        const auto* cylinder = dynamic_cast<const osg::Cylinder*>(pole->getShape());
        ASSERT_NE(cylinder, nullptr);
        EXPECT_NEAR(cylinder->getRadius(), 0.03f, 1e-6f);
        EXPECT_NEAR(cylinder->getHeight(), 1.6f, 1e-6f);
        EXPECT_NEAR(cylinder->getCenter().z() - 0.8f + origin, middles[column], 1e-5) << "its foot";
    }
}

TEST_F(BlockCheckpointTest, IsKnownWhileItLives)
{
    loads({"SRO", "G.."});
    EXPECT_EQ(BlockCheckpoint::allCheckpoints.size(), 4u);
    loads({"S"});
    EXPECT_EQ(BlockCheckpoint::allCheckpoints.size(), 1u);
    EXPECT_EQ(*BlockCheckpoint::allCheckpoints.begin(), level().checkpoint);
}

TEST_F(BlockCheckpointTest, IsCompletedAtTheFirstOfSeveralGoals)
{
    loads({"SGG"});
    ticks();
    touches(2);
    EXPECT_EQ(game.state, GameState::LevelCompleted);
}

}  // namespace
