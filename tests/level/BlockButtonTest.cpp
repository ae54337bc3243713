#include "level/BlockButton.h"

#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "shaders/ShaderProgram.h"
#include "support/DifferingPixels.h"
#include "support/GameTest.h"
#include "support/OutputCapture.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <osg/FrameStamp>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osg/Uniform>

#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

constexpr int hue = 270;
constexpr int cube = 86;
constexpr float animationSeconds = 0.5f;
constexpr float sunkDepth = -0.14f;

// One saturation of each mode.
constexpr int oneShot = 100;
constexpr int timed = 60;  // a second
constexpr int toggle = 50;

const osg::Vec4f red(1.0f, 0.0f, 0.0f, 1.0f);
const osg::Vec4f blue(0.0f, 0.0f, 1.0f, 1.0f);
const osg::Vec4f yellow(1.0f, 1.0f, 0.0f, 1.0f);

osg::Vec4f greyOf(int brightness)
{
    const float channel = float(brightness / 255.0);
    return {channel, channel, channel, channel};
}

template <typename Value>
struct Animation
{
    Value from;
    Value to;
    float start = -1.0f;
    float end = -1.0f;
};

class BlockButtonTest : public GameTest
{
protected:
    /// A button, a ghost of its group that only follows signals, and one of another group.
    BlockButton& loadsOne(int saturation, int value = cube)
    {
        loads(LevelPicture(7, 7, cells::floor)
                  .set(0, 0, cells::start)
                  .set(3, 3, {hue, saturation, value, 254})
                  .set(1, 5, {225, 100, cube, 254})
                  .set(5, 5, {225, 100, cube, 253}));
        ticks(2);
        return button();
    }

    BlockButton& button() { return dynamic_cast<BlockButton&>(*blockAt(3, 3)); }

    /// Every signal turns the ghost over.
    bool isTurned(int column)
    {
        bool opaque = false;
        blockAt(column, 5)->getTransform()->getStateSet()->getUniform("a_Opaque")->get(opaque);
        return !opaque;
    }
    bool isLinkedTurned() { return isTurned(1); }
    bool isStrangerTurned() { return isTurned(5); }

    osg::MatrixTransform* seatOf(Block& block)
    {
        osg::Group* group = block.getTransform();
        for (unsigned int i = 0; i < group->getNumChildren(); ++i)
            if (auto* seat = dynamic_cast<osg::MatrixTransform*>(group->getChild(i)))
                return seat;
        return nullptr;
    }

    osg::Node* capOf(Block& block) { return seatOf(block)->getChild(0); }

    template <typename Value>
    Animation<Value> animationOf(Block& block, const std::string& name)
    {
        const osg::StateSet* stateSet = capOf(block)->getStateSet();
        Animation<Value> animation;
        EXPECT_TRUE(stateSet->getUniform(name)->get(animation.from));
        EXPECT_TRUE(stateSet->getUniform(name + "AnimationTarget")->get(animation.to));
        EXPECT_TRUE(stateSet->getUniform(name + "AnimationStart")->get(animation.start));
        EXPECT_TRUE(stateSet->getUniform(name + "AnimationEnd")->get(animation.end));
        return animation;
    }

    Animation<osg::Vec3f> pose() { return animationOf<osg::Vec3f>(button(), "a_Pose"); }
    Animation<osg::Vec4f> color() { return animationOf<osg::Vec4f>(button(), "a_Color"); }
    bool isDown() { return pose().to.z() < 0.0f; }

    static float now() { return float(GameLoop::frameStamp()->getSimulationTime()); }

    /// The real touch: the ball is let fall from a hand's breadth.
    void rollsBallOnto(Block& block)
    {
        putsBall(osg::Vec3d(block.x, block.y, block.height + 0.3 + 0.05));
        ticks(10);
        putsBall(osg::Vec3d(block.x, block.y, block.height + 5.0));
        ticks();
    }

    /// The milliseconds of the single shots that the action sets off. Those of buttons that have
    /// gone run out unheard in the meantime.
    template <typename Action>
    static std::vector<int> shotsOf(const Action& action)
    {
        const std::map<int, int> before = pendingShots();
        action();
        std::vector<int> intervals;
        for (const auto& [timer, interval] : pendingShots())
            if (before.count(timer) == 0)
                intervals.push_back(interval);
        return intervals;
    }

private:
    /// Intervals by the timer's number.
    static std::map<int, int> pendingShots()
    {
        QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
        std::map<int, int> intervals;
        for (QObject* object : dispatcher->children())
            for (const auto& timer : dispatcher->registeredTimers(object))
                intervals[timer.timerId] = timer.interval;
        return intervals;
    }
};

