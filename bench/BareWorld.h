#pragma once

#include <PxPhysicsAPI.h>

#include <unordered_map>

/// A physics world of its own with the same bodies, shapes and joints as the game's, and nothing
/// around them: no numbers, no queue, no events. What PhysX costs by itself.
class BareWorld
{
public:
    /// Copies all of `original` in its present state; hulls and materials are shared with it, so
    /// that it has to outlive the copy.
    explicit BareWorld(physx::PxScene& original);
    ~BareWorld();

    BareWorld(const BareWorld&) = delete;
    BareWorld& operator=(const BareWorld&) = delete;

    /// Null for an actor that is not of the original world.
    physx::PxRigidActor* copyOf(physx::PxRigidActor* original) const;

    void step(float seconds);

private:
    void copyActors(physx::PxScene& original);
    void copyJoints(physx::PxScene& original);

    physx::PxDefaultCpuDispatcher* dispatcher;
    physx::PxScene* scene;
    std::unordered_map<physx::PxRigidActor*, physx::PxRigidActor*> copies;
};

/// The world of the process's game.
physx::PxScene& gameScene();
