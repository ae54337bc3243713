#include "blocks/BlockItem.h"

#include "base/WorldNumbers.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Level.h"
#include "shaders/ShaderProgram.h"
#include "support/BlockTest.h"
#include "support/DifferingPixels.h"
#include "support/MissingFile.h"
#include "support/OutputCapture.h"

#include <QRegularExpression>
#include <osg/Math>
#include <osg/Quat>

#include <algorithm>

namespace {

constexpr int itemHue = 45;
constexpr int flatHalf = 73;  // 0.5 high

constexpr int coinsOfFour = 98;
constexpr int coinsLess = 80;
constexpr int heartsOfTwo = 73;
constexpr int heartsLess = 60;
constexpr int weightOfOneSecond = 50;
constexpr int plainCoin = 48;

class BlockItemTest : public BlockTest
{
protected:
    void loadsItem(int saturation, int value = flatHalf)
    {
        loads(LevelPicture(9, 1)
                  .set(0, 0, cells::start)
                  .set(4, 0, {itemHue, saturation, value})
                  .set(8, 0, cells::floor));
        ticks();
    }

    BlockItem& item() const { return blockAs<BlockItem>(4, 0); }

    /// The parts of the display: all geodes but the block's body.
    std::vector<const osg::Geode*> display() const
    {
        std::vector<const osg::Geode*> geodes = geodesOf(item());
        geodes.erase(geodes.begin());
        return geodes;
    }

    const osg::MatrixTransform& displayTransform() const
    {
        return dynamic_cast<const osg::MatrixTransform&>(*display().at(0)->getParent(0));
    }

    /// Speed that the ball gains downward in a tick.
    double fall()
    {
        const double before = ballVelocity().z();
        ticks();
        return before - ballVelocity().z();
    }
};

const osg::Uniform* displacement(const osg::Geode* geode)
{
    const osg::StateSet* stateSet = geode->getStateSet();
    return stateSet ? stateSet->getUniform("a_ItemDisplace") : nullptr;
}

}  // namespace

TEST_F(BlockItemTest, CoinsAreGivenAndTaken)
{
    struct
    {
        int saturation;
        int coins;
    } const table[] = {{90, 110}, {93, 120}, {96, 130}, {98, 140}, {100, 140}, {80, 90},
                       {83, 80},  {86, 70},  {88, 60},  {48, 110}, {20, 110}};
    for (const auto& row : table) {
        SCOPED_TRACE(row.saturation);
        loadsItem(row.saturation);
        level().changeCoins(100);
        touches(item());
        EXPECT_EQ(level().coinCount(), row.coins);
        EXPECT_EQ(level().livesLeft(), 5);
    }
}

TEST_F(BlockItemTest, HeartsAreGivenAndTaken)
{
    struct
    {
        int saturation;
        int before;
        int after;
    } const table[] = {{70, 1, 2}, {73, 1, 3}, {76, 1, 4}, {78, 1, 5},
                       {60, 5, 4}, {63, 5, 3}, {66, 5, 2}, {68, 5, 1}};
    for (const auto& row : table) {
        SCOPED_TRACE(row.saturation);
        loadsItem(row.saturation);
        level().changeLives(row.before - 5, false);
        touches(item());
        EXPECT_EQ(level().livesLeft(), row.after);
        EXPECT_EQ(level().coinCount(), 0);
    }
}

TEST_F(BlockItemTest, ItemsThatChangeNothingAreUsedUpAllTheSame)
{
    loadsItem(coinsLess);
    touches(item());
    EXPECT_EQ(level().coinCount(), 0);
    level().changeCoins(50);
    touches(item());
    EXPECT_EQ(level().coinCount(), 50);

    loadsItem(heartsOfTwo);
    touches(item());
    EXPECT_EQ(level().livesLeft(), 5);
    level().changeLives(-3, false);
    touches(item());
    EXPECT_EQ(level().livesLeft(), 2);
}

TEST_F(BlockItemTest, IsTakenByABallThatFallsOnIt)
{
    loadsItem(coinsOfFour);
    putsBall(positionOf(item()) + osg::Vec3d(0.0, 0.0, 0.8));
    EXPECT_TRUE(ticksUntil([this] { return level().coinCount() == 40; }, 60));
    ticks(60);
    EXPECT_EQ(level().coinCount(), 40);
}