TEST_F(BlockButtonTest, ShowsItsColourAtRest)
{
    for (const auto& [saturation, expected] : {std::pair(30, red),
                                               {48, red},
                                               {49, yellow},
                                               {58, yellow},
                                               {59, blue},
                                               {90, blue},
                                               {91, red},
                                               {100, red}}) {
        SCOPED_TRACE(saturation);
        loadsOne(saturation);
        EXPECT_EQ(color().from, expected);
        EXPECT_EQ(color().to, expected);
        EXPECT_EQ(color().start, 0.0f);
        EXPECT_EQ(color().end, 0.0f);
        EXPECT_EQ(pose().from, osg::Vec3f());
        EXPECT_EQ(pose().to, osg::Vec3f());
        EXPECT_EQ(pose().start, 0.0f);
        EXPECT_EQ(pose().end, 0.0f);
    }
}

TEST_F(BlockButtonTest, SignalsItsGroupWhenTheBallTouchesIt)
{
    loadsOne(oneShot);
    ticks(5);
    EXPECT_FALSE(isLinkedTurned());
    rollsBallOnto(button());
    EXPECT_TRUE(isLinkedTurned());
    EXPECT_FALSE(isStrangerTurned());
}

TEST_F(BlockButtonTest, SinksAndGreysWithinHalfASecondOfTheTouch)
{
    const struct
    {
        int saturation;
        osg::Vec4f color;
        int grey;  // by eighths of a channel: eleven for red, sixteen for green, five for blue
    } kinds[] = {{oneShot, red, 11 * 255 / 32},
                 {timed, blue, 5 * 255 / 32},
                 {toggle, yellow, 27 * 255 / 32}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.saturation);
        loadsOne(kind.saturation);
        waits(20);
        ticks();
        const float time = now();
        button().onBallContact(&ball());
        EXPECT_EQ(pose().from, osg::Vec3f());
        EXPECT_EQ(pose().to, osg::Vec3f(0.0f, 0.0f, sunkDepth));
        EXPECT_EQ(pose().start, time);
        EXPECT_EQ(pose().end, time + animationSeconds);
        EXPECT_EQ(color().from, kind.color);
        EXPECT_EQ(color().to, greyOf(kind.grey));
        EXPECT_EQ(color().start, time);
        EXPECT_EQ(color().end, time + animationSeconds);
    }
    EXPECT_NEAR(greyOf(11 * 255 / 32).r(), 0.34f, 0.005f);
}

TEST_F(BlockButtonTest, OfOneShotFiresOnceARun)
{
    loadsOne(oneShot);
    EXPECT_TRUE(shotsOf([&] { button().onBallContact(&ball()); }).empty());
    const Animation<osg::Vec3f> first = pose();
    waits(20);
    ticks();
    button().onBallContact(&ball());
    EXPECT_TRUE(isLinkedTurned()) << "not during the animation";
    waits(1200);
    ticks();
    button().onBallContact(&ball());
    EXPECT_TRUE(isLinkedTurned()) << "and not after it";
    EXPECT_TRUE(isDown());
    EXPECT_EQ(pose().start, first.start);
    button().reset();
    button().onBallContact(&ball());
    EXPECT_FALSE(isLinkedTurned()) << "but again in the next run";
}

TEST_F(BlockButtonTest, OfTimeFiresAgainWhenItsTimeIsUp)
{
    loadsOne(timed);
    QElapsedTimer clock;
    clock.start();
    button().onBallContact(&ball());
    EXPECT_TRUE(isLinkedTurned());
    EXPECT_TRUE(isDown());
    button().onBallContact(&ball());
    EXPECT_TRUE(isLinkedTurned()) << "it is busy";

    ASSERT_TRUE(playsUntil([&] { return !isLinkedTurned(); }, 10000));
    EXPECT_GE(clock.elapsed(), 990);
    EXPECT_FALSE(isDown());
    EXPECT_EQ(pose().from, osg::Vec3f(0.0f, 0.0f, sunkDepth));
    EXPECT_EQ(pose().to, osg::Vec3f());
    EXPECT_EQ(color().from, greyOf(5 * 255 / 32));
    EXPECT_EQ(color().to, blue);
    EXPECT_EQ(color().start, pose().start);
    EXPECT_EQ(color().end, color().start + animationSeconds);
    button().onBallContact(&ball());
    EXPECT_TRUE(isLinkedTurned()) << "it is armed";
}

