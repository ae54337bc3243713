#include "level/Board.h"

#include "blocks/BlockElevator.h"
#include "blocks/BlockGhost.h"
#include "blocks/BlockItem.h"
#include "blocks/BlockPortal.h"
#include "blocks/BlockTrap.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/BlockButton.h"
#include "level/BlockCheckpoint.h"
#include "level/BlockStandard.h"
#include "level/BoardLook.h"
#include "level/BoardMesh.h"
#include "level/FilterGroups.h"
#include "level/Ground.h"
#include "level/Level.h"
#include "level/LevelPixel.h"
#include "level/Random.h"
#include "level/Relief.h"

#include <QImage>
#include <osg/PolygonOffset>
#include <osg/ShapeDrawable>

#include <cmath>
#include <functional>
#include <iostream>

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

constexpr float guideThickness = 2.0f;
const osg::Vec4f guideColor(0.0f, 9.0f, 0.0f, 0.3f);  // over 1: as green as it gets, lit or not

constexpr float audibleImpulse = 0.01f;
constexpr float volumePerImpulse = 2.0f;

template <typename T>
T* createBlock(Level& level, float x, float y, int saturation, int value, BlockGroup& group)
{
    return new T(level, x, y, saturation, value, group);
}

using BlockFactory = std::function<Block*(Level&, float, float, int, int, BlockGroup&)>;

/// The creator of a kind; empty for a hue that names none.
BlockFactory factoryOf(BlockKind kind)
{
    switch (kind) {
    case BlockKind::Standard:
        return createBlock<BlockStandard>;
    case BlockKind::Checkpoint:
        return createBlock<BlockCheckpoint>;
    case BlockKind::Button:
        return createBlock<BlockButton>;
    case BlockKind::Ghost:
        return createBlock<BlockGhost>;
    case BlockKind::Elevator:
        return createBlock<BlockElevator>;
    case BlockKind::Trap:
        return createBlock<BlockTrap>;
    case BlockKind::Item:
        return createBlock<BlockItem>;
    case BlockKind::Portal:
        return createBlock<BlockPortal>;
    default:
        return BlockFactory();
    }
}

}  // namespace

/// Draws the guide plate only while the game waits for the hand to come to the board's pose.
class Board::SynchronizerCallback : public osg::NodeCallback
{
public:
    explicit SynchronizerCallback(Rollix* owner) : game(owner) {}

    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override
    {
        if (game->state == GameState::WaitingForRest)
            traverse(node, visitor);
    }

private:
    Rollix* game;
};

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

void Board::createBlocks(const QImage& image)
{
    const int width = image.width();
    const int height = image.height();
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const LevelPixel pixel = LevelPixel::decode(image.pixel(column, row));
            if (pixel.value == 0)
                continue;
            const osg::Vec2f position((float(column) - float(width) * 0.5f) + 0.5f,
                                      (float(height) * 0.5f - float(row)) - 0.5f);
            BlockGroup& group = groups[pixel.alpha];
            if (Block* block = blockOfPixel(pixel, column, row, position, group)) {
                blocks.push_back(block);
                group.push_back(block);
            }
        }
    }
}

Block* Board::blockOfPixel(const LevelPixel& pixel, int column, int row, const osg::Vec2f& position,
                           BlockGroup& group)
{
    const BlockKind kind = blockKindOfHue(pixel.hue);
    const BlockFactory create = factoryOf(kind);
    if (!create)
        return nullptr;
    if (kind != BlockKind::Standard && pixel.value < firstBodyValue) {
        // Every other kind needs a body to hang its parts on.
        std::cout << "I cannot build the block of " << level->pictureFile << " at column " << column
                  << ", row " << row << ": it has hue " << pixel.hue << ", saturation "
                  << pixel.saturation << ", value " << pixel.value << ", alpha " << pixel.alpha
                  << ", and a value under " << firstBodyValue << " gives it no body." << std::endl;
        return nullptr;
    }
    return create(*level, position.x(), position.y(), pixel.saturation, pixel.value, group);
}

