#pragma once

#include <PxPhysicsAPI.h>

#include <vector>

/// What PhysX hands out by buffers and counts, as vectors.
inline std::vector<physx::PxShape*> shapesOf(const physx::PxRigidActor& actor)
{
    std::vector<physx::PxShape*> shapes(actor.getNbShapes());
    actor.getShapes(shapes.data(), static_cast<physx::PxU32>(shapes.size()));
    return shapes;
}

inline std::vector<physx::PxJoint*> jointsOf(const physx::PxRigidActor& actor)
{
    std::vector<physx::PxConstraint*> constraints(actor.getNbConstraints());
    actor.getConstraints(constraints.data(), static_cast<physx::PxU32>(constraints.size()));

    std::vector<physx::PxJoint*> joints;
    for (physx::PxConstraint* constraint : constraints) {
        physx::PxU32 kind = 0;
        void* reference = constraint->getExternalReference(kind);
        if (kind == physx::PxConstraintExtIDs::eJOINT)
            joints.push_back(static_cast<physx::PxJoint*>(reference));
    }
    return joints;
}
