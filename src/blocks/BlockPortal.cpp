#include "blocks/BlockPortal.h"

#include "base/Random.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Decoration.h"
#include "level/FilterGroups.h"
#include "level/Level.h"

#include <osg/ShapeDrawable>
#include <osg/observer_ptr>

#include <algorithm>
#include <vector>

namespace {

constexpr float pullDepth = 0.5f;  // of the point that pulls, behind the mouth
constexpr float sendPush = 3.0f;
constexpr float releasePush = 2.0f;
constexpr float escapeDistance = 0.8f;  // from the mouth's centre
constexpr float crossingDepth = 0.1f;   // behind the mouth's plane

constexpr float mouthRadius = 0.4f;
constexpr float mouthHeight = 0.5f;
const osg::Vec4f mouthColor(0.0f, 0.0f, 0.8f, 1.0f);

constexpr int drawRange = 32768;  // random15() stays below

/// The ball's uniform of this name, made at the first crossing that the ball takes.
osg::Uniform* matrixUniform(osg::StateSet* stateSet, const char* name)
{
    if (osg::Uniform* known = stateSet->getUniform(name))
        return known;
    osg::ref_ptr<osg::Uniform> uniform = new osg::Uniform(osg::Uniform::FLOAT_MAT4, name);
    uniform->set(osg::Matrixf::identity());
    stateSet->addUniform(uniform, osg::StateAttribute::ON);
    return uniform;
}

osg::Vec3d positionOf(const osg::MatrixTransform* transform)
{
    return transform->getMatrix().getTrans();
}

}  // namespace

/// Tells the ball's shader, frame by frame, where a portal is. A receiver stands for the frame in
/// which the ball will be put: one unit out of its mouth.
class BlockPortal::BallPortalShaderCallback : public osg::Uniform::Callback
{
public:
    explicit BallPortalShaderCallback(BlockPortal* portal) : block(portal) {}

    void operator()(osg::Uniform* uniform, osg::NodeVisitor*) override
    {
        if (!block)
            return;
        const osg::Matrixf place(block->transform->getMatrix());
        uniform->set(block->state == Receiving ? osg::Matrixf::translate(-block->direction) * place
                                               : place);
    }

private:
    // Not a reference: what has been drawn last keeps the ball's uniforms beyond their level, and
    // a portal that is kept along with them would go on with its crossing in a level that is gone.
    osg::observer_ptr<BlockPortal> block;
};

BlockPortal::BlockPortal(Level& owner, float cellX, float cellY, int saturation, int value,
                         BlockGroup& linkGroup)
    : Block(owner, cellX, cellY, saturation, value, linkGroup, true, "Portal"),
      orientation(PortalOption::ofSaturation(saturation).face),
      strength(PortalOption::ofSaturation(saturation).strength),
      direction(directionInto(orientation))
{
    fixToBoard();
    const PortalShape shape(orientation, CornerHeights::of(lowHeight, highHeight, slope), height);
    mouthCenter = shape.mouthCenter;
    createTriggers(shape);
    frameTask = [this] {
        update();
    };
    createSparks();
    createMouth();
}

BlockPortal::~BlockPortal()
{
    if (state != Idle)
        GameLoop::removeFrameTask(&frameTask);
}

void BlockPortal::createTriggers(const PortalShape& shape)
{
    for (const osg::ref_ptr<osg::Vec3Array>& hull : {shape.innerHull, shape.outerHull})
        game()->addConvexShape(id, hull, "holz", boardGroup, boardMask, true);
    level->board->addTriggerShape(this, id);
}

