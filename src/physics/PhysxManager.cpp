#include "physics/PhysxManager.h"

#include "base/Say.h"

#include <PxPhysicsAPI.h>
#include <osg/ref_ptr>

using namespace physx;

namespace {

// What PhysX tunes its tolerances to: a world of objects of one unit that move ten units a second.
constexpr float typicalLength = 1.0f;
constexpr float typicalSpeed = 10.0f;

PxDefaultErrorCallback& errorCallback()
{
    static PxDefaultErrorCallback callback;
    return callback;
}

PxDefaultAllocator& allocator()
{
    static PxDefaultAllocator instance;
    return instance;
}

PxTolerancesScale tolerancesScale()
{
    PxTolerancesScale scale;
    scale.length = typicalLength;
    scale.speed = typicalSpeed;
    return scale;
}

}  // namespace

PhysxManager* PhysxManager::instance()
{
    // The foundation is never released, but the physics object is, at process end: both of these
    // have to outlive the manager, thus to be made before it.
    errorCallback();
    allocator();
    static osg::ref_ptr<PhysxManager> manager = new PhysxManager;
    return manager.get();
}

PhysxManager::PhysxManager()
{
    createFoundation() && createProfiling() && createPhysics() && createCooking() &&
        initExtensions();
}

PhysxManager::~PhysxManager()
{
    // Takes down a scene that is still alive: the game is not destroyed at a normal exit.
    if (physics_)
        physics_->release();
    if (pvd)
        pvd->release();
    // The rest goes with the process; a leak checker has to see that it is still held.
    [[maybe_unused]] static PxCooking* volatile unreleased = nullptr;
    unreleased = cooking_;
}

bool PhysxManager::createFoundation()
{
    foundation = PxCreateFoundation(PX_PHYSICS_VERSION, allocator(), errorCallback());
    if (!foundation)
        say("Unable to initialize PhysX foundation");
    return foundation;
}

bool PhysxManager::createProfiling()
{
    pvd = PxCreatePvd(*foundation);
    // The words are those of the profiling object of older versions, which people search for.
    if (!pvd)
        say("PxProfileZoneManager::createProfileZoneManager failed!");
    return pvd;
}

bool PhysxManager::createPhysics()
{
    constexpr bool trackMemory = true;
    physics_ =
        PxCreateBasePhysics(PX_PHYSICS_VERSION, *foundation, tolerancesScale(), trackMemory, pvd);
    if (!physics_) {
        say("Unable to initialize PhysX SDK");
        return false;
    }
    PxRegisterArticulationsReducedCoordinate(*physics_);
    PxRegisterHeightFields(*physics_);
    return true;
}

bool PhysxManager::createCooking()
{
    cooking_ = PxCreateCooking(PX_PHYSICS_VERSION, *foundation,
                               PxCookingParams(physics_->getTolerancesScale()));
    if (!cooking_)
        say("Unable to initialize PhysX cooking");
    return cooking_;
}

bool PhysxManager::initExtensions()
{
    const bool done = PxInitExtensions(*physics_, pvd);
    if (!done)
        say("Unable to initialize PhysX extensions");
    return done;
}
