#include "level/BlockShape.h"

#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Block.h"
#include "level/Board.h"
#include "level/Level.h"
#include "level/LevelPixel.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/OutputCapture.h"
#include "support/ProbeBlock.h"
#include "support/SceneSearch.h"

#include <osg/Geometry>
#include <osg/ShapeDrawable>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

using namespace physx;

namespace {

/// Of the format's four directions, where the high edge lies.
const osg::Vec2f uphill[] = {{0.0f, -1.0f}, {1.0f, 0.0f}, {0.0f, 1.0f}, {-1.0f, 0.0f}};

class BlockShapeTest : public GameTest
{
protected:
    std::vector<PxShape*> shapesOf(unsigned int id)
    {
        const PxRigidActor* actor = GameInside::actorsOf(game).at(id);
        std::vector<PxShape*> shapes(actor->getNbShapes());
        actor->getShapes(shapes.data(), PxU32(shapes.size()));
        return shapes;
    }

    /// Whether the board shows an upright face, anything but a line, on the plane x = 0 that
    /// belongs to the block at `x`, and thus looks away from it.
    bool showsFaceAt(float x)
    {
        const osg::Geometry* mesh = board().getGeode()->getDrawable(0)->asGeometry();
        const auto& vertices = static_cast<const osg::Vec3Array&>(*mesh->getVertexArray());
        const auto& normals = static_cast<const osg::Vec3Array&>(*mesh->getNormalArray());
        for (std::size_t i = 0; i < vertices.size(); i += 3) {
            const bool onPlane = std::fabs(vertices[i].x()) < 1e-4f &&
                                 std::fabs(vertices[i + 1].x()) < 1e-4f &&
                                 std::fabs(vertices[i + 2].x()) < 1e-4f;
            if (onPlane && normals[i].x() * x < 0.0f)
                return true;
        }
        return false;
    }

