#include "level/Block.h"

#include "game/Rollix.h"
#include "level/Board.h"
#include "level/FilterGroups.h"
#include "level/Level.h"

#include <osg/Geometry>
#include <osg/ShapeDrawable>

namespace {

constexpr double density = 1.0;

/// The eight corners of a ramp that stands on the board surface under its low edge too: for each
/// corner of the cell the lower and then the upper one.
osg::ref_ptr<osg::Vec3Array> rampVertices(float low, float high, int slope)
{
    const CornerHeights tops = CornerHeights::of(low, high, slope);
    osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
    const auto addCorner = [&](float x, float y, float top) {
        vertices->push_back(osg::Vec3f(x, y, 0.0f));
        vertices->push_back(osg::Vec3f(x, y, top));
    };
    addCorner(-0.5f, -0.5f, tops.leftFront);
    addCorner(-0.5f, 0.5f, tops.leftBack);
    addCorner(0.5f, -0.5f, tops.rightFront);
    addCorner(0.5f, 0.5f, tops.rightBack);
    return vertices;
}

void move(osg::Vec3Array& vertices, const osg::Vec3f& offset)
{
    for (osg::Vec3f& vertex : vertices)
        vertex += offset;
}

/// The normal, of any length, of a face that may have lost its first edge: a side of a ramp that
/// begins at the board's surface has three corners left.
osg::Vec3f faceNormal(const osg::Vec3Array& vertices, const unsigned int (&face)[4])
{
    const osg::Vec3f& corner = vertices[face[0]];
    const osg::Vec3f toOpposite = corner - vertices[face[2]];
    const osg::Vec3f normal = (corner - vertices[face[1]]) ^ toOpposite;
    return normal.length2() > 0.0f ? normal : toOpposite ^ (corner - vertices[face[3]]);
}

/// The six faces of a ramp, each with one normal.
osg::ref_ptr<osg::Geometry> rampGeometry(osg::Vec3Array* vertices)
{
    static const unsigned int faces[6][4] = {{0, 1, 3, 2}, {2, 3, 7, 6}, {6, 7, 5, 4},
                                             {4, 5, 1, 0}, {1, 5, 7, 3}, {0, 2, 6, 4}};
    osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    osg::ref_ptr<osg::Vec3Array> normals = new osg::Vec3Array;
    for (const auto& face : faces) {
        geometry->addPrimitiveSet(new osg::DrawElementsUInt(GL_QUADS, 4, face));
        normals->push_back(faceNormal(*vertices, face));
    }
    geometry->setVertexArray(vertices);
    geometry->setNormalArray(normals, osg::Array::BIND_PER_PRIMITIVE_SET);
    return geometry;
}

}  // namespace

Block::Block(Level& owner, float cellX, float cellY, int /*saturation*/, int value,
             BlockGroup& linkGroup, bool dynamic, std::string shaderGroup)
    : GameObject(owner), x(cellX), y(cellY), group(&linkGroup)
{
    createShape(value, dynamic, shaderGroup);
}

Block::~Block() = default;

void Block::onBallContact(Ball*) {}

void Block::onBallEnter(Ball*) {}

void Block::onSignal(Block*) {}

void Block::onBallLeave(Ball*) {}

CornerHeights Block::corners() const
{
    return CornerHeights::of(lowHeight, highHeight, slope);
}

bool Block::isRestless() const
{
    return false;
}

float Block::lift() const
{
    return 0.0f;
}

float Block::presence() const
{
    return 1.0f;
}

std::vector<Hovering> Block::hovering() const
{
    return {};
}

void Block::setOpenEdges(const osg::Vec4f& edges)
{
    body->getOrCreateStateSet()->addUniform(new osg::Uniform("a_OpenEdges", edges));
}

