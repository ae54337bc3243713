#include "base/Say.h"
#include "physics/PhysxConversions.h"
#include "physics/PhysxLists.h"
#include "physics/PhysxManager.h"
#include "physics/PhysxScene.h"

#include <algorithm>

using namespace physx;

namespace {

constexpr float defaultContactDistance = -1.0f;  // asks for PhysX's own
constexpr float linearContactShare = 0.01f;      // of the world's typical length
constexpr float coneContactShare = 0.49f;        // of the smaller angle
constexpr float largestConeContact = 0.1f;       // radians
constexpr float coneBounceThreshold = 0.5f;      // radians per second

/// The solver notes one joint a pair of actors when it decides who does not collide with whom. If
/// the noted one of two goes, the pair collides from its next meeting on, as if there were no
/// joint left: every other joint of the pair has to be noted anew.
void renewOtherJointsOf(PxRigidActor* first, PxRigidActor* second)
{
    if (!first || !second)
        return;
    PxRigidActor* fewer = first->getNbConstraints() < second->getNbConstraints() ? first : second;
    for (PxJoint* joint : jointsOf(*fewer)) {
        PxRigidActor* pair[2];
        joint->getActors(pair[0], pair[1]);
        if ((pair[0] != first || pair[1] != second) && (pair[0] != second || pair[1] != first))
            continue;
        // Setting the same two again would be taken for no change.
        PxRigidActor* movable = pair[0]->is<PxRigidDynamic>() ? pair[0] : pair[1];
        joint->setActors(movable == pair[0] ? movable : nullptr,
                         movable == pair[1] ? movable : nullptr);
        joint->setActors(pair[0], pair[1]);
    }
}

void releaseJoint(PxJoint& joint)
{
    PxRigidActor* pair[2];
    joint.getActors(pair[0], pair[1]);
    joint.release();
    renewOtherJointsOf(pair[0], pair[1]);
}

}  // namespace

PxJoint* PhysxScene::findJoint(unsigned int jointId)
{
    const auto found = joints.find(jointId);
    if (found == joints.end()) {
        say("I do not know a joint with id ", jointId);
        return nullptr;
    }
    return found->second;
}

template <typename Joint>
Joint* PhysxScene::findJointOf(unsigned int jointId, const char* kind, const char* complaint)
{
    PxJoint* joint = findJoint(jointId);
    Joint* result = joint ? joint->is<Joint>() : nullptr;
    if (joint && !result)
        say("Joint ", jointId, " is not a ", kind, " joint! ", complaint);
    return result;
}

bool PhysxScene::createJoint(unsigned int jointId, unsigned int actorA, const osg::Matrixd& frameA,
                             unsigned int actorB, const osg::Matrixd& frameB,
                             const JointCreator& create)
{
    const auto actorOrWorld = [this](unsigned int id) {
        const auto found = actors.find(id);
        return found == actors.end() ? nullptr : found->second;
    };
    PxRigidActor* first = actorOrWorld(actorA);
    PxRigidActor* second = actorOrWorld(actorB);
    if (first == second) {
        say("I cannot create a joint between an object and itself!");
        return false;
    }
    // PhysX would refuse a joint of two things that cannot move, were its checks not compiled out.
    PxJoint* joint = nullptr;
    if ((first && first->is<PxRigidDynamic>()) || (second && second->is<PxRigidDynamic>()))
        joint = create(first, toPxTransform(frameA), second, toPxTransform(frameB));
    if (!joint) {
        say("Failed to create joint ", jointId);
        return false;
    }
    joint->setConstraintFlag(PxConstraintFlag::eVISUALIZATION, true);

    PxJoint*& entry = joints[jointId];
    if (entry)
        namelessJoints.insert(entry);
    entry = joint;
    return true;
}

bool PhysxScene::createSphericalJoint(unsigned int jointId, unsigned int actorA,
                                      const osg::Matrixd& frameA, unsigned int actorB,
                                      const osg::Matrixd& frameB)
{
    return createJoint(
        jointId, actorA, frameA, actorB, frameB,
        [](PxRigidActor* a, const PxTransform& inA, PxRigidActor* b, const PxTransform& inB) {
            return PxSphericalJointCreate(*PhysxManager::physics(), a, inA, b, inB);
        });
}

bool PhysxScene::createDistanceJoint(unsigned int jointId, unsigned int actorA,
                                     const osg::Matrixd& frameA, unsigned int actorB,
                                     const osg::Matrixd& frameB)
{
    return createJoint(
        jointId, actorA, frameA, actorB, frameB,
        [](PxRigidActor* a, const PxTransform& inA, PxRigidActor* b, const PxTransform& inB) {
            return PxDistanceJointCreate(*PhysxManager::physics(), a, inA, b, inB);
        });
}

bool PhysxScene::createFixedJoint(unsigned int jointId, unsigned int actorA,
                                  const osg::Matrixd& frameA, unsigned int actorB,
                                  const osg::Matrixd& frameB)
{
    return createJoint(
        jointId, actorA, frameA, actorB, frameB,
        [](PxRigidActor* a, const PxTransform& inA, PxRigidActor* b, const PxTransform& inB) {
            return PxFixedJointCreate(*PhysxManager::physics(), a, inA, b, inB);
        });
}

