#include "blocks/BlockTrap.h"

#include "base/WorldNumbers.h"
#include "blocks/HidingCallback.h"
#include "blocks/SingleShot.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Decoration.h"
#include "level/FilterGroups.h"
#include "level/Level.h"

#include <osg/ShapeDrawable>

namespace {

constexpr int restMilliseconds = 10000;
constexpr double millisecondsPerSecond = 1000.0;

constexpr float mineRadius = 0.1f;
constexpr float blastRadius = 0.5f;
constexpr float goneRadius = 0.0f;
constexpr int blastMilliseconds = 500;
constexpr double blastForce = 100.0;  // at one unit; falls with the square of the distance
constexpr double blastLives = 5.0;    // likewise
const osg::Vec4f red(1.0f, 0.0f, 0.0f, 1.0f);

constexpr float plungerRadius = 0.4f;
constexpr float plungerIn = 0.3f;
constexpr float plungerOut = 1.0f;
const osg::Vec4f plungerLacquer(0.66f, 0.70f, 0.76f,
                                0.85f);  // like steel, for it must not be missed

constexpr float discHeight = 0.01f;
const osg::Vec4f black(0.0f, 0.0f, 0.0f, 1.0f);

}  // namespace

/// Draws what it is on only while the trap is not active.
class BlockTrap::BlockTrapdoorCallback : public HidingCallback<BlockTrap, &BlockTrap::active>
{
public:
    using HidingCallback::HidingCallback;
};

BlockTrap::BlockTrap(Level& owner, float cellX, float cellY, int saturation, int value,
                     BlockGroup& linkGroup)
    : Block(owner, cellX, cellY, saturation, value, linkGroup, true, "Trap")
{
    fixToBoard();
    const TrapOption option = TrapOption::ofSaturation(saturation);
    kind = option.kind;
    parameter = option.parameter;
    switch (kind) {
    case TrapKind::Mine:
        createMine();
        break;
    case TrapKind::Spring:
        createSpring();
        break;
    case TrapKind::Trapdoor:
        createTrapdoor();
        break;
    case TrapKind::Well:
        createWell();
        break;
    case TrapKind::None:
        break;
    }
}

BlockTrap::~BlockTrap()
{
    if (kind == TrapKind::Well && active)
        GameLoop::removeFrameTask(&frameTask);
}

void BlockTrap::onBallContact(Ball*)
{
    if (fired)
        return;
    fired = true;
    switch (kind) {
    case TrapKind::Mine:
        armMine();
        break;
    case TrapKind::Spring:
        releaseSpring();
        break;
    case TrapKind::Trapdoor:
        armTrapdoor();
        break;
    case TrapKind::Well:
    case TrapKind::None:
        break;
    }
}

void BlockTrap::onBallEnter(Ball*)
{
    if (kind != TrapKind::Well)
        return;
    active = true;
    GameLoop::addFrameTask(&frameTask);
}

void BlockTrap::onBallLeave(Ball*)
{
    if (kind == TrapKind::Well)
        stopPulling();
}

void BlockTrap::startTimer(int milliseconds, void (BlockTrap::*slot)())
{
    startSingleShot(timer, milliseconds, this, slot);
}

void BlockTrap::reset()
{
    timer.stop();
    switch (kind) {
    case TrapKind::Mine:
        active = false;
        fired = false;
        setMineRadius(mineRadius);
        break;
    case TrapKind::Spring:
        fired = false;
        setPlungerHeight(plungerIn);
        break;
    case TrapKind::Trapdoor:
        active = false;
        fired = false;
        game()->setCollisionEnabled(id, true);
        break;
    case TrapKind::Well:
        stopPulling();
        break;
    case TrapKind::None:
        break;
    }
}

float BlockTrap::presence() const
{
    return kind == TrapKind::Trapdoor && active ? 0.0f : 1.0f;
}

osg::Vec3d BlockTrap::wayToBall() const
{
    return level->ball->getTransform()->getMatrix().getTrans() - transform->getMatrix().getTrans();
}

void BlockTrap::pushBall(const osg::Vec3f& force)
{
    game()->addForce(level->ball->getId(), force, PhysxScene::forceModeForce, true);
}

void BlockTrap::createMine()
{
    level->board->addContactShape(this, id);
    sphere = new osg::Sphere(osg::Vec3f(0.0f, 0.0f, surfaceHeight() + mineRadius), mineRadius);
    shapeDrawable = new osg::ShapeDrawable(sphere);
    shapeDrawable->setColor(red);
    shapeProgram = addProgram(addDecoration(shapeDrawable), "mine", game());
    createWarning();
}