void BlockPortal::createSparks()
{
    const osg::Vec3f source = mouthCenter - direction;
    Sparks sparks;
    sparks.size = osgParticle::rangef(0.01f, 0.02f);
    sparks.color = osgParticle::rangev4(osg::Vec4f(1.0f, 1.0f, 0.0f, 1.0f),
                                        osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
    sparks.rate = osgParticle::rangef(50.0f, 100.0f);
    sparks.source = {source, source + osg::Vec3f(0.01f, 0.01f, 0.01f)};
    sparks.wind = direction;
    particleProgram = addSparks(transform, sparks, game());
}

void BlockPortal::createMouth()
{
    cylinder = new osg::Cylinder(mouthCenter, mouthRadius, mouthHeight);
    osg::Quat outward;
    outward.makeRotate(osg::Vec3f(0.0f, 0.0f, 1.0f), -direction);
    cylinder->setRotation(outward);
    osg::ref_ptr<osg::ShapeDrawable> mouth = new osg::ShapeDrawable(cylinder);
    mouth->setColor(mouthColor);
    if (orientation != PortalFace::Top)
        inlayProgram = addInlay(transform, InlayKind::Portal, corners().moved(1.0f, -height * 0.5f),
                                -direction, game());
    mouthProgram = addProgram(addDecoration(mouth), "standard", game());
}

void BlockPortal::onBallEnter(Ball*)
{
    if (state == Idle) {
        state = Attracting;
        game()->setCollisionEnabled(id, false);
        GameLoop::addFrameTask(&frameTask);
    } else if (state == Attracting) {
        // The second shape in reach of the ball is the one inside the block.
        activate();
    }
}

void BlockPortal::onBallLeave(Ball*)
{
    if (state == Attracting || state == Releasing)
        reset();
}

void BlockPortal::update()
{
    if (state == Attracting)
        attractBall();
    else if (state == Sending)
        checkBall();
}

void BlockPortal::attractBall()
{
    const osg::Vec3d ball = positionOf(level->ball->getTransform());
    const osg::Vec3d goal =
        osg::Vec3d(mouthCenter + direction * pullDepth) * transform->getMatrix();
    game()->addForce(level->ball->getId(), (goal - ball) * strength, PhysxScene::forceModeForce,
                     true);
}

BlockPortal* BlockPortal::pickReceiver() const
{
    std::vector<BlockPortal*> candidates;
    for (const osg::ref_ptr<Block>& block : *group) {
        auto* portal = dynamic_cast<BlockPortal*>(block.get());
        if (portal && portal != this)
            candidates.push_back(portal);
    }
    if (candidates.empty())
        return nullptr;
    // Draws beyond the last whole bucket are thrown away, which keeps all candidates equally
    // likely.
    const int bucket = std::max(1, drawRange / int(candidates.size()));
    std::size_t index;
    do
        index = std::size_t(random15() / bucket);
    while (index >= candidates.size());
    return candidates[index];
}

void BlockPortal::activate()
{
    receiver = pickReceiver();
    if (!receiver)
        return;
    state = Sending;
    game()->setMotion(level->ball->getId(), PhysxScene::motionWithoutGravity);
    pushBall(direction * sendPush);
    showCrossing();
    receiver->state = Receiving;
    game()->setCollisionEnabled(receiver->id, false);
}

void BlockPortal::showCrossing()
{
    osg::StateSet* stateSet = ballState();
    stateSet->getUniform("a_PortalActive")->set(true);
    matrixUniform(stateSet, "a_PortalSenderMatrix")
        ->setUpdateCallback(new BallPortalShaderCallback(this));
    matrixUniform(stateSet, "a_PortalReceiverMatrix")
        ->setUpdateCallback(new BallPortalShaderCallback(receiver));
    matrixUniform(stateSet, "a_PortalRotationMatrix")
        ->set(osg::Matrixf::rotate(direction, -receiver->direction));
}

void BlockPortal::checkBall()
{
    const osg::Vec3f mouth = osg::Vec3d(mouthCenter) * transform->getMatrix();
    const osg::Vec3f way = osg::Vec3f(positionOf(level->ball->getTransform())) - mouth;
    if (way.length() > escapeDistance) {
        // The receiver stays as it is, open, until the run starts over.
        reset();
    } else if (way * direction > crossingDepth) {
        // The direction is the block's and the way the world's: with the board tilted, the mouth's
        // plane is taken to be off by the tilt.
        teleportBall();
    }
}

void BlockPortal::teleportBall()
{
    const unsigned int ball = level->ball->getId();
    const osg::Matrixd turn = osg::Matrixd::rotate(direction, -receiver->direction);
    const osg::Matrixd arrival =
        osg::Matrixd::translate(-receiver->direction) * receiver->transform->getMatrix();
    game()->setPose(ball, level->ball->getTransform()->getMatrix() *
                              osg::Matrixd::inverse(transform->getMatrix()) * turn * arrival);
    game()->setLinearVelocity(
        ball, osg::Matrixd::transform3x3(osg::Vec3d(game()->linearVelocity(ball)), turn), true);
    receiver->releaseBall();
    reset();
}

void BlockPortal::releaseBall()
{
    state = Releasing;
    pushBall(-direction * releasePush);
}

void BlockPortal::reset()
{
    game()->setCollisionEnabled(id, true);
    game()->setMotion(level->ball->getId(), PhysxScene::motionDynamic);
    ballState()->getUniform("a_PortalActive")->set(false);
    receiver = nullptr;
    if (state != Idle)
        GameLoop::removeFrameTask(&frameTask);
    state = Idle;
}

void BlockPortal::pushBall(const osg::Vec3f& localForce)
{
    game()->addForce(level->ball->getId(), transform->getMatrix().getRotate() * localForce,
                     PhysxScene::forceModeForce, true);
}

osg::StateSet* BlockPortal::ballState() const
{
    return level->ball->getTransform()->getOrCreateStateSet();
}
