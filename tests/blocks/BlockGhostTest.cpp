#include "blocks/BlockGhost.h"

#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "shaders/ShaderProgram.h"
#include "support/DifferingPixels.h"
#include "support/GameTest.h"

#include <osg/FrameStamp>
#include <osg/MatrixTransform>
#include <osg/StateSet>
#include <osg/Uniform>

#include <cmath>
#include <utility>
#include <vector>

namespace {

constexpr int hue = 225;
constexpr int blockValue = 86;  // a cube
constexpr double restOnCube = 1.0 + 0.3;
constexpr int signalsOnlyOpaque = 100;
constexpr int signalsOnlyTransparent = 70;
constexpr int pulsesOpaque = 80;       // twice a second
constexpr int pulsesTransparent = 40;  // twice a second
constexpr float fadeSeconds = 0.5f;

struct Fade
{
    bool opaque = false;
    float start = -1.0f;
    float end = -1.0f;
};

class BlockGhostTest : public GameTest
{
protected:
    /// A ghost in a floor that has a hole in its place: what it lets through is gone.
    Block& loadsOne(int saturation, int alpha = 255)
    {
        loads(pictureOf(saturation, alpha));
        ticks(2);
        return ghost();
    }

    static LevelPicture pictureOf(int saturation, int alpha = 255)
    {
        return LevelPicture(7, 7, cells::floor)
            .set(0, 0, cells::start)
            .set(3, 3, {hue, saturation, blockValue, alpha});
    }

    Block& ghost() { return *blockAt(3, 3); }

    static Fade fadeOf(Block& block)
    {
        osg::StateSet* stateSet = block.getTransform()->getStateSet();
        Fade fade;
        EXPECT_TRUE(stateSet->getUniform("a_Opaque")->get(fade.opaque));
        EXPECT_TRUE(stateSet->getUniform("a_OpaqueStart")->get(fade.start));
        EXPECT_TRUE(stateSet->getUniform("a_OpaqueEnd")->get(fade.end));
        return fade;
    }

    static bool isOpaque(Block& block) { return fadeOf(block).opaque; }

    static double now() { return GameLoop::frameStamp()->getSimulationTime(); }

    void putsBallOver(Block& block) { putsBall(osg::Vec3d(block.x, block.y, restOnCube + 0.01)); }

    /// Follows the ghost, tick by tick, until it has turned so often.
    void expectTurnsAtMultiplesOf(double period, int turns)
    {
        // A tick looks at the clock of the frame before it.
        double last = now();
        ticks();
        while (turns > 0 && !HasFailure()) {
            waits(10);
            const double time = now();
            const bool before = isOpaque(ghost());
            ticks();
            const bool turned = isOpaque(ghost()) != before;
            EXPECT_EQ(turned, int(time / period) > int(last / period)) << "at " << time;
            turns -= turned ? 1 : 0;
            last = time;
        }
    }

