#include "base/Say.h"
#include "physics/PhysxConversions.h"
#include "physics/PhysxLists.h"
#include "physics/PhysxScene.h"

#include <unordered_set>
#include <vector>

using namespace physx;

namespace {

const char* const cannotForce = " is not dynamic. The force cannot be with him.";
const char* const ignoresForces = " is kinematic. He won't respond to forces.";
const char* const cannotSetVelocity = " is not dynamic. I cannot set a velocity.";
const char* const ignoresVelocities = " is kinematic. He won't respond to velocities.";

bool isKinematic(const PxRigidDynamic& body)
{
    return body.getRigidBodyFlags().isSet(PxRigidBodyFlag::eKINEMATIC);
}

/// Is the body kept from falling?
bool isHeld(const PxRigidDynamic& body)
{
    return isKinematic(body) || body.getActorFlags().isSet(PxActorFlag::eDISABLE_GRAVITY);
}

/// The actor as a body, or null after a complaint that ends in the given words.
PxRigidDynamic* asBody(PxRigidActor* actor, unsigned int id, const char* notDynamic)
{
    PxRigidDynamic* body = actor->is<PxRigidDynamic>();
    if (!body)
        say("The actor with id ", id, notDynamic);
    return body;
}

PxRigidDynamic* asMovableBody(PxRigidActor* actor, unsigned int id, const char* notDynamic,
                              const char* kinematic)
{
    PxRigidDynamic* body = asBody(actor, id, notDynamic);
    if (body && isKinematic(*body)) {
        say("The actor with id ", id, kinematic);
        return nullptr;
    }
    return body;
}

/// Forces go into a body's simulation state, which it has only in a scene; an actor whose shape
/// failed never gets there.
bool isInScene(const PxRigidActor& actor)
{
    return actor.getScene() != nullptr;
}

/// Everything that is tied to the body so that it has no way of its own through the world.
std::vector<PxRigidDynamic*> attachedTo(const PxRigidActor& body)
{
    std::vector<PxRigidDynamic*> attached;
    std::unordered_set<const PxRigidActor*> known;
    for (const PxJoint* joint : jointsOf(body)) {
        const PxType type = joint->getConcreteType();
        if (type != PxJointConcreteType::eFIXED && type != PxJointConcreteType::eD6)
            continue;
        PxRigidActor* pair[2];
        joint->getActors(pair[0], pair[1]);
        PxRigidActor* partner = pair[0] == &body ? pair[1] : pair[0];
        PxRigidDynamic* other = partner ? partner->is<PxRigidDynamic>() : nullptr;
        // A body in its lock is tied twice.
        if (other && known.insert(other).second)
            attached.push_back(other);
    }
    return attached;
}

PxVec3 massCentre(const PxRigidBody& body)
{
    return body.getGlobalPose().transform(body.getCMassLocalPose().p);
}

/// Makes the follower move as if it were a part of the leader.
void takeMotionOver(const PxRigidDynamic& leader, PxRigidDynamic& follower)
{
    if (isKinematic(follower))
        return;
    const PxVec3 spin = leader.getAngularVelocity();
    const PxVec3 arm = massCentre(follower) - massCentre(leader);
    follower.setLinearVelocity(leader.getLinearVelocity() + spin.cross(arm));
    follower.setAngularVelocity(spin);
}

}  // namespace

void PhysxScene::setPose(unsigned int id, const osg::Matrixd& pose)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([actor, target = toPxTransform(pose)] {
        if (target.isFinite())
            actor->setGlobalPose(target, true);
    });
}

void PhysxScene::setPoseWithAttached(unsigned int id, const osg::Matrixd& pose)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([actor, target = toPxTransform(pose)] {
        if (!target.isFinite())
            return;
        const PxTransform move = target.getNormalized() * actor->getGlobalPose().getInverse();
        actor->setGlobalPose(target, true);
        const auto* leader = actor->is<PxRigidDynamic>();
        for (PxRigidDynamic* attached : attachedTo(*actor)) {
            attached->setGlobalPose(move * attached->getGlobalPose(), true);
            if (leader)
                takeMotionOver(*leader, *attached);
        }
    });
}

void PhysxScene::addForce(unsigned int id, const osg::Vec3f& force, unsigned int forceMode,
                          bool wake)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([id, actor, push = toPxVec3(force), forceMode, wake] {
        PxRigidDynamic* body = asMovableBody(actor, id, cannotForce, ignoresForces);
        if (body && isInScene(*body) && push.isFinite())
            body->addForce(push, static_cast<PxForceMode::Enum>(forceMode), wake);
    });
}

