#include "blocks/Ribbon.h"

#include "base/WorldNumbers.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hud/MenuHUD.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/GameTest.h"

#include <osg/Geode>
#include <osgUtil/UpdateVisitor>

#include <map>

namespace {

constexpr unsigned int vertexCount = 50;
constexpr float halfWidth = world::ballRadius;

/// A trail of its own behind a transform that the test moves, on a board that the test turns; it
/// reads the velocity of the game's ball.
class RibbonTest : public GameTest
{
protected:
    RibbonTest()
    {
        loads({"S"});
        ribbon = new Ribbon(osg::Vec3f(0.5f, 0.25f, 1.0f), target, ball().getId(), &game, parent);
    }

    const osg::Geometry& strip() const { return stripBelow(*parent); }

    static const osg::Geometry& stripBelow(const osg::Group& group)
    {
        const osg::Node* geode = group.getChild(group.getNumChildren() - 1);
        return *geode->asGeode()->getDrawable(0)->asGeometry();
    }

    osg::Vec3f vertex(unsigned int i) const
    {
        return (*static_cast<const osg::Vec3Array*>(strip().getVertexArray()))[i];
    }

    osg::Vec3f normal(unsigned int i) const
    {
        return (*static_cast<const osg::Vec3Array*>(strip().getNormalArray()))[i];
    }

    void moves(const osg::Vec3d& place)
    {
        target->setMatrix(osg::Matrixd::translate(place));
        osgUtil::UpdateVisitor visitor;
        target->accept(visitor);
    }

