#include "level/Board.h"

#include "game/Rollix.h"
#include "level/FilterGroups.h"
#include "level/Level.h"
#include "level/Relief.h"

#include <QImage>

namespace {

constexpr double density = 1.0;

constexpr double quarterTurn = 1.5707963267948966;
constexpr float coneAngle = 0.5235988f;  // pi/6, the board's limit of tilt
constexpr float coneContactDistance = 0.001f;
constexpr float maximumTurn = 1.0f;  // rad/s
constexpr float turnDamping = 1.0f;

// The four joints at the corners engage only at a stretch of maximum plus tolerance, 11 units, and
// the cone lets a corner travel less than 6: they are a limit that is never met.
constexpr double cornerDistance = 8.0;
constexpr float cornerMinimum = 0.0f;
constexpr float cornerMaximum = 1.0f;
constexpr float cornerTolerance = 10.0f;
constexpr float cornerStiffness = 1.0f;

}  // namespace

Board::Board(Level& owner) : GameObject(owner) {}

void Board::load(const QImage& image)
{
    createBody();
    createShader();
    createBlocks(image);
    finishLook(reliefOf(image.width(), image.height()));
    level->addChild(root);
    finishBody();
    hang();
    createGuide(image.width(), image.height());
}

void Board::createBody()
{
    root = new osg::Group;
    geode = new osg::Geode;
    game()->createActor(id, PhysxScene::motionWithoutGravity);
    transform = new osg::MatrixTransform;
    transform->addChild(geode);
    game()->setActorTransform(id, transform);
    root->addChild(transform);
    root->getOrCreateStateSet()->addUniform(
        new osg::Uniform("a_TextureOffset", osg::Vec3f(0.0f, 0.0f, 0.0f)), osg::StateAttribute::ON);
}

void Board::createShader()
{
    shader = new ShaderProgram(root);
    game()->setSharedStages(*shader, "board");
}

void Board::finishBody()
{
    game()->setFamily(id, boardFamily);
    game()->finishActor(id, density);
    game()->setPose(id, transform->getMatrix());
}

void Board::hang()
{
    // The joint's x axis is the axis of its cone; the rotation makes it the world's vertical.
    const osg::Matrixd upright = osg::Matrixd::rotate(quarterTurn, osg::Vec3d(0.0, 1.0, 0.0));
    const unsigned int pivot = game()->nextId();
    game()->createSphericalJoint(pivot, id, upright, PhysxScene::world, upright);
    game()->setSphericalLimit(pivot, coneAngle, coneAngle, coneContactDistance);
    game()->setMaxAngularVelocity(id, maximumTurn);

    for (const double y : {-cornerDistance, cornerDistance}) {
        for (const double x : {-cornerDistance, cornerDistance}) {
            const osg::Matrixd corner = osg::Matrixd::translate(x, y, 0.0);
            const unsigned int joint = game()->nextId();
            game()->createDistanceJoint(joint, id, corner, PhysxScene::world, corner);
            game()->setDistanceLimit(joint, cornerMinimum, cornerMaximum, cornerTolerance,
                                     cornerStiffness);
        }
    }
    game()->setAngularDamping(id, turnDamping);
}

ShaderProgram::ShaderGroup* Board::shaderGroup(std::string name)
{
    osg::ref_ptr<ShaderProgram::ShaderGroup>& group = shaderGroups[name];
    if (!group) {
        group = new ShaderProgram::ShaderGroup;
        root->addChild(group);
    }
    return group;
}

void Board::reset(bool resetBlocks)
{
    // A joint does not carry a jump: what is tied to the board has to be put along with it.
    game()->setPoseWithAttached(id, osg::Matrixd::identity());
    if (!resetBlocks)
        return;
    for (const osg::ref_ptr<Block>& block : blocks)
        block->reset();
}