void Block::createShape(int value, bool dynamic, std::string shaderGroup)
{
    const BlockShape shape = BlockShape::ofValue(value);
    if (!shape.hasBody)
        return;
    height = shape.highHeight;
    if (shape.slope == flatSlope)
        createCuboid(height, dynamic, shaderGroup);
    else
        createRamp(shape.lowHeight, height, shape.slope, dynamic, shaderGroup);
}

void Block::createRamp(float low, float high, int direction, bool dynamic, std::string shaderGroup)
{
    lowHeight = low;
    highHeight = high;
    slope = direction;
    osg::ref_ptr<osg::Vec3Array> vertices = rampVertices(low, high, direction);
    // A body of its own is centred on its transform.
    move(*vertices, dynamic ? osg::Vec3f(0.0f, 0.0f, -height * 0.5f) : osg::Vec3f(x, y, 0.0f));
    osg::ref_ptr<osg::Geometry> geometry = rampGeometry(vertices);
    if (dynamic) {
        createOwnTransform(geometry, shaderGroup);
        game()->createConvex(id, vertices, density, "holz", PhysxScene::motionWithoutGravity,
                             boardGroup, boardMask);
        game()->setFamily(id, boardFamily);
        game()->setPose(id, transform->getMatrix());
    } else {
        level->board->getGeode()->addDrawable(geometry);
        game()->addConvexShape(level->board->getId(), vertices, "holz", boardGroup, boardMask,
                               false);
        transform = level->board->getTransform();
    }
}

void Block::createCuboid(float top, bool dynamic, std::string shaderGroup)
{
    lowHeight = top;
    highHeight = top;
    slope = flatSlope;
    const osg::Vec3f size(1.0f, 1.0f, top);
    const osg::Vec3f center = dynamic ? osg::Vec3f() : osg::Vec3f(x, y, top * 0.5f);
    osg::ref_ptr<osg::ShapeDrawable> box =
        new osg::ShapeDrawable(new osg::Box(center, size.x(), size.y(), size.z()));
    if (dynamic) {
        createOwnTransform(box, shaderGroup);
        game()->createBox(id, size, density, "holz", PhysxScene::motionWithoutGravity, boardGroup,
                          boardMask);
        game()->setFamily(id, boardFamily);
        game()->setPose(id, transform->getMatrix());
    } else {
        level->board->getGeode()->addDrawable(box);
        game()->addBoxShape(level->board->getId(), size, "holz", osg::Matrixd::translate(center),
                            boardGroup, boardMask, false);
        transform = level->board->getTransform();
    }
}

void Block::createOwnTransform(osg::Drawable* drawable, const std::string& shaderGroup)
{
    const osg::Vec3f origin(x, y, height * 0.5f);
    transform = new osg::MatrixTransform(osg::Matrixd::translate(origin));
    game()->setActorTransform(id, transform);
    body = addWoodenDecoration(drawable);
    level->board->shaderGroup(shaderGroup)->addChild(transform);
}

unsigned int Block::fixToBoard()
{
    const unsigned int joint = game()->nextId();
    game()->createFixedJoint(joint, id, osg::Matrixd::identity(), level->board->getId(),
                             transform->getMatrix());
    return joint;
}

float Block::surfaceHeight() const
{
    return height * 0.5f - (highHeight - lowHeight) * 0.5f;
}

float Block::frameTime() const
{
    return float(game()->getFrameStamp()->getSimulationTime());
}

osg::ref_ptr<osg::Geode> Block::addDecoration(osg::Drawable* drawable)
{
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(drawable);
    transform->addChild(geode);
    return geode;
}

osg::ref_ptr<osg::Geode> Block::addWoodenDecoration(osg::Drawable* drawable)
{
    osg::ref_ptr<osg::Geode> geode = addDecoration(drawable);
    // Where the block's own origin lies on the board, so that the board's wood runs on through it.
    geode->getOrCreateStateSet()->addUniform(
        new osg::Uniform("a_TextureOffset", osg::Vec3f(x, y, height * 0.5f)),
        osg::StateAttribute::ON);
    return geode;
}