TEST_F(BlockItemTest, ItemThatIsBackUnderARestingBallStaysOnShow)
{
    loads(LevelPicture(9, 9, cells::floor)
              .set(0, 0, cells::start)
              .set(4, 4, {itemHue, plainCoin, flatHalf}));
    ticks();
    auto& coin = blockAs<BlockItem>(4, 4);
    const osg::Vec3d place = positionOf(coin);
    putsBall(place + osg::Vec3d(0.0, 0.0, 0.6));
    ticks(60);
    ASSERT_EQ(level().coinCount(), 10);
    coin.reset();
    ticks(60);
    EXPECT_NEAR(ballPosition().z(), place.z() + 0.55, 0.02);
    EXPECT_EQ(level().coinCount(), 10);

    putsBall(place + osg::Vec3d(0.0, 0.0, 0.9));
    EXPECT_TRUE(ticksUntil([this] { return level().coinCount() == 20; }, 60));
}

TEST_F(BlockItemTest, NegativeHeartThatTakesTheLastLifeIsBackAtOnceOnTheFreshLevel)
{
    loadsItem(heartsLess);
    level().changeLives(-4, false);
    level().changeCoins(70);
    touches(item());
    EXPECT_EQ(game.state, GameState::LevelFailed);
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_EQ(level().coinCount(), 0);
    touches(item());
    EXPECT_EQ(level().livesLeft(), 4);
}

TEST_F(BlockItemTest, WeightFreesTheBallOfGravity)
{
    loadsItem(weightOfOneSecond);
    putsBall(osg::Vec3d(0.0, 3.0, 5.0));
    ticks();
    EXPECT_NEAR(fall(), world::gravity * world::secondsPerTick, 1e-3);
    touches(item());
    EXPECT_NEAR(fall(), 0.0, 1e-4);
    EXPECT_EQ(level().coinCount(), 0);
    EXPECT_EQ(level().livesLeft(), 5);

    EXPECT_TRUE(playsUntil([this] { return fall() > 0.1; }, 30000));
}

TEST_F(BlockItemTest, RestartDuringAWeightGivesGravityBackAndTheWeightToo)
{
    loadsItem(weightOfOneSecond);
    touches(item());
    level().restart(true);
    putsBall(osg::Vec3d(0.0, 3.0, 5.0));
    ticks();
    EXPECT_NEAR(fall(), world::gravity * world::secondsPerTick, 1e-3);

    touches(item());
    EXPECT_NEAR(fall(), 0.0, 1e-4);
}

TEST_F(BlockItemTest, FirstOfTwoWeightsEndsBoth)
{
    loads(LevelPicture(9, 1)
              .set(0, 0, cells::start)
              .set(4, 0, {itemHue, 50, flatHalf})
              .set(8, 0, {itemHue, 58, flatHalf}));
    ticks();
    putsBall(osg::Vec3d(0.0, 3.0, 8.0));
    touches(blockAs<BlockItem>(4, 0));
    touches(blockAs<BlockItem>(8, 0));
    ticks();
    EXPECT_NEAR(fall(), 0.0, 1e-4);
    EXPECT_TRUE(playsUntil([this] { return fall() > 0.1; }, 30000))
        << "the second runs ten seconds";
}