    /// Does the ball lie on the block, put there anew?
    bool carriesBall(Block& block)
    {
        putsBallOver(block);
        ticks(12);
        return ballPosition().z() > restOnCube - 0.05;
    }
};

TEST_F(BlockGhostTest, BeginsAsItsSaturationSays)
{
    for (const int saturation : {30, 50, 67, 78, 79, 80, 96, 97, 100}) {
        SCOPED_TRACE(saturation);
        loads(pictureOf(saturation));
        EXPECT_EQ(isOpaque(ghost()), saturation >= 79);
    }
}

TEST_F(BlockGhostTest, CarriesTheBallWhileItIsSolidOnly)
{
    Block& block = loadsOne(signalsOnlyOpaque);
    EXPECT_TRUE(carriesBall(block));
    block.onSignal(nullptr);
    EXPECT_FALSE(carriesBall(block));
    block.onSignal(nullptr);
    EXPECT_TRUE(carriesBall(block));
}

TEST_F(BlockGhostTest, LetsTheBallThroughFromTheStartWhenItBeginsTransparent)
{
    Block& block = loadsOne(signalsOnlyTransparent);
    EXPECT_FALSE(carriesBall(block));
    block.onSignal(nullptr);
    EXPECT_TRUE(carriesBall(block));
}

TEST_F(BlockGhostTest, DropsARestingBallAtTheNextStepWhileThePictureStillFades)
{
    Block& block = loadsOne(signalsOnlyOpaque);
    ASSERT_TRUE(carriesBall(block));
    const double before = ballPosition().z();
    block.onSignal(nullptr);
    EXPECT_GT(fadeOf(block).end, now());
    ticks();
    EXPECT_LT(ballVelocity().z(), -0.3f);
    EXPECT_LT(ballPosition().z(), before - 0.005);
}

TEST_F(BlockGhostTest, LetsTheEngineSettleABallInsideWhenItTurnsSolid)
{
    Block& block = loadsOne(signalsOnlyTransparent);
    putsBall(osg::Vec3d(block.x + 0.1, block.y, 0.6));
    ticks();
    block.onSignal(nullptr);
    ticks(30);
    const osg::Vec3d ball = ballPosition();
    EXPECT_TRUE(ball.valid());
    const bool inside = std::abs(ball.x() - block.x) < 0.4 && std::abs(ball.y() - block.y) < 0.4 &&
                        ball.z() > 0.0 && ball.z() < 0.9;
    EXPECT_FALSE(inside);
    EXPECT_LT(ball.length(), 30.0);
}

TEST_F(BlockGhostTest, FadesForHalfASecondFromTheFrameOfTheChange)
{
    Block& block = loadsOne(signalsOnlyOpaque);
    for (const bool opaque : {false, true}) {
        waits(20);
        ticks();
        const float time = float(now());
        block.onSignal(nullptr);
        const Fade fade = fadeOf(block);
        EXPECT_EQ(fade.opaque, opaque);
        EXPECT_EQ(fade.start, time);
        EXPECT_EQ(fade.end, time + fadeSeconds);
    }
}

TEST_F(BlockGhostTest, BeginsItsFadeAnewAtASignalInTheMiddleOfOne)
{
    Block& block = loadsOne(signalsOnlyOpaque);
    block.onSignal(nullptr);
    const Fade first = fadeOf(block);
    waits(30);
    ticks();
    block.onSignal(nullptr);
    const Fade second = fadeOf(block);
    EXPECT_TRUE(second.opaque);
    EXPECT_GT(second.start, first.start);
    EXPECT_EQ(second.end, second.start + fadeSeconds);
}

TEST_F(BlockGhostTest, ChangesAtTheMultiplesOfItsPeriod)
{
    for (const auto& [saturation, period] : {std::pair(pulsesOpaque, 0.5), {53, 1.0}}) {
        SCOPED_TRACE(saturation);
        loads(pictureOf(saturation));
        expectTurnsAtMultiplesOf(period, 2);
    }
}

TEST_F(BlockGhostTest, PulsesAndFollowsSignals)
{
    Block& block = loadsOne(pulsesTransparent);
    const bool before = isOpaque(block);
    block.onSignal(nullptr);
    EXPECT_NE(isOpaque(block), before);
    const bool after = isOpaque(block);
    EXPECT_TRUE(playsUntil([&] { return isOpaque(block) != after; }, 10000));
}

TEST_F(BlockGhostTest, HasARhythmOfItsOwnOnlyWithinItsBand)
{
    for (const auto& [saturation, pulses] : {std::pair(30, true),
                                             {50, true},
                                             {66, true},
                                             {67, false},
                                             {78, false},
                                             {79, true},
                                             {96, true},
                                             {97, false},
                                             {100, false}}) {
        SCOPED_TRACE(saturation);
        loads(LevelPicture({"S"}));
        ticks();
        const std::size_t others = GameLoop::intervalTaskCount();
        loadsOne(saturation);
        EXPECT_EQ(GameLoop::intervalTaskCount(), others + (pulses ? 1 : 0));
        loads(LevelPicture({"S"}));
        ticks();
        EXPECT_EQ(GameLoop::intervalTaskCount(), others);
    }
}

TEST_F(BlockGhostTest, ReturnsToItsFirstStateAtARestart)
{
    for (const auto& [saturation, opaque] :
         {std::pair(signalsOnlyOpaque, true), {signalsOnlyTransparent, false}}) {
        SCOPED_TRACE(saturation);
        Block& block = loadsOne(saturation);
        block.onSignal(nullptr);
        ticks();
        level().restart(true);
        EXPECT_EQ(isOpaque(block), opaque);
        EXPECT_EQ(fadeOf(block).start, float(now()));
        EXPECT_EQ(carriesBall(block), opaque);
    }
}

TEST_F(BlockGhostTest, KeepsItsRhythmAtARestart)
{
    Block& block = loadsOne(pulsesOpaque);
    ASSERT_TRUE(playsUntil([&] { return !isOpaque(block); }, 10000));
    const std::size_t tasks = GameLoop::intervalTaskCount();
    level().restart(true);
    EXPECT_TRUE(isOpaque(block));
    expectTurnsAtMultiplesOf(0.5, 2);
    EXPECT_EQ(GameLoop::intervalTaskCount(), tasks);
}

TEST_F(BlockGhostTest, StaysAsItIsWhenARestartOnlyPutsTheBallBack)
{
    Block& block = loadsOne(signalsOnlyOpaque);
    block.onSignal(nullptr);
    level().restart(false);
    EXPECT_FALSE(isOpaque(block));
}

TEST_F(BlockGhostTest, MissesItsTurnsWhileTheGameIsPausedAndMakesUpForNone)
{
    Block& block = loadsOne(pulsesOpaque);
    GameLoop::pause();
    const bool before = isOpaque(block);
    const double begin = now();
    while (now() < begin + 1.6) {
        ticks();
        EXPECT_EQ(isOpaque(block), before);
        waits(50);
    }
    GameLoop::resume();
    int changes = 0;
    for (bool last = before; now() < begin + 2.0;) {
        ticks();
        changes += isOpaque(block) != last;
        last = isOpaque(block);
        waits(10);
    }
    // One for the whole pause, and one at most for the time since.
    EXPECT_GE(changes, 1);
    EXPECT_LE(changes, 2);
}

TEST_F(BlockGhostTest, IsChangedByTheButtonOfItsGroupOnly)
{
    loads(LevelPicture(5, 5, cells::floor)
              .set(0, 0, cells::start)
              .set(4, 4, {270, 100, blockValue, 254})
              .set(2, 2, {hue, signalsOnlyOpaque, blockValue, 254})
              .set(3, 1, {hue, signalsOnlyOpaque, blockValue, 253}));
    ticks(2);
    putsBallOver(*blockAt(4, 4));
    ticks(10);
    EXPECT_FALSE(isOpaque(*blockAt(2, 2)));
    EXPECT_TRUE(isOpaque(*blockAt(3, 1)));
}

TEST_F(BlockGhostTest, TakesNoNoticeOfTheBall)
{
    Block& block = loadsOne(signalsOnlyOpaque);
    const Fade before = fadeOf(block);
    EXPECT_TRUE(carriesBall(block));
    EXPECT_TRUE(carriesBall(block));
    const Fade after = fadeOf(block);
    EXPECT_EQ(after.opaque, before.opaque);
    EXPECT_EQ(after.start, before.start);
}

TEST_F(BlockGhostTest, TiltsWithTheBoardWhetherSolidOrNot)
{
    for (const int saturation : {signalsOnlyOpaque, signalsOnlyTransparent}) {
        SCOPED_TRACE(saturation);
        Block& block = loadsOne(saturation);
        holds(Qt::Key_Up, 25);
        ASSERT_GT(tiltDegrees(), 8.0);
        const osg::Vec3d onBoard =
            block.getTransform()->getMatrix().getTrans() * osg::Matrixd::inverse(boardPose());
        EXPECT_NEAR((onBoard - osg::Vec3d(block.x, block.y, 0.5)).length(), 0.0, 0.02);
    }
}

TEST_F(BlockGhostTest, SharesOneProgramAndOneTransparentBinWithItsKind)
{
    loads(LevelPicture(3, 1)
              .set(0, 0, cells::start)
              .set(1, 0, {hue, 100, 86})
              .set(2, 0, {hue, 70, 86}));
    ShaderProgram::ShaderGroup* group = board().shaderGroup("Ghost");
    ASSERT_EQ(group->getNumChildren(), 2u);
    ASSERT_TRUE(group->shaderProgram);
    EXPECT_EQ(group->shaderProgram->vertexShader, game.shaderPrograms.at("boardShader.vert"));
    EXPECT_EQ(group->shaderProgram->fragmentShader, game.shaderPrograms.at("ghostShader.frag"));

    osg::StateSet* stateSet = group->getStateSet();
    EXPECT_EQ(stateSet->getMode(GL_BLEND), osg::StateAttribute::ON);
    EXPECT_EQ(stateSet->getRenderingHint(), osg::StateSet::TRANSPARENT_BIN);
    EXPECT_EQ(stateSet->getAttribute(osg::StateAttribute::PROGRAM),
              group->shaderProgram->program.get());
}

TEST_F(BlockGhostTest, PastesNoiseWoodEaseAndLightIntoItsShaderInThisOrder)
{
    loads(pictureOf(100));
    const auto& injections = game.shaderPrograms.at("ghostShader.frag")->injections;
    std::vector<QString> pasted;
    for (const auto& injection : injections) {
        pasted.push_back(injection->code());
        EXPECT_EQ(injection->marker(), "//HOTSPOT_PRE_MAIN");
    }
    EXPECT_EQ(pasted, (std::vector<QString>{readTextFile("data/classicnoise3D.glsl"),
                                            readTextFile("data/wood.glsl"),
                                            readTextFile("data/easeFunctions.glsl"),
                                            readTextFile("data/phong_frag.glsl")}));
    loads(pictureOf(100));
    EXPECT_EQ(game.shaderPrograms.at("ghostShader.frag")->injections.size(), 4u);
}

TEST_F(BlockGhostTest, GoesFromThePictureAndComesBack)
{
    Block& block = loadsOne(signalsOnlyOpaque);
    // Away from the start cell and out of sight, with its trail.
    game.setMotion(ball().getId(), 2);
    game.setPose(ball().getId(), osg::Matrixd::translate(-60.0, 60.0, 0.0));
    const auto fadedPicture = [this] {
        frame();
        waits(700);
        frame();
        const QRect aroundTheGhost(375, 210, 50, 55);
        return frame().copy(aroundTheGhost);
    };
    const QImage solid = fadedPicture();
    block.onSignal(nullptr);
    const QImage gone = fadedPicture();
    block.onSignal(nullptr);
    const QImage back = fadedPicture();
    EXPECT_GT(differingPixels(solid, gone), 300);
    EXPECT_EQ(differingPixels(solid, back), 0);
}

}  // namespace