TEST_F(BlockButtonTest, WaitsAsManySecondsAsItsSaturationSays)
{
    for (const auto& [saturation, seconds] : {std::pair(59, 1),
                                              {60, 1},
                                              {61, 1},
                                              {62, 2},
                                              {64, 2},
                                              {65, 3},
                                              {75, 6},
                                              {87, 10},
                                              {88, 10},
                                              {89, 11},
                                              {90, 11},
                                              {49, 1},
                                              {58, 1}}) {
        SCOPED_TRACE(saturation);
        loadsOne(saturation);
        EXPECT_EQ(shotsOf([&] { button().onBallContact(&ball()); }),
                  std::vector<int>{seconds * 1000});
    }
}

TEST_F(BlockButtonTest, OfToggleKeepsItsCapUntilTheNextTouchAndSignalsOnceATouch)
{
    loadsOne(toggle);
    for (const bool down : {true, false, true}) {
        SCOPED_TRACE(down);
        button().onBallContact(&ball());
        EXPECT_EQ(isDown(), down);
        EXPECT_EQ(isLinkedTurned(), down);
        button().onBallContact(&ball());
        EXPECT_EQ(isDown(), down) << "it cools down";
        EXPECT_EQ(isLinkedTurned(), down);
        ASSERT_TRUE(playsUntil([&] { return color().to == yellow; }, 10000));
        EXPECT_EQ(isDown(), down);
        EXPECT_EQ(isLinkedTurned(), down);
    }
}

TEST_F(BlockButtonTest, FiresOnceForABallThatBounces)
{
    loadsOne(toggle);
    putsBall(osg::Vec3d(button().x, button().y, button().height + 2.0));
    ticks(40);
    EXPECT_TRUE(isLinkedTurned());
    EXPECT_TRUE(isDown());
}

TEST_F(BlockButtonTest, IsArmedAndRaisedAtAResetAndSaysSo)
{
    loadsOne(oneShot);
    button().onBallContact(&ball());
    const Animation<osg::Vec3f> before = pose();
    OutputCapture output;
    button().reset();
    EXPECT_EQ(output.text(), "reset\n");
    EXPECT_EQ(pose().from, osg::Vec3f());
    EXPECT_EQ(pose().to, osg::Vec3f());
    EXPECT_EQ(color().from, red);
    EXPECT_EQ(color().to, red);
    EXPECT_EQ(pose().start, before.start);
    EXPECT_EQ(pose().end, before.end);
    EXPECT_EQ(color().start, before.start);
    EXPECT_EQ(color().end, before.end);
}

TEST_F(BlockButtonTest, IsResetWhenTheLevelStartsOverOnly)
{
    loadsOne(oneShot);
    button().onBallContact(&ball());
    level().restart(false);
    EXPECT_TRUE(isDown());
    level().restart(true);
    EXPECT_FALSE(isDown());
}

TEST_F(BlockButtonTest, EndsItsCoolDownAlsoAfterAReset)
{
    loadsOne(timed);
    button().onBallContact(&ball());
    ASSERT_TRUE(isLinkedTurned());
    button().reset();
    EXPECT_FALSE(isDown());
    ASSERT_TRUE(playsUntil([&] { return !isLinkedTurned(); }, 10000));
    EXPECT_TRUE(isDown());
    EXPECT_EQ(color().to, blue);
}

TEST_F(BlockButtonTest, MayGoWhileItsTimeRuns)
{
    loadsOne(timed);
    ASSERT_EQ(shotsOf([&] { button().onBallContact(&ball()); }).size(), 1u);
    loadsOne(timed);
    plays(1200);
    EXPECT_FALSE(isLinkedTurned());
}

TEST_F(BlockButtonTest, IsADecorationWithoutAGroup)
{
    loads(LevelPicture(3, 1)
              .set(0, 0, cells::start)
              .set(2, 0, {hue, oneShot, cube, 7})
              .set(1, 0, {90, 100, cube, 7}));
    ticks(2);
    OutputCapture output;
    blockAt(2, 0)->onBallContact(&ball());
    ticks(2);
    EXPECT_EQ(output.text(), "");
}

TEST_F(BlockButtonTest, SharesItsReceiverWithOtherButtons)
{
    loads(LevelPicture(7, 7, cells::floor)
              .set(0, 0, cells::start)
              .set(3, 3, {hue, oneShot, cube, 254})
              .set(5, 3, {hue, oneShot, cube, 254})
              .set(1, 5, {225, 100, cube, 254}));
    ticks(2);
    blockAt(3, 3)->onBallContact(&ball());
    EXPECT_TRUE(isLinkedTurned());
    blockAt(5, 3)->onBallContact(&ball());
    EXPECT_FALSE(isLinkedTurned());
}