TEST_F(BlockItemTest, ShowsUpToThreePiecesAndTheSign)
{
    struct
    {
        int saturation;
        unsigned int pieces;
        unsigned int bars;
    } const table[] = {{90, 1, 2}, {93, 2, 2}, {96, 3, 2}, {98, 3, 2}, {80, 1, 1}, {83, 2, 1},
                       {86, 3, 1}, {88, 3, 1}, {70, 1, 2}, {68, 3, 1}, {48, 1, 2}};
    const osg::Vec3f places[] = {osg::Vec3f(1.0f, 0.0f, 0.5f), osg::Vec3f(0.7f, 0.6f, -0.4f),
                                 osg::Vec3f(1.4f, -0.6f, -0.2f)};
    for (const auto& row : table) {
        SCOPED_TRACE(row.saturation);
        loadsItem(row.saturation);
        const auto parts = display();
        ASSERT_EQ(parts.size(), row.pieces + 1);
        for (unsigned int i = 0; i < row.pieces; ++i) {
            EXPECT_EQ(parts[i]->getDrawable(0), parts[0]->getDrawable(0)) << "copies share it";
            osg::Vec3f place;
            ASSERT_TRUE(displacement(parts[i]));
            displacement(parts[i])->get(place);
            EXPECT_EQ(place, places[i]);
        }
        const osg::Geode* sign = parts[row.pieces];
        EXPECT_EQ(sign->getNumDrawables(), row.bars);
        osg::Vec3f place;
        ASSERT_TRUE(displacement(sign));
        displacement(sign)->get(place);
        EXPECT_EQ(place, osg::Vec3f(-1.0f, 0.0f, 0.0f));
        // Upright, so that it is read from the front: across, and for a plus from top to bottom.
        const osg::Vec3f bars[] = {osg::Vec3f(1.0f, 0.2f, 0.3f), osg::Vec3f(0.3f, 0.2f, 1.0f)};
        for (unsigned int i = 0; i < row.bars; ++i) {
            const osg::BoundingBox bar = sign->getDrawable(i)->computeBoundingBox();
            EXPECT_NEAR((bar._max - bar._min - bars[i]).length(), 0.0, 1e-5) << "bar " << i;
        }
    }
}

TEST_F(BlockItemTest, WeightIsOneModelWithoutSignAndPlace)
{
    loadsItem(weightOfOneSecond);
    ASSERT_EQ(display().size(), 1u);
    EXPECT_FALSE(displacement(display()[0]));
}

TEST_F(BlockItemTest, FloatsOverTheMiddleOfItsBlockInTheColourOfItsKind)
{
    constexpr int rampOfOne = 64;
    struct
    {
        int saturation;
        int value;
        double height;
        osg::Vec4f color;
    } const table[] = {{plainCoin, flatHalf, 0.55, osg::Vec4f(1.0f, 0.85f, 0.0f, 1.0f)},
                       {heartsOfTwo, rampOfOne, 0.3, osg::Vec4f(0.9f, 0.0f, 0.0f, 1.0f)},
                       {weightOfOneSecond, 100, 1.3, osg::Vec4f(0.7f, 0.7f, 0.7f, 1.0f)}};
    for (const auto& row : table) {
        SCOPED_TRACE(row.saturation);
        loadsItem(row.saturation, row.value);
        const osg::Matrixd& matrix = displayTransform().getMatrix();
        EXPECT_NEAR((matrix.getTrans() - osg::Vec3d(0.0, 0.0, row.height)).length(), 0.0, 1e-6);
        EXPECT_NEAR((matrix.getScale() - osg::Vec3d(0.2, 0.2, 0.2)).length(), 0.0, 1e-6);
        osg::Vec4f color;
        displayTransform().getStateSet()->getUniform("a_Color")->get(color);
        EXPECT_EQ(color, row.color);
    }
}

TEST_F(BlockItemTest, IsNotDrawnWhileItIsTaken)
{
    for (const int saturation : {coinsOfFour, heartsOfTwo, weightOfOneSecond}) {
        SCOPED_TRACE(saturation);
        loadsItem(saturation);
        looksAt(positionOf(item()), 6.0f);
        hovers(osg::Vec3d(-7.0, 0.0, 1.0));
        const QPoint place = pixelOf(positionOf(item()) + osg::Vec3d(0.0, 0.0, 0.55));
        const QImage shown = cutout(frame(false), place, 60);
        touches(item());
        const QImage taken = cutout(frame(false), place, 60);
        EXPECT_GT(differingPixels(shown, taken), 100);
        EXPECT_EQ(differingPixels(taken, cutout(frame(false), place, 60)), 0) << "nothing moves";

        level().restart(true);
        const QImage back = cutout(frame(false), place, 60);
        EXPECT_GT(differingPixels(taken, back), 100);
    }
}