    osg::ref_ptr<osg::MatrixTransform> target = new osg::MatrixTransform;
    osg::ref_ptr<osg::MatrixTransform> parent = new osg::MatrixTransform;
    osg::ref_ptr<Ribbon> ribbon;
};

void expectNear(const osg::Vec3f& actual, const osg::Vec3f& expected)
{
    EXPECT_LT((actual - expected).length(), 1e-4f)
        << actual.x() << ' ' << actual.y() << ' ' << actual.z() << " instead of " << expected.x()
        << ' ' << expected.y() << ' ' << expected.z();
}

TEST_F(RibbonTest, IsAStripThatFadesAtBothEnds)
{
    ASSERT_EQ(strip().getNumPrimitiveSets(), 1u);
    const auto* quads = dynamic_cast<const osg::DrawArrays*>(strip().getPrimitiveSet(0));
    ASSERT_NE(quads, nullptr);
    EXPECT_EQ(quads->getMode(), GLenum(GL_QUAD_STRIP));
    EXPECT_EQ(quads->getFirst(), 0);
    EXPECT_EQ(quads->getCount(), GLsizei(vertexCount));
    EXPECT_EQ(strip().getDataVariance(), osg::Object::DYNAMIC);
    EXPECT_FALSE(strip().getUseDisplayList());
    EXPECT_TRUE(strip().getUseVertexBufferObjects());
    ASSERT_EQ(strip().getVertexArray()->getNumElements(), vertexCount);
    ASSERT_EQ(strip().getNormalArray()->getNumElements(), vertexCount);
    const auto& colors = static_cast<const osg::Vec4Array&>(*strip().getColorArray());
    ASSERT_EQ(colors.size(), vertexCount);
    EXPECT_EQ(strip().getColorBinding(), osg::Geometry::BIND_PER_VERTEX);
    EXPECT_EQ(strip().getNormalBinding(), osg::Geometry::BIND_PER_VERTEX);
    for (unsigned int i = 0; i < vertexCount; ++i) {
        EXPECT_EQ(vertex(i), osg::Vec3f());
        EXPECT_EQ(normal(i), osg::Vec3f(0.0f, 0.0f, 1.0f));
        EXPECT_EQ(osg::Vec3f(colors[i].r(), colors[i].g(), colors[i].b()),
                  osg::Vec3f(0.5f, 0.25f, 1.0f));
    }
    // Half a wave over the strip's places: nothing at its tail, next to nothing at its head.
    const std::map<int, float> opacities = {{0, 0.0f},       {2, 0.125333f},  {12, 0.684547f},
                                            {24, 0.998027f}, {26, 0.998027f}, {38, 0.684547f},
                                            {48, 0.125333f}};
    for (const auto& [i, opacity] : opacities)
        EXPECT_NEAR(colors[i].a(), opacity, 1e-5f) << i;
    for (int i = 0; i < int(vertexCount); i += 2) {
        EXPECT_EQ(colors[i].a(), colors[i + 1].a()) << "left and right edge, at " << i;
        if (i >= 2 && i <= 24)
            EXPECT_GT(colors[i].a(), colors[i - 2].a()) << i;
        if (i > 26)
            EXPECT_LT(colors[i].a(), colors[i - 2].a()) << i;
    }

    const osg::StateSet* state = parent->getChild(0)->getStateSet();
    EXPECT_TRUE(state->getMode(GL_BLEND) & osg::StateAttribute::ON);
    EXPECT_EQ(state->getRenderingHint(), int(osg::StateSet::TRANSPARENT_BIN));
    EXPECT_NE(state->getAttribute(osg::StateAttribute::PROGRAM), nullptr);
}

TEST_F(RibbonTest, GrowsOnePairAtItsHeadAndLosesOneAtItsTail)
{
    for (int step = 1; step <= 30; ++step) {
        moves(osg::Vec3d(step, 0.0, 2.0));
        for (unsigned int pair = 0; pair < vertexCount / 2; ++pair) {
            const int age = int(vertexCount) / 2 - 1 - int(pair);
            const int stepThen = step - age;
            const osg::Vec3f middle = (vertex(2 * pair) + vertex(2 * pair + 1)) * 0.5f;
            expectNear(middle, stepThen < 1 ? osg::Vec3f() : osg::Vec3f(float(stepThen), 0, 2));
        }
    }
}

TEST_F(RibbonTest, LiesAcrossTheBallAtRest)
{
    for (int step = 0; step < 25; ++step)
        moves(osg::Vec3d(3.0, 4.0, 1.0));
    for (unsigned int i = 0; i < vertexCount; i += 2) {
        expectNear(vertex(i), osg::Vec3f(3.0f, 3.7f, 1.0f));
        expectNear(vertex(i + 1), osg::Vec3f(3.0f, 4.3f, 1.0f));
    }
}

TEST_F(RibbonTest, TurnsItsWidthByTheVelocity)
{
    // Worked out by hand: from the ball to the right edge it goes 0.3 units along (-vy, 1 - vx).
    struct
    {
        osg::Vec3f velocity;
        osg::Vec3f side;
    } const table[] = {
        {{5, 0, 0}, {0.0f, -0.3f, 0.0f}},
        {{-5, 0, 0}, {0.0f, 0.3f, 0.0f}},
        {{0, 5, 0}, {-0.294174f, 0.058835f, 0.0f}},
        {{0, -5, 0}, {0.294174f, 0.058835f, 0.0f}},
        {{2, -3, 0}, {0.284605f, -0.094868f, 0.0f}},
        {{4, 4, 0}, {-0.24f, -0.18f, 0.0f}},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(testing::Message() << row.velocity.x() << ", " << row.velocity.y());
        putsBall(osg::Vec3d(0.0, 0.0, 500.0), row.velocity);
        ticks();
        moves(osg::Vec3d(1.0, 2.0, 3.0));
        expectNear(vertex(48), osg::Vec3f(1, 2, 3) - row.side);
        expectNear(vertex(49), osg::Vec3f(1, 2, 3) + row.side);
    }
}

TEST_F(RibbonTest, LiesAcrossTheWayOfAFastBallAlongTheEdgesOfTheBoard)
{
    for (const osg::Vec3f& velocity : {osg::Vec3f(300, 0, 0), osg::Vec3f(-300, 0, 0),
                                       osg::Vec3f(0, 300, 0), osg::Vec3f(0, -300, 0)}) {
        SCOPED_TRACE(testing::Message() << velocity.x() << ", " << velocity.y());
        putsBall(osg::Vec3d(0.0, 0.0, 500.0), velocity);
        ticks();
        moves(osg::Vec3d(1.0, 2.0, 3.0));
        const osg::Vec3f across = vertex(49) - vertex(48);
        EXPECT_NEAR(across.length(), 2.0f * halfWidth, 1e-4f);
        EXPECT_NEAR(across * velocity / velocity.length(), 0.0f, 0.01f);
        EXPECT_NEAR(across.z(), 0.0f, 1e-5f);
    }
}

TEST_F(RibbonTest, LeansItsNormalOutwards)
{
    moves(osg::Vec3d(3.0, 0.0, 3.0));
    osg::Vec3f expected(3.0f, 0.0f, 4.0f);
    expected.normalize();
    expectNear(normal(48), expected);
    expectNear(normal(49), expected);
    moves(osg::Vec3d(0.0, 0.0, -1.0));
    expectNear(normal(49), osg::Vec3f());
    expectNear(normal(47), expected);
}

TEST_F(RibbonTest, LiesInTheFrameOfTheBoard)
{
    const osg::Matrixd tilted = osg::Matrixd::rotate(0.5, osg::Vec3d(1.0, 0.0, 0.0)) *
                                osg::Matrixd::translate(0.0, 0.0, 1.0);
    parent->setMatrix(tilted);
    const osg::Vec3d place(2.0, 1.0, 0.8);
    moves(place * tilted);
    expectNear((vertex(48) + vertex(49)) * 0.5f, place);
    parent->setMatrix(osg::Matrixd::identity());
    moves(osg::Vec3d(9.0, 9.0, 9.0));
    expectNear((vertex(46) + vertex(47)) * 0.5f, place);
}

TEST_F(RibbonTest, TellsTheDrawingThatItHasChanged)
{
    const unsigned int vertices = strip().getVertexArray()->getModifiedCount();
    const unsigned int normals = strip().getNormalArray()->getModifiedCount();
    moves(osg::Vec3d(1.0, 0.0, 0.0));
    EXPECT_GT(strip().getVertexArray()->getModifiedCount(), vertices);
    EXPECT_GT(strip().getNormalArray()->getModifiedCount(), normals);
    EXPECT_NEAR(strip().getBoundingBox().xMax(), 1.0f, 0.31f);
}

TEST_F(RibbonTest, OnlyTraversesWithoutANode)
{
    moves(osg::Vec3d(1.0, 0.0, 0.0));
    const osg::Vec3f before = vertex(48);
    (*ribbon)(nullptr, nullptr);
    EXPECT_EQ(vertex(48), before);
}

TEST_F(RibbonTest, GoesOnBehindTheBallInTheGame)
{
    loads(LevelPicture(9, 9, cells::floor).set(4, 4, cells::start));
    const osg::Geometry& trail = stripBelow(*board().getTransform());
    const auto& vertices = static_cast<const osg::Vec3Array&>(*trail.getVertexArray());
    const auto& colors = static_cast<const osg::Vec4Array&>(*trail.getColorArray());
    EXPECT_EQ(osg::Vec3f(colors[0].r(), colors[0].g(), colors[0].b()),
              osg::Vec3f(0.5f, 0.5f, 1.0f));
    const auto spread = [&] {
        osg::BoundingBox box;
        for (const osg::Vec3f& vertex : vertices)
            box.expandBy(vertex);
        return (box._max - box._min).length();
    };
    ticks(40);
    EXPECT_LT(spread(), 0.7f) << "at rest it is a bar across the ball";
    putsBall(osg::Vec3d(3.0, 3.0, 0.8));
    ticks(2);
    EXPECT_GT(spread(), 4.0f) << "a jump is spanned";
    EXPECT_LT((vertices[48] - osg::Vec3f(3.0f, 3.0f, 0.8f)).length(), 0.4f);
    GameLoop::pause();
    ticks(24);
    GameLoop::resume();
    EXPECT_LT(spread(), 0.7f) << "and closes within 25 frames, paused or not";
}

}  // namespace