    /// A checkpoint has a body of its own and, as a start, nothing on it.
    static Cell dynamicOf(int value) { return {135, 100, value}; }
    static Cell staticOf(int value) { return {90, 100, value}; }
};

/// The upper height of a corner of a cell, the corner given by the signs of x and y.
float cornerHeight(const BlockShape& shape, float x, float y)
{
    if (shape.slope == flatSlope)
        return shape.highHeight;
    return uphill[shape.slope] * osg::Vec2f(x, y) > 0.0f ? shape.highHeight : shape.lowHeight;
}

void expectCorners(const std::vector<osg::Vec3f>& points, const BlockShape& shape,
                   const osg::Vec3f& origin)
{
    for (const float x : {-0.5f, 0.5f}) {
        for (const float y : {-0.5f, 0.5f}) {
            float lowest = 100.0f;
            float highest = -100.0f;
            for (const osg::Vec3f& point : points) {
                const osg::Vec3f local = point - origin;
                if (std::fabs(local.x() - x) > 1e-4f || std::fabs(local.y() - y) > 1e-4f)
                    continue;
                lowest = std::min(lowest, local.z());
                highest = std::max(highest, local.z());
            }
            EXPECT_NEAR(lowest, 0.0f, 1e-4f) << "it stands on the board at " << x << ' ' << y;
            EXPECT_NEAR(highest, cornerHeight(shape, x, y), 1e-4f) << "at " << x << ' ' << y;
        }
    }
}

std::vector<osg::Vec3f> pointsOf(const PxShape& shape)
{
    std::vector<osg::Vec3f> points;
    const PxTransform pose = shape.getLocalPose();
    const PxGeometry& geometry = shape.getGeometry();
    if (geometry.getType() == PxGeometryType::eBOX) {
        const PxVec3 half = static_cast<const PxBoxGeometry&>(geometry).halfExtents;
        for (const float x : {-half.x, half.x}) {
            for (const float y : {-half.y, half.y}) {
                for (const float z : {-half.z, half.z}) {
                    const PxVec3 corner = pose.transform(PxVec3(x, y, z));
                    points.emplace_back(corner.x, corner.y, corner.z);
                }
            }
        }
    } else {
        const PxConvexMesh* mesh = static_cast<const PxConvexMeshGeometry&>(geometry).convexMesh;
        for (PxU32 i = 0; i < mesh->getNbVertices(); ++i) {
            const PxVec3 corner = pose.transform(mesh->getVertices()[i]);
            points.emplace_back(corner.x, corner.y, corner.z);
        }
    }
    return points;
}

std::vector<osg::Vec3f> pointsOf(const osg::Drawable& drawable)
{
    if (const auto* shape = dynamic_cast<const osg::ShapeDrawable*>(&drawable)) {
        std::vector<osg::Vec3f> points;
        const osg::BoundingBox box = shape->getBoundingBox();
        for (unsigned int i = 0; i < 8; ++i)
            points.push_back(box.corner(i));
        return points;
    }
    const auto* vertices =
        static_cast<const osg::Vec3Array*>(drawable.asGeometry()->getVertexArray());
    return {vertices->begin(), vertices->end()};
}

/// Every shape of the format in a row, with a hole between one and the next.
LevelPicture allShapes(const std::function<Cell(int value)>& cellOf)
{
    LevelPicture picture(88, 1);
    for (int value = 57; value <= 100; ++value)
        picture.set(2 * (value - 57), 0, cellOf(value));
    return picture;
}

TEST_F(BlockShapeTest, StandsMergedIntoTheBoardInTheShapeOfItsValue)
{
    loads(allShapes(staticOf));
    const std::vector<PxShape*> shapes = shapesOf(board().getId());
    ASSERT_EQ(shapes.size(), 44u);
    for (int value = 57; value <= 100; ++value) {
        SCOPED_TRACE(value);
        Block* block = blockAt(2 * (value - 57), 0);
        ASSERT_NE(block, nullptr);
        const BlockShape shape = BlockShape::ofValue(value);
        const osg::Vec3f origin(block->x, block->y, 0.0f);
        EXPECT_EQ(block->height, shape.highHeight);
        EXPECT_EQ(block->getTransform(), board().getTransform());
        const PxShape& body = *shapes[unsigned(value) - 57];
        expectCorners(pointsOf(body), shape, origin);
        EXPECT_EQ(body.getSimulationFilterData().word0, 2u);
        EXPECT_EQ(body.getSimulationFilterData().word1, 4u);
    }
}

TEST_F(BlockShapeTest, IsDrawnAsItStandsSeenFromOutside)
{
    loads(allShapes(staticOf));
    ASSERT_EQ(board().getGeode()->getNumDrawables(), 1u);
    const osg::Geometry* mesh = board().getGeode()->getDrawable(0)->asGeometry();
    const auto& vertices = static_cast<const osg::Vec3Array&>(*mesh->getVertexArray());
    const auto& normals = static_cast<const osg::Vec3Array&>(*mesh->getNormalArray());
    for (int value = 57; value <= 100; ++value) {
        SCOPED_TRACE(value);
        const Block* block = blockAt(2 * (value - 57), 0);
        const BlockShape shape = BlockShape::ofValue(value);
        const osg::Vec3f middle(block->x, block->y, (shape.lowHeight + shape.highHeight) * 0.25f);
        std::vector<osg::Vec3f> points;
        osg::Vec3f windings;
        for (std::size_t i = 0; i < vertices.size(); i += 3) {
            if (std::fabs(vertices[i].x() - block->x) > 0.51f)
                continue;
            points.insert(points.end(), {vertices[i], vertices[i + 1], vertices[i + 2]});
            const osg::Vec3f face = (vertices[i] + vertices[i + 1] + vertices[i + 2]) / 3.0f;
            EXPECT_GT(normals[i] * (face - middle), 0.0f);
            const osg::Vec3f winding =
                (vertices[i + 1] - vertices[i]) ^ (vertices[i + 2] - vertices[i]);
            EXPECT_GT(winding * normals[i], 0.0f) << "what looks away is not drawn";
            windings += winding;
        }
        EXPECT_LT(windings.length(), 1e-4f) << "there is a gap";
        expectCorners(points, shape, osg::Vec3f(block->x, block->y, 0.0f));
    }
}

TEST_F(BlockShapeTest, DoesNotJoinARampOfAnotherDirectionBesideIt)
{
    for (int slope = 0; slope < 4; ++slope) {
        for (int other = 0; other < 4; ++other) {
            SCOPED_TRACE(testing::Message() << slope << " beside " << other);
            LevelPicture picture(2, 1);
            picture.set(0, 0, staticOf(78 + slope)).set(1, 0, staticOf(78 + other));
            loads(picture);
            EXPECT_EQ(shapesOf(board().getId()).size(), 2u);
            EXPECT_TRUE(showsFaceAt(-0.5f)) << "the first is whole";
            EXPECT_TRUE(showsFaceAt(0.5f)) << "and so is the second";
        }
    }
}

TEST_F(BlockShapeTest, IsDrawnWithoutItsSideExactlyWhereAFixedNeighbourHidesIt)
{
    // A wall one high, and what may stand to its right.
    struct Neighbour
    {
        const char* name;
        Cell cell;
        bool hides;
    };
    const Neighbour neighbours[] = {
        {"a hole", Cell(), false},
        {"a lower floor", staticOf(73), false},
        {"an equal wall", staticOf(86), true},
        {"a higher wall", staticOf(95), true},
        {"a ramp that rises towards it", staticOf(64), false},
        {"a ramp that falls towards it", staticOf(62), false},
        {"a ghost, which may be air", {225, 80, 86, 1}, false},
        {"an elevator, which may sink", {180, 90, 95, 2}, false},
    };
    for (const Neighbour& neighbour : neighbours) {
        SCOPED_TRACE(neighbour.name);
        LevelPicture picture(2, 1);
        picture.set(0, 0, staticOf(86)).set(1, 0, neighbour.cell);
        loads(picture);
        EXPECT_EQ(showsFaceAt(-0.5f), !neighbour.hides);
    }
}

TEST_F(BlockShapeTest, IsCentredOnItsOwnTransformWhenItIsDynamic)
{
    loads(allShapes(dynamicOf));
    EXPECT_EQ(board().getGeode()->getNumDrawables(), 0u);
    EXPECT_TRUE(shapesOf(board().getId()).empty());
    for (int value = 57; value <= 100; ++value) {
        SCOPED_TRACE(value);
        Block* block = blockAt(2 * (value - 57), 0);
        ASSERT_NE(block, nullptr);
        const BlockShape shape = BlockShape::ofValue(value);
        const osg::Vec3f origin(block->x, block->y, shape.highHeight * 0.5f);
        EXPECT_EQ(osg::Vec3f(block->getTransform()->getMatrix().getTrans()), origin);
        EXPECT_EQ(valueOf<osg::Vec3f>(uniformBelow(block->getTransform(), "a_TextureOffset")),
                  origin)
            << "the board's wood runs on through it";
        const osg::Vec3f floor(0.0f, 0.0f, -shape.highHeight * 0.5f);
        const std::vector<PxShape*> shapes = shapesOf(block->getId());
        ASSERT_EQ(shapes.size(), 1u);
        expectCorners(pointsOf(*shapes[0]), shape, floor);
        EXPECT_EQ(shapes[0]->getSimulationFilterData().word0, 2u);
        EXPECT_EQ(shapes[0]->getSimulationFilterData().word1, 4u);
        const osg::Geode* geode = block->getTransform()->getChild(0)->asGeode();
        expectCorners(pointsOf(*geode->getDrawable(0)), shape, floor);
    }
    ticks();
    for (const osg::ref_ptr<Block>& block : board().getBlocks())
        EXPECT_TRUE(GameInside::bodyOf(game, block->getId()).getActorFlags() &
                    PxActorFlag::eDISABLE_GRAVITY);
    EXPECT_EQ(board().shaderGroup("Checkpoint")->getNumChildren(), 44u);
}

TEST_F(BlockShapeTest, HasFacesThatLookOutwards)
{
    loads(allShapes(dynamicOf));
    int ramps = 0;
    for (int value = 57; value <= 100; ++value) {
        SCOPED_TRACE(value);
        const osg::Geode* geode =
            blockAt(2 * (value - 57), 0)->getTransform()->getChild(0)->asGeode();
        const osg::Geometry* geometry = geode->getDrawable(0)->asGeometry();
        if (dynamic_cast<const osg::ShapeDrawable*>(geometry))
            continue;
        ++ramps;
        const auto& vertices = static_cast<const osg::Vec3Array&>(*geometry->getVertexArray());
        const auto& normals = static_cast<const osg::Vec3Array&>(*geometry->getNormalArray());
        ASSERT_EQ(geometry->getNumPrimitiveSets(), 6u);
        ASSERT_EQ(normals.size(), 6u);
        EXPECT_EQ(geometry->getNormalBinding(), osg::Geometry::BIND_PER_PRIMITIVE_SET);
        osg::Vec3f middle;
        for (const osg::Vec3f& vertex : vertices)
            middle += vertex / 8.0f;
        for (unsigned int face = 0; face < 6; ++face) {
            const osg::PrimitiveSet* quad = geometry->getPrimitiveSet(face);
            ASSERT_EQ(quad->getMode(), GLenum(GL_QUADS));
            ASSERT_EQ(quad->getNumIndices(), 4u);
            osg::Vec3f faceMiddle;
            for (unsigned int corner = 0; corner < 4; ++corner)
                faceMiddle += vertices[quad->index(corner)] / 4.0f;
            const osg::Vec3f area = (vertices[quad->index(0)] - vertices[quad->index(2)]) ^
                                    (vertices[quad->index(1)] - vertices[quad->index(3)]);
            // A side may have no height at the low edge.
            if (area.length() > 0.0f)
                EXPECT_GT(normals[face] * (faceMiddle - middle), 0.0f) << face;
        }
        EXPECT_GT(normals[4].z(), 0.0f) << "the slope";
    }
    EXPECT_EQ(ramps, 40);
}

TEST_F(BlockShapeTest, LetsTheBallRollDownItsSlope)
{
    for (const bool dynamic : {false, true}) {
        for (int slope = 0; slope < 4; ++slope) {
            SCOPED_TRACE(testing::Message() << slope << (dynamic ? " dynamic" : " merged"));
            LevelPicture picture(5, 5, cells::floor);
            // From 0.5 up to 1.5.
            picture.set(2, 2, dynamic ? Cell{135, 70, 78 + slope} : staticOf(78 + slope));
            loads(picture);
            putsBall(osg::Vec3d(0.0, 0.15, 1.45));
            ASSERT_TRUE(ticksUntil(
                [&] {
                    const osg::Vec3d ball = ballPosition();
                    return osg::Vec2f(float(ball.x()), float(ball.y())) * uphill[slope] < -0.6f;
                },
                120));
            EXPECT_LT(ballPosition().z(), 1.2);
        }
    }
}

TEST_F(BlockShapeTest, StandsInItsCellSeenFromAbove)
{
    loads(LevelPicture(20, 20, cells::floor));
    const auto& blocks = board().getBlocks();
    ASSERT_EQ(blocks.size(), 400u);
    EXPECT_EQ(blocks.front()->x, -9.5f);
    EXPECT_EQ(blocks.front()->y, 9.5f);
    EXPECT_EQ(blocks[1]->x, -8.5f) << "row by row from the left";
    EXPECT_EQ(blocks[20]->y, 8.5f);
    EXPECT_EQ(blocks.back()->x, 9.5f);
    EXPECT_EQ(blocks.back()->y, -9.5f);
    loads({"...", "...", "..."});
    EXPECT_EQ(blockAt(1, 1)->x, 0.0f);
    EXPECT_EQ(blockAt(1, 1)->y, 0.0f);
    loads({"....."});
    EXPECT_EQ(blockAt(2, 0)->x, 0.0f) << "an odd width has a middle column";
}

TEST_F(BlockShapeTest, IsNothingButANumberUnderValueFiftySeven)
{
    LevelPicture picture(57, 1);
    // As a paint program would: half of the green is red.
    QImage image = picture.image();
    for (int value = 0; value <= 56; ++value) {
        const int green = int(std::lround(value * 2.55));
        image.setPixel(value, 0, qRgb(green / 2, green, 0));
        ASSERT_EQ(LevelPixel::decode(image.pixel(value, 0)).value, value);
        ASSERT_EQ(blockKindOfHue(LevelPixel::decode(image.pixel(value, 0)).hue),
                  value == 0 ? BlockKind::None : BlockKind::Standard);
    }
    OutputCapture output;
    image.save("data/Rollix/level0.png");
    game.loadLevel(0);
    ASSERT_EQ(board().getBlocks().size(), 56u);
    for (const osg::ref_ptr<Block>& block : board().getBlocks()) {
        EXPECT_EQ(block->getTransform(), nullptr);
        EXPECT_EQ(block->height, 0.0f);
    }
    EXPECT_TRUE(shapesOf(board().getId()).empty());
    EXPECT_EQ(board().getGeode()->getNumDrawables(), 0u);
    EXPECT_EQ(ball().getId(), 2u + 56u + 1u) << "each has an id of its own";
    EXPECT_EQ(output.text(), "reading level data/Rollix/level0.png\n");
    ticks(3);
}

TEST_F(BlockShapeTest, IsRefusedWithoutABodyIfItNeedsOne)
{
    for (const int value : {40, 56}) {
        for (const int hue : {135, 270, 225, 180, 0, 45, 315}) {
            LevelPicture picture(4, 2);
            picture.set(0, 0, cells::floor).set(2, 1, {hue, 100, value, 200});
            OutputCapture output;
            loads(picture);
            EXPECT_EQ(output.text(),
                      "reading level data/Rollix/level0.png\n"
                      "I cannot build 1 of the blocks of data/Rollix/level0.png: a value under 57 "
                      "gives no body. The first is at column 2, row 1: hue " +
                          std::to_string(hue) + ", saturation 100, value " + std::to_string(value) +
                          ", alpha 200.\n");
            EXPECT_EQ(board().getBlocks().size(), 1u);
            EXPECT_EQ(board().getGroups().count(200), 1u);
            ticks(3);
        }
    }
}

TEST_F(BlockShapeTest, MovesWithTheBoardItIsFixedTo)
{
    LevelPicture picture(9, 9, cells::floor);
    picture.set(7, 1, dynamicOf(86));
    loads(picture);
    ticks();
    Block* block = blockAt(7, 1);
    const osg::Matrixd home = block->getTransform()->getMatrix();
    putsBall(osg::Vec3d(0.0, 0.0, 300.0));
    holds(Qt::Key_Right, 40);
    ASSERT_GT(tiltDegrees(), 29.0);
    const osg::Vec3d place = home.getTrans() * boardPose();
    EXPECT_LT((block->getTransform()->getMatrix().getTrans() - place).length(), 0.01);
    const osg::Vec3d up =
        osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), block->getTransform()->getMatrix());
    const osg::Vec3d boardUp = osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), boardPose());
    EXPECT_GT(up * boardUp, 0.9999);
}

