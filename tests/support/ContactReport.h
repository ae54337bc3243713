#pragma once

#include <PxPhysicsAPI.h>

#include <deque>
#include <vector>

/// A report of contacts as PhysX would make it, with the points and impulses of one's choice. The
/// points lie at the origin, their normals up.
class ContactReport
{
public:
    ContactReport(physx::PxRigidActor* first, physx::PxRigidActor* second)
    {
        header.actors[0] = first;
        header.actors[1] = second;
    }

    /// One pair of shapes with a point for each impulse.
    ContactReport& touch(physx::PxShape* first, physx::PxShape* second,
                         const std::vector<float>& impulses)
    {
        Stream& stream = streams.emplace_back();
        stream.patch.normal = physx::PxVec3(0.0f, 0.0f, 1.0f);
        stream.patch.nbContacts = physx::PxU8(impulses.size());
        stream.points.resize(impulses.size());
        stream.impulses = impulses;

        physx::PxContactPair pair;
        pair.shapes[0] = first;
        pair.shapes[1] = second;
        pair.contactPatches = reinterpret_cast<const physx::PxU8*>(&stream.patch);
        pair.contactPoints = reinterpret_cast<const physx::PxU8*>(stream.points.data());
        pair.contactImpulses = stream.impulses.data();
        pair.contactCount = physx::PxU8(impulses.size());
        pair.patchCount = impulses.empty() ? 0 : 1;
        pair.requiredBufferSize = 0;
        pair.contactStreamSize = 0;
        pair.events = physx::PxPairFlags();
        pair.internalData[0] = 0;
        pair.internalData[1] = 0;
        pair.flags = physx::PxContactPairFlag::eINTERNAL_HAS_IMPULSES;
        pairs.push_back(pair);
        return *this;
    }

    physx::PxU32 count() const { return physx::PxU32(pairs.size()); }

    physx::PxContactPairHeader header;
    std::vector<physx::PxContactPair> pairs;

private:
    struct Stream
    {
        physx::PxContactPatch patch;
        std::vector<physx::PxContact> points;
        std::vector<float> impulses;
    };

    std::deque<Stream> streams;  // the pairs point into it
};
