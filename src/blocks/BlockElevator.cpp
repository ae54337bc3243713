#include "blocks/BlockElevator.h"

#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Board.h"
#include "level/Level.h"

#include <cmath>

namespace {

constexpr int restMilliseconds = 1000;

// The sliding joint, by the solver's numbers.
constexpr unsigned int verticalAxis = 2;
constexpr unsigned int verticalDrive = 2;
constexpr unsigned int motionLimited = 1;
constexpr float stiffness = 20.0f;
constexpr float damping = 0.0f;
constexpr float forceLimit = 10.0f;
constexpr bool byAcceleration = true;  // the same way for a light block as for a heavy one
constexpr float contactDistance = 0.0f;
const osg::Vec3f driveVelocity(0.0f, 0.0f, 0.1f);
const osg::Vec3f noTurn(0.0f, 0.0f, 0.0f);

// An end counts as reached from here on; the lock draws the block over the rest.
constexpr double reachTolerance = 0.01;

double toHundredths(double distance)
{
    return int(distance * 100.0 + 0.5) / 100.0;
}

}  // namespace

BlockElevator::BlockElevator(Level& owner, float cellX, float cellY, int saturation, int value,
                             BlockGroup& linkGroup)
    : Block(owner, cellX, cellY, saturation, value, linkGroup, true, "Elevator"),
      timer(this),
      way(ElevatorOption::ofSaturation(saturation))
{
    createDrive();
    lockJointId = game()->nextId();
    timer.setSingleShot(true);
    timer.setInterval(restMilliseconds);
    connect(
        &timer, &QTimer::timeout, this,
        [this] {
            const GameLoop::Lock worldLock;
            toggle();
        });
    frameTask = [this] {
        update();
    };
    GameLoop::addFrameTask(&frameTask);
    reset();
}

BlockElevator::~BlockElevator()
{
    GameLoop::removeFrameTask(&frameTask);
}

void BlockElevator::createDrive()
{
    driveJointId = game()->nextId();
    // The joint's frame lies halfway along the way, so that one limit, the same to both sides,
    // bounds it at both ends.
    const osg::Matrixd middle = osg::Matrixd::translate(0.0, 0.0, way.travel * 0.5) *
                                osg::Matrixd::translate(transform->getMatrix().getTrans());
    game()->createD6Joint(driveJointId, id, osg::Matrixd::identity(), level->board->getId(),
                          middle);
    game()->setD6Drive(driveJointId, verticalDrive, stiffness, damping, forceLimit, byAcceleration);
}

void BlockElevator::onSignal(Block*)
{
    toggle();
}

void BlockElevator::reset()
{
    direction = Out;
    toggle();
}

bool BlockElevator::isRestless() const
{
    return true;
}

float BlockElevator::lift() const
{
    const osg::Vec3d onBoard =
        transform->getMatrix().getTrans() * level->board->getTransform()->getInverseMatrix();
    return float(onBoard.z()) - height * 0.5f;
}

void BlockElevator::toggle()
{
    timer.stop();
    direction = -direction;
    // Acts at once, even inside a physics event: a limit is no more than data of the joint.
    game()->setD6Motion(driveJointId, verticalAxis, motionLimited,
                        float(std::abs(way.travel * 0.5)), contactDistance);
    // Half the way past the stop, so that the drive always presses against it. The target is the
    // board as seen from the block, hence the sign.
    game()->driveJoint(driveJointId,
                       osg::Matrixd::translate(0.0, 0.0, float(-way.travel * direction)),
                       driveVelocity, noTurn);
    if (locked) {
        game()->removeJoint(lockJointId);
        locked = false;
    }
}

void BlockElevator::update()
{
    if (locked)
        return;
    const osg::Vec3d home =
        osg::Vec3d(x, y, height * 0.5f) * level->board->getTransform()->getMatrix();
    const osg::Vec3d position = transform->getMatrix().getTrans();
    const double distance = toHundredths((position - home).length());
    if (direction == Out && distance + reachTolerance >= std::abs(way.travel))
        lockAt(way.travel);
    else if (direction == Home && distance - reachTolerance <= 0.0)
        lockAt(0.0);
}

/// Ties the block to the board at an end of its way; left to the drive alone it would give under
/// the ball and lag when the board tilts.
void BlockElevator::lockAt(double offset)
{
    game()->createFixedJoint(lockJointId, id, osg::Matrixd::identity(), level->board->getId(),
                             osg::Matrixd::translate(x, y, height * 0.5f + offset));
    locked = true;
    if (way.automatic)
        timer.start();
}
