#include "BareWorld.h"

#include "physics/PhysxManager.h"
#include "physics/PhysxScene.h"

#include <vector>

using namespace physx;

namespace {

constexpr PxU32 workerThreads = 1;  // as many as the game has

PxScene* createScene(const PxScene& like, PxCpuDispatcher& dispatcher)
{
    PxPhysics& physics = *PhysxManager::physics();
    PxSceneDesc description(physics.getTolerancesScale());
    description.flags = like.getFlags();
    description.gravity = like.getGravity();
    description.cpuDispatcher = &dispatcher;
    description.filterShader = filterShader;
    return physics.createScene(description);
}

std::vector<PxRigidActor*> actorsOf(const PxScene& scene)
{
    const PxActorTypeFlags types = PxActorTypeFlag::eRIGID_STATIC | PxActorTypeFlag::eRIGID_DYNAMIC;
    std::vector<PxActor*> found(scene.getNbActors(types));
    scene.getActors(types, found.data(), PxU32(found.size()));
    std::vector<PxRigidActor*> actors;
    for (PxActor* actor : found)
        actors.push_back(actor->is<PxRigidActor>());
    return actors;
}

std::vector<PxJoint*> jointsOf(const PxScene& scene)
{
    std::vector<PxConstraint*> constraints(scene.getNbConstraints());
    scene.getConstraints(constraints.data(), PxU32(constraints.size()));
    std::vector<PxJoint*> joints;
    for (PxConstraint* constraint : constraints) {
        PxU32 type = 0;
        void* const owner = constraint->getExternalReference(type);
        if (type == PxConstraintExtIDs::eJOINT)
            joints.push_back(static_cast<PxJoint*>(owner));
    }
    return joints;
}

/// The two ends of a joint; a null actor is the world.
struct Ends
{
    PxRigidActor* first;
    PxTransform inFirst;
    PxRigidActor* second;
    PxTransform inSecond;
};

PxJoint* copySpherical(const PxSphericalJoint& original, const Ends& ends)
{
    auto* copy = PxSphericalJointCreate(*PhysxManager::physics(), ends.first, ends.inFirst,
                                        ends.second, ends.inSecond);
    copy->setLimitCone(original.getLimitCone());
    copy->setSphericalJointFlags(original.getSphericalJointFlags());
    return copy;
}

PxJoint* copyDistance(const PxDistanceJoint& original, const Ends& ends)
{
    auto* copy = PxDistanceJointCreate(*PhysxManager::physics(), ends.first, ends.inFirst,
                                       ends.second, ends.inSecond);
    copy->setMinDistance(original.getMinDistance());
    copy->setMaxDistance(original.getMaxDistance());
    copy->setTolerance(original.getTolerance());
    copy->setStiffness(original.getStiffness());
    copy->setDistanceJointFlags(original.getDistanceJointFlags());
    return copy;
}

PxJoint* copyD6(const PxD6Joint& original, const Ends& ends)
{
    auto* copy = PxD6JointCreate(*PhysxManager::physics(), ends.first, ends.inFirst, ends.second,
                                 ends.inSecond);
    for (int axis = 0; axis < PxD6Axis::eCOUNT; ++axis) {
        const auto which = static_cast<PxD6Axis::Enum>(axis);
        copy->setMotion(which, original.getMotion(which));
    }
    for (int drive = 0; drive < PxD6Drive::eCOUNT; ++drive) {
        const auto which = static_cast<PxD6Drive::Enum>(drive);
        copy->setDrive(which, original.getDrive(which));
    }
    copy->setDistanceLimit(original.getDistanceLimit());
    copy->setDrivePosition(original.getDrivePosition());
    return copy;
}

PxJoint* copyJoint(PxJoint& original, const Ends& ends)
{
    if (const auto* spherical = original.is<PxSphericalJoint>())
        return copySpherical(*spherical, ends);
    if (const auto* distance = original.is<PxDistanceJoint>())
        return copyDistance(*distance, ends);
    if (const auto* d6 = original.is<PxD6Joint>())
        return copyD6(*d6, ends);
    return PxFixedJointCreate(*PhysxManager::physics(), ends.first, ends.inFirst, ends.second,
                              ends.inSecond);
}

}  // namespace

BareWorld::BareWorld(PxScene& original)
    : dispatcher(PxDefaultCpuDispatcherCreate(workerThreads)),
      scene(createScene(original, *dispatcher))
{
    copyActors(original);
    copyJoints(original);
}

BareWorld::~BareWorld()
{
    for (PxJoint* joint : jointsOf(*scene))
        joint->release();
    for (PxRigidActor* actor : actorsOf(*scene))
        actor->release();
    scene->release();
    dispatcher->release();
}

void BareWorld::copyActors(PxScene& original)
{
    PxPhysics& physics = *PhysxManager::physics();
    for (PxRigidActor* actor : actorsOf(original)) {
        const PxTransform pose = actor->getGlobalPose();
        PxRigidActor* copy = nullptr;
        if (const auto* body = actor->is<PxRigidDynamic>())
            copy = PxCloneDynamic(physics, pose, *body);
        else
            copy = PxCloneStatic(physics, pose, *actor);
        copies[actor] = copy;
        scene->addActor(*copy);
    }
}

void BareWorld::copyJoints(PxScene& original)
{
    for (PxJoint* joint : jointsOf(original)) {
        PxRigidActor* first = nullptr;
        PxRigidActor* second = nullptr;
        joint->getActors(first, second);
        const Ends ends{copyOf(first), joint->getLocalPose(PxJointActorIndex::eACTOR0),
                        copyOf(second), joint->getLocalPose(PxJointActorIndex::eACTOR1)};
        copyJoint(*joint, ends)->setConstraintFlags(joint->getConstraintFlags());
    }
}

PxRigidActor* BareWorld::copyOf(PxRigidActor* original) const
{
    const auto found = copies.find(original);
    return found == copies.end() ? nullptr : found->second;
}

void BareWorld::step(float seconds)
{
    constexpr bool block = true;
    scene->simulate(seconds);
    scene->fetchResults(block);
}

PxScene& gameScene()
{
    PxScene* scene = nullptr;
    PhysxManager::physics()->getScenes(&scene, 1);
    return *scene;
}