bool PhysxScene::createD6Joint(unsigned int jointId, unsigned int actorA,
                               const osg::Matrixd& frameA, unsigned int actorB,
                               const osg::Matrixd& frameB)
{
    return createJoint(
        jointId, actorA, frameA, actorB, frameB,
        [](PxRigidActor* a, const PxTransform& inA, PxRigidActor* b, const PxTransform& inB) {
            return PxD6JointCreate(*PhysxManager::physics(), a, inA, b, inB);
        });
}

void PhysxScene::removeJoint(unsigned int jointId)
{
    PxJoint* joint = findJoint(jointId);
    if (!joint)
        return;
    namelessJoints.insert(joint);
    joints.erase(jointId);
    postTask([this, joint] {
        namelessJoints.erase(joint);
        releaseJoint(*joint);
    });
}

void PhysxScene::driveJoint(unsigned int jointId, const osg::Matrixd& target,
                            const osg::Vec3f& linearVelocity, const osg::Vec3f& angularVelocity)
{
    PxJoint* joint = findJoint(jointId);
    if (!joint)
        return;
    auto* d6 = joint->is<PxD6Joint>();
    if (!d6) {
        say("Joint ", jointId, " is not a D6 joint but a ", joint->getConcreteTypeName(),
            "! He cannot drive.");
        return;
    }
    postTask([d6, pose = toPxTransform(target), linear = toPxVec3(linearVelocity),
              angular = toPxVec3(angularVelocity)] {
        // A drive does not act on sleeping bodies.
        constexpr bool wakeBodies = true;
        d6->setDrivePosition(pose, wakeBodies);
        d6->setDriveVelocity(linear, angular, wakeBodies);
    });
}

bool PhysxScene::setD6Drive(unsigned int jointId, unsigned int driveIndex, float stiffness,
                            float damping, float forceLimit, bool acceleration)
{
    auto* joint = findJointOf<PxD6Joint>(jointId, "D6", "He cannot have a D6 drive.");
    if (!joint)
        return false;
    // PhysX takes these numbers as indices of arrays, unchecked.
    if (driveIndex >= PxD6Drive::eCOUNT) {
        say("Joint ", jointId, " has no drive ", driveIndex, ". I cannot set it.");
        return false;
    }
    joint->setDrive(static_cast<PxD6Drive::Enum>(driveIndex),
                    PxD6JointDrive(stiffness, damping, forceLimit, acceleration));
    return true;
}

bool PhysxScene::setD6Motion(unsigned int jointId, unsigned int axis, unsigned int motion,
                             float limit, float contactDistance)
{
    auto* joint = findJointOf<PxD6Joint>(jointId, "D6", "He cannot have a D6 joint limit.");
    if (!joint)
        return false;
    if (axis >= PxD6Axis::eCOUNT || motion > PxD6Motion::eFREE) {
        say("Joint ", jointId, " has no motion ", motion, " on an axis ", axis,
            ". I cannot set it.");
        return false;
    }
    joint->setMotion(static_cast<PxD6Axis::Enum>(axis), static_cast<PxD6Motion::Enum>(motion));
    if (motion == PxD6Motion::eLIMITED) {
        const PxTolerancesScale scale = PhysxManager::physics()->getTolerancesScale();
        PxJointLinearLimit linear(scale, limit);
        linear.contactDistance_deprecated = contactDistance == defaultContactDistance
                                                ? linearContactShare * scale.length
                                                : contactDistance;
        joint->setDistanceLimit(linear);
    }
    return true;
}

bool PhysxScene::setDistanceLimit(unsigned int jointId, float minDistance, float maxDistance,
                                  float tolerance, float stiffness)
{
    auto* joint =
        findJointOf<PxDistanceJoint>(jointId, "distance", "He cannot have a distance joint limit.");
    if (!joint)
        return false;
    // The joint is to be slack until the tolerance is used up as well. This solver lets nothing
    // pass the bare limits, and only leaves the tolerance out of the pull back: the board hangs on
    // joints that are stretched past their maximum in play, and it would stall at ten degrees. So
    // the tolerance goes into the limits, and must not count a second time.
    joint->setMinDistance(std::max(0.0f, minDistance - tolerance));
    joint->setDistanceJointFlag(PxDistanceJointFlag::eMIN_DISTANCE_ENABLED, minDistance >= 0.0f);
    joint->setMaxDistance(std::max(0.0f, maxDistance + tolerance));
    joint->setDistanceJointFlag(PxDistanceJointFlag::eMAX_DISTANCE_ENABLED, maxDistance >= 0.0f);
    joint->setTolerance(0.0f);
    joint->setStiffness(stiffness);
    return true;
}

bool PhysxScene::setSphericalLimit(unsigned int jointId, float yAngle, float zAngle,
                                   float contactDistance)
{
    auto* joint = findJointOf<PxSphericalJoint>(jointId, "spherical",
                                                "He cannot have a spherical joint limit.");
    if (!joint)
        return false;
    const float contact =
        contactDistance == defaultContactDistance
            ? std::min(largestConeContact, std::min(yAngle, zAngle) * coneContactShare)
            : contactDistance;
    PxJointLimitCone cone(yAngle, zAngle, contact);
    cone.bounceThreshold = coneBounceThreshold;
    joint->setLimitCone(cone);
    joint->setSphericalJointFlag(PxSphericalJointFlag::eLIMIT_ENABLED, true);
    return true;
}