void BlockTrap::createWarning()
{
    // A mine that has exploded is no danger until it is armed again.
    osg::ref_ptr<osg::Group> whileArmed = new osg::Group;
    whileArmed->setCullCallback(new BlockTrapdoorCallback(this));
    transform->addChild(whileArmed);
    inlayProgram = addInlay(whileArmed, InlayKind::Mine, corners().moved(1.0f, -height * 0.5f),
                            osg::Vec3f(1.0f, 0.0f, 0.0f), game());
}

void BlockTrap::setMineRadius(float radius)
{
    sphere->setRadius(radius);
    shapeDrawable->build();
}

void BlockTrap::armMine()
{
    if (parameter > 0.0)
        startTimer(int(parameter * millisecondsPerSecond), &BlockTrap::explode);
    else
        explode();
}

void BlockTrap::explode()
{
    const osg::Vec3d way = wayToBall();
    const double distance = way.length();
    pushBall(way / distance * blastForce / (distance * distance));
    // When this takes the last life, the restart has reset this mine before the blast is shown: it
    // then flashes on the fresh level, armed.
    level->changeLives(int(-blastLives / (distance * distance)), false);
    active = true;
    startTimer(blastMilliseconds, &BlockTrap::fadeMine);
    setMineRadius(blastRadius);
}

void BlockTrap::fadeMine()
{
    setMineRadius(goneRadius);
    startTimer(restMilliseconds, &BlockTrap::reset);
}

void BlockTrap::createSpring()
{
    level->board->addContactShape(this, id);
    cylinder = new osg::Cylinder(osg::Vec3f(0.0f, 0.0f, surfaceHeight()), plungerRadius, plungerIn);
    shapeDrawable = new osg::ShapeDrawable(cylinder);
    addWoodenDecoration(shapeDrawable)
        ->getOrCreateStateSet()
        ->addUniform(new osg::Uniform("a_Lacquer", plungerLacquer));
}

void BlockTrap::setPlungerHeight(float plungerHeight)
{
    cylinder->setHeight(plungerHeight);
    shapeDrawable->build();
}

void BlockTrap::releaseSpring()
{
    setPlungerHeight(plungerOut);
    const osg::Vec3d up = osg::Vec3d(0.0, 0.0, 1.0) * level->board->getTransform()->getMatrix();
    pushBall(up * parameter * world::springForce);
    startTimer(restMilliseconds, &BlockTrap::reset);
}

void BlockTrap::createTrapdoor()
{
    trapdoorCallback = new BlockTrapdoorCallback(this);
    transform->setCullCallback(trapdoorCallback);
    level->board->addContactShape(this, id);
}

void BlockTrap::armTrapdoor()
{
    if (parameter > 0.0)
        startTimer(int(parameter * millisecondsPerSecond), &BlockTrap::openTrapdoor);
    else
        openTrapdoor();
}

void BlockTrap::openTrapdoor()
{
    active = true;
    game()->setCollisionEnabled(id, false);
    startTimer(restMilliseconds, &BlockTrap::reset);
}

void BlockTrap::createWell()
{
    const float side = float(parameter);
    game()->addBoxShape(id, osg::Vec3f(side, side, side), "holz", osg::Matrixd::identity(),
                        boardGroup, boardMask, true);
    frameTask = [this] {
        pullBall();
    };
    level->board->addTriggerShape(this, id);
    createWellSparks();
    createWellDisc();
}

void BlockTrap::createWellSparks()
{
    Sparks sparks;
    sparks.shape = osgParticle::Particle::HEXAGON;
    sparks.size = osgParticle::rangef(0.03f, 0.07f);
    sparks.color = osgParticle::rangev4(black, red);
    sparks.rate = osgParticle::rangef(100.0f, 200.0f);
    sparks.source = {osg::Vec3f(-0.5f, -0.5f, 1.0f), osg::Vec3f(-0.5f, 0.5f, 1.0f),
                     osg::Vec3f(0.5f, 0.5f, 1.0f), osg::Vec3f(0.5f, -0.5f, 1.0f)};
    sparks.wind = osg::Vec3f(0.0f, 0.0f, -1.0f);
    particleProgram = addSparks(transform, sparks, game());
}

void BlockTrap::createWellDisc()
{
    const float radius = float(parameter) * 0.1f + 0.2f;
    cylinder = new osg::Cylinder(osg::Vec3f(0.0f, 0.0f, surfaceHeight()), radius, discHeight);
    shapeDrawable = new osg::ShapeDrawable(cylinder);
    shapeDrawable->setColor(black);
    shapeProgram = addProgram(addDecoration(shapeDrawable), "standard", game());
}

void BlockTrap::pullBall()
{
    if (kind != TrapKind::Well || !active)
        return;
    const osg::Vec3d way = wayToBall();
    const double distance = way.length();
    pushBall(-way / distance / (distance * distance));
}

void BlockTrap::stopPulling()
{
    active = false;
    GameLoop::removeFrameTask(&frameTask);
}