TEST_F(BlockItemTest, HasBoundsAroundItsCopiesWhereverItsShaderDrawsThem)
{
    // What is outside its bounds is culled with them, at the edges of the picture.
    const QString text = readTextFile("data/Rollix/itemShader.vert");
    const auto numberOf = [&text](const char* name) {
        const QRegularExpression line(QString("const float %1 = ([0-9.]+);").arg(name));
        const QRegularExpressionMatch match = line.match(text);
        EXPECT_TRUE(match.hasMatch()) << name;
        return match.captured(1).toFloat();
    };
    const float scale = numberOf("itemScale");
    const float lift = numberOf("itemLift");
    const float bob = numberOf("floatHeight");
    for (const int saturation : {coinsOfFour, heartsOfTwo, weightOfOneSecond}) {
        SCOPED_TRACE(saturation);
        loadsItem(saturation);
        for (const osg::Geode* geode : display()) {
            osg::Vec3f place;
            if (const osg::Uniform* own = displacement(geode))
                own->get(place);
            // The sign, the one part to the left, is drawn in a way of its own.
            if (place.x() < 0.0f)
                continue;
            const osg::Drawable* part = geode->getDrawable(0);
            const osg::BoundingBox model = part->computeBoundingBox();
            for (int degrees = 0; degrees < 360; degrees += 15) {
                const osg::Quat turn(osg::DegreesToRadians(double(degrees)),
                                     osg::Vec3f(0.0f, 0.0f, 1.0f));
                for (unsigned int i = 0; i < 8; ++i) {
                    const osg::Vec3f drawn = (turn * osg::Vec3f(model.corner(i)) + place) * scale;
                    for (const float offset : {lift - bob, lift + bob}) {
                        const osg::Vec3f floated = drawn + osg::Vec3f(0.0f, 0.0f, offset);
                        EXPECT_TRUE(part->getBoundingBox().contains(floated, 1e-4f)) << degrees;
                    }
                }
            }
        }
    }
}

TEST_F(BlockItemTest, ThrowsItsShadowFromWhereItIsDrawn)
{
    for (const int value : {flatHalf, 100}) {
        SCOPED_TRACE(value);
        loadsItem(plainCoin, value);
        osg::BoundingBox drawn;
        for (const osg::Geode* geode : display())
            drawn.expandBy(geode->getDrawable(0)->getBoundingBox());
        const osg::Matrixd toBoard =
            displayTransform().getMatrix() *
            osg::Matrixd::translate(item().x, item().y, item().height * 0.5);
        ASSERT_EQ(item().hovering().size(), 1u);
        EXPECT_TRUE(drawn.contains(item().hovering()[0].center * osg::Matrixd::inverse(toBoard)));
    }
}

TEST_F(BlockItemTest, PutsItsModelInTheMiddleUnlessACopyHasAPlaceOfItsOwn)
{
    // All items draw with one program: what one does not set, it sees as another has set it.
    for (const int saturation : {50, coinsOfFour}) {
        SCOPED_TRACE(saturation);
        loadsItem(saturation);
        const osg::Uniform* around = displayTransform().getStateSet()->getUniform("a_ItemDisplace");
        osg::Vec3f place(1.0f, 1.0f, 1.0f);
        ASSERT_NE(around, nullptr);
        ASSERT_TRUE(around->get(place));
        EXPECT_EQ(place, osg::Vec3f());
    }
}

TEST_F(BlockItemTest, SharesModelAndProgramWithTheOthersOfItsKind)
{
    loads(LevelPicture({"S......"}).set(4, 0, {45, 90, 73}).set(6, 0, {45, 90, 73}));
    const std::vector<const osg::Geode*> first = geodesOf(blockAs<BlockItem>(4, 0));
    const std::vector<const osg::Geode*> second = geodesOf(blockAs<BlockItem>(6, 0));
    ASSERT_GE(first.size(), 2u);
    ASSERT_EQ(first.size(), second.size());
    EXPECT_EQ(first[1]->getDrawable(0), second[1]->getDrawable(0));
    const auto programOf = [](const osg::Geode* geode) {
        return geode->getParent(0)->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM);
    };
    EXPECT_NE(programOf(first[1]), nullptr);
    EXPECT_EQ(programOf(first[1]), programOf(second[1]));
}

TEST_F(BlockItemTest, WithoutItsModelFileItSaysSoAndWorksWithoutAPicture)
{
    const MissingFile missing("data/Rollix/coin.osgt");
    const OutputCapture output;
    loadsItem(coinsOfFour);
    const auto lines = output.lines();
    EXPECT_EQ(
        std::count(lines.begin(), lines.end(), "I cannot read a model from data/Rollix/coin.osgt"),
        1);
    EXPECT_EQ(display().size(), 1u) << "the sign";
    touches(item());
    EXPECT_EQ(level().coinCount(), 40);
}
