#pragma once

#include <osg/Referenced>

namespace physx {
class PxCooking;
class PxFoundation;
class PxPhysics;
class PxPvd;
}  // namespace physx

/// What of PhysX lives as long as the process: foundation, profiling, physics object, cooking and
/// the extensions. PhysX allows one foundation a process, hence the singleton.
///
/// A step of the creation that fails prints one line, leaves its pointer and all later ones null,
/// and is not reported again.
class PhysxManager : public osg::Referenced
{
public:
    /// The first call creates everything, on the main thread; it is not guarded against a rival.
    static PhysxManager* instance();

    static physx::PxPhysics* physics() { return instance()->physics_; }
    static physx::PxCooking* cooking() { return instance()->cooking_; }

protected:
    PhysxManager();
    ~PhysxManager() override;

private:
    bool createFoundation();
    bool createProfiling();
    bool createPhysics();
    bool createCooking();
    bool initExtensions();

    physx::PxFoundation* foundation = nullptr;
    physx::PxPvd* pvd = nullptr;
    physx::PxPhysics* physics_ = nullptr;
    physx::PxCooking* cooking_ = nullptr;
};