TEST_F(BlockShapeTest, DoesNothingByItselfAboutEvents)
{
    loads({"S.."});
    ticks();
    OutputCapture output;
    Block& block = *blockAt(1, 0);
    game.state = GameState::Playing;
    block.onBallContact(&ball());
    block.onBallEnter(&ball());
    block.onSignal(&block);
    block.onBallLeave(&ball());
    block.reset();
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(level().coinCount(), 0);
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_EQ(game.state, GameState::Playing);
}

TEST_F(BlockShapeTest, RemembersItsEdges)
{
    loads({"S"});
    const osg::ref_ptr<ProbeBlock> ramp = new ProbeBlock(level(), 4.0f, 0.0f, 99);
    EXPECT_EQ(ramp->lowHeight, 1.5f);
    EXPECT_EQ(ramp->highHeight, 2.0f);
    EXPECT_EQ(ramp->slope, 3);
    const osg::ref_ptr<ProbeBlock> flat = new ProbeBlock(level(), 6.0f, 0.0f, 95);
    EXPECT_EQ(flat->lowHeight, 1.5f);
    EXPECT_EQ(flat->highHeight, 1.5f);
    EXPECT_EQ(flat->slope, 4);
    const std::size_t joints = GameInside::jointsOf(game).size();
    const unsigned int joint = flat->fixToBoard();
    ASSERT_EQ(GameInside::jointsOf(game).size(), joints + 1);
    EXPECT_EQ(GameInside::jointsOf(game).at(joint)->getConcreteType(),
              PxType(PxJointConcreteType::eFIXED));
}

}  // namespace