TEST_F(BlockButtonTest, HasItsCapOnTopOfAFlatBlock)
{
    for (const auto& [value, height] : {std::pair(73, 0.5), {86, 1.0}, {95, 1.5}, {100, 2.0}}) {
        SCOPED_TRACE(value);
        loadsOne(oneShot, value);
        const osg::Matrixd seat = seatOf(button())->getMatrix();
        EXPECT_LT((seat.getTrans() - osg::Vec3d(0.0, 0.0, height * 0.5)).length(), 1e-6);
        EXPECT_LT((osg::Matrixd::transform3x3(osg::Z_AXIS, seat) - osg::Z_AXIS).length(), 1e-6);
    }
}

TEST_F(BlockButtonTest, LeansItsCapOnTheMiddleOfTheSlope)
{
    const osg::Vec3d towardsHighEdge[] = {
        {0.0, -1.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}};
    for (int direction = 0; direction < 4; ++direction) {
        for (const auto& [firstValue, low, high] :
             {std::tuple(57, 0.0, 0.5), {69, 0.0, 2.0}, {74, 0.5, 1.0}, {96, 1.5, 2.0}}) {
            SCOPED_TRACE(firstValue + direction);
            loadsOne(oneShot, firstValue + direction);
            const osg::Matrixd seat = seatOf(button())->getMatrix();
            EXPECT_LT(
                (seat.getTrans() - osg::Vec3d(0.0, 0.0, (low + high) / 2 - high / 2)).length(),
                1e-6);
            osg::Vec3d normal = osg::Z_AXIS - towardsHighEdge[direction] * (high - low);
            normal.normalize();
            EXPECT_LT((osg::Matrixd::transform3x3(osg::Z_AXIS, seat) - normal).length(), 1e-6);
        }
    }
}

TEST_F(BlockButtonTest, IsACylinderDrawnByTheAnimationShader)
{
    loadsOne(oneShot);
    const osg::Geode* cap = capOf(button())->asGeode();
    ASSERT_TRUE(cap);
    const auto* drawable = dynamic_cast<const osg::ShapeDrawable*>(cap->getDrawable(0));
    ASSERT_TRUE(drawable);
    const auto* cylinder = dynamic_cast<const osg::Cylinder*>(drawable->getShape());
    ASSERT_TRUE(cylinder);
    EXPECT_EQ(cylinder->getRadius(), 0.5f);
    EXPECT_EQ(cylinder->getHeight(), 0.3f);
    EXPECT_EQ(cylinder->getCenter(), osg::Vec3f());

    const auto* program = dynamic_cast<const osg::Program*>(
        cap->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM));
    ASSERT_TRUE(program);
    const struct
    {
        const char* name;
        const char* light;
    } stages[] = {{"animationShader.vert", "data/phong_vert.glsl"},
                  {"animationShader.frag", "data/phong_frag.glsl"}};
    ASSERT_EQ(program->getNumShaders(), 2u);
    for (unsigned int i = 0; i < 2; ++i) {
        const ShaderProgram::Shader& stage = *game.shaderPrograms.at(stages[i].name);
        EXPECT_EQ(program->getShader(i), stage.shader.get());
        std::vector<QString> pasted;
        for (const auto& injection : stage.injections)
            pasted.push_back(injection->code());
        EXPECT_EQ(pasted, (std::vector<QString>{readTextFile("data/easeFunctions.glsl"),
                                                readTextFile(stages[i].light)}));
    }
}

TEST_F(BlockButtonTest, ShowsARedCapThatSinksAndTurnsGrey)
{
    const auto redPixels = [](const QImage& image) {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                count += qRed(pixel) > 90 && qRed(pixel) > 3 * qGreen(pixel) &&
                         qRed(pixel) > 3 * qBlue(pixel);
            }
        }
        return count;
    };
    BlockButton& block = loadsOne(oneShot);
    // Away from the start cell and out of sight, with its trail.
    game.setMotion(ball().getId(), 2);
    game.setPose(ball().getId(), osg::Matrixd::translate(-60.0, 60.0, 0.0));
    const auto settledPicture = [this] {
        frame();
        waits(700);
        frame();
        const QRect aroundTheButton(375, 210, 50, 55);
        return frame().copy(aroundTheButton);
    };
    const QImage armed = settledPicture();
    block.onBallContact(&ball());
    const QImage used = settledPicture();
    EXPECT_GT(redPixels(armed), 100);
    EXPECT_LT(redPixels(used), 10);
    EXPECT_GT(differingPixels(armed, used), 100);
}

}  // namespace