void PhysxScene::addTorque(unsigned int id, const osg::Vec3f& torque, unsigned int forceMode,
                           bool wake)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([id, actor, twist = toPxVec3(torque), forceMode, wake] {
        PxRigidDynamic* body = asMovableBody(actor, id, cannotForce, ignoresForces);
        if (body && isInScene(*body) && twist.isFinite())
            body->addTorque(twist, static_cast<PxForceMode::Enum>(forceMode), wake);
    });
}

void PhysxScene::clearForce(unsigned int id, unsigned int forceMode)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body = actor ? asMovableBody(actor, id, cannotForce, ignoresForces) : nullptr;
    if (!body)
        return;
    postTask([body, forceMode] {
        if (isInScene(*body) && !isKinematic(*body))
            body->clearForce(static_cast<PxForceMode::Enum>(forceMode));
    });
}

void PhysxScene::setLinearVelocity(unsigned int id, const osg::Vec3f& velocity, bool wake)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([id, actor, target = toPxVec3(velocity), wake] {
        PxRigidDynamic* body = asMovableBody(actor, id, cannotSetVelocity, ignoresVelocities);
        if (body && target.isFinite())
            body->setLinearVelocity(target, wake);
    });
}

void PhysxScene::setAngularVelocity(unsigned int id, const osg::Vec3f& velocity, bool wake)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([id, actor, target = toPxVec3(velocity), wake] {
        PxRigidDynamic* body = asMovableBody(actor, id, cannotSetVelocity, ignoresVelocities);
        if (body && target.isFinite())
            body->setAngularVelocity(target, wake);
    });
}

osg::Vec3f PhysxScene::linearVelocity(unsigned int id)
{
    PxRigidActor* actor = findActor(id);
    const PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. I cannot read a velocity.") : nullptr;
    return body ? toOsgVec3(body->getLinearVelocity()) : osg::Vec3f();
}

bool PhysxScene::setAngularDamping(unsigned int id, float damping)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. He can't have damping.") : nullptr;
    if (!body)
        return false;
    body->setAngularDamping(damping);
    return true;
}

bool PhysxScene::setMaxAngularVelocity(unsigned int id, float velocity)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. He cannot have a maximum angular velocity.")
              : nullptr;
    if (!body)
        return false;
    body->setMaxAngularVelocity(velocity);
    return true;
}

void PhysxScene::setCcdEnabled(unsigned int id, bool enabled)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. I cannot use CCD.") : nullptr;
    if (!body)
        return;
    postTask([this, body, enabled] {
        if (enabled)
            ccdBodies.insert(body);
        else
            ccdBodies.erase(body);
        applyCcd(*body);
    });
}

void PhysxScene::applyCcd(PxRigidDynamic& body)
{
    body.setRigidBodyFlag(PxRigidBodyFlag::eENABLE_CCD,
                          ccdBodies.count(&body) && !isKinematic(body));
}

void PhysxScene::setMotion(unsigned int id, unsigned int motion)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. I cannot respond to forces.") : nullptr;
    if (body)
        postTask([this, body, motion] { applyMotion(*body, motion); });
}

void PhysxScene::applyMotion(PxRigidDynamic& body, unsigned int motion)
{
    const bool wasHeld = isHeld(body);
    switch (motion) {
    case motionDynamic:
    case motionWithoutGravity:
        body.setRigidBodyFlag(PxRigidBodyFlag::eKINEMATIC, false);
        body.setActorFlag(PxActorFlag::eDISABLE_GRAVITY, motion == motionWithoutGravity);
        applyCcd(body);
        // Flags wake nobody: asleep in mid-air, the body would hang there for good.
        if (wasHeld && !isHeld(body) && isInScene(body))
            body.wakeUp();
        break;
    case motionKinematic:
        // Both flags at once make PhysX complain, be it for a moment.
        body.setRigidBodyFlag(PxRigidBodyFlag::eENABLE_CCD, false);
        body.setRigidBodyFlag(PxRigidBodyFlag::eKINEMATIC, true);
        break;
    default:
        break;
    }
}

void PhysxScene::setCollisionEnabled(unsigned int id, bool enabled)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([actor, enabled] {
        for (PxShape* shape : shapesOf(*actor))
            if (!shape->getFlags().isSet(PxShapeFlag::eTRIGGER_SHAPE))
                shape->setFlag(PxShapeFlag::eSIMULATION_SHAPE, enabled);
    });
}