Relief Board::reliefOf(int columns, int rows) const
{
    Relief relief(columns, rows);
    for (const osg::ref_ptr<Block>& block : blocks) {
        if (!block->getTransform())
            continue;
        Relief::Cell cell;
        cell.top = block->corners();
        cell.filled = true;
        cell.merged = block->getTransform() == transform;
        cell.restless = block->isRestless();
        relief.set(relief.columnOf(block->x), relief.rowOf(block->y), cell);
    }
    return relief;
}

void Board::finishLook(const Relief& relief)
{
    BoardMesh(relief).merge(*geode);
    geode->getOrCreateStateSet()->setMode(GL_CULL_FACE, osg::StateAttribute::ON);
    root->setCullCallback(new BoardLook(*level, relief, *root->getOrCreateStateSet()));
    level->ground->catchShadow(*this, relief);
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

void Board::createGuide(int columns, int rows)
{
    guideId = level->nextObjectId();
    guide = new osg::Geode;
    osg::ref_ptr<osg::ShapeDrawable> plate = new osg::ShapeDrawable(
        new osg::Box(osg::Vec3f(), float(columns), float(rows), guideThickness));
    plate->setColor(guideColor);
    guide->addDrawable(plate);

    osg::ref_ptr<osg::MatrixTransform> guideTransform = new osg::MatrixTransform;
    guideTransform->addChild(guide);
    guideTransform->setCullCallback(new SynchronizerCallback(game()));
    // Without a hand there is no pose to show: the first hand that is seen brings the plate up.
    guideTransform->setNodeMask(0);
    osg::StateSet* stateSet = guideTransform->getOrCreateStateSet();
    stateSet->setMode(GL_BLEND, osg::StateAttribute::ON);
    stateSet->setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
    // Its faces lie where the tops of unit walls are; those stay in front.
    stateSet->setAttributeAndModes(new osg::PolygonOffset(1.0f, 1.0f), osg::StateAttribute::ON);
    level->addChild(guideTransform);
    game()->setActorTransform(guideId, guideTransform);
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

void Board::addContactShape(Block* block, unsigned int actorId)
{
    contactBlocks[actorId] = block;
}

void Board::addTriggerShape(Block* block, unsigned int actorId)
{
    triggerBlocks[actorId] = block;
}

void Board::onBallContact(const physx::PxContactPairHeader& header,
                          const physx::PxContactPair* pairs, unsigned int count)
{
    // The last point of the last pair speaks for the whole contact.
    float impulse = 0.0f;
    std::vector<physx::PxContactPairPoint> points;
    for (unsigned int i = 0; i < count; ++i) {
        if (pairs[i].contactCount == 0)
            continue;
        points.resize(pairs[i].contactCount);
        const physx::PxU32 found =
            pairs[i].extractContacts(points.data(), physx::PxU32(points.size()));
        if (found > 0)
            impulse = points[found - 1].impulse.magnitude();
    }
    if (game()->isShapeContactBetween(ballGroup, boardGroup, pairs[0]) && impulse > audibleImpulse)
        playHitSound(impulse);

    for (const auto& [actorId, block] : contactBlocks) {
        if (game()->isContactBetween(level->ball->getId(), actorId, header))
            block->onBallContact(level->ball);
    }
}

void Board::playHitSound(float impulse)
{
    const int sound = random15() >> 12;
    game()->playSound("hit" + std::to_string(sound + 1), impulse * volumePerImpulse, 0, nullptr);
}

void Board::onBallTrigger(const physx::PxTriggerPair& pair,
                          const physx::PxContactPairHeader& actors)
{
    for (const auto& [actorId, block] : triggerBlocks) {
        if (!game()->isContactBetween(level->ball->getId(), actorId, actors))
            continue;
        if (pair.status & physx::PxPairFlag::eNOTIFY_TOUCH_FOUND)
            block->onBallEnter(level->ball);
        else if (pair.status & physx::PxPairFlag::eNOTIFY_TOUCH_LOST)
            block->onBallLeave(level->ball);
    }
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
