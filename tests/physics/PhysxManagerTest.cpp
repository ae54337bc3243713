#include "physics/PhysxManager.h"

#include "base/WorldNumbers.h"
#include "physics/PhysxTestScene.h"

#include <PxPhysicsAPI.h>

#include <cstdlib>

using namespace physx;

namespace {

/// Keeps PhysX's own report of the rival foundation out of the output.
class SilentErrors : public PxErrorCallback
{
public:
    void reportError(PxErrorCode::Enum, const char*, const char*, int) override {}
};

/// A process in which the foundation is taken when the manager comes to make its own.
void createBesideARival()
{
    static PxDefaultAllocator allocator;
    static SilentErrors errors;
    if (!PxCreateFoundation(PX_PHYSICS_VERSION, allocator, errors))
        std::exit(2);
    testing::internal::CaptureStdout();
    const bool null = !PhysxManager::physics() && !PhysxManager::cooking();
    PhysxManager::instance();
    std::string printed = testing::internal::GetCapturedStdout();
    // What PhysX says through the default error callback bears the place in its source.
    const std::size_t own = printed.find("Unable to initialize PhysX foundation\n");
    const bool once =
        own != std::string::npos && printed.find("Unable", own + 1) == std::string::npos;
    std::exit(null && once ? 0 : 1);
}

void exitWithALiveScene()
{
    auto* scene = new TestScene;
    scene->ref();
    scene->createScene(osg::Vec3f(0, 0, -world::gravity));
    scene->createMaterial("holz", 0.2f, 0.05f, 0.0f);
    scene->createSphere(0, world::ballRadius, world::ballDensity, "holz", 0, kind::ball,
                        kind::ballMask);
    scene->steps(3);
    std::exit(0);
}

}  // namespace

TEST(PhysxManager, IsCreatedOnce)
{
    PhysxManager* first = PhysxManager::instance();
    PxPhysics* physics = PhysxManager::physics();
    PxCooking* cooking = PhysxManager::cooking();
    ASSERT_TRUE(physics);
    ASSERT_TRUE(cooking);
    testing::internal::CaptureStdout();
    EXPECT_EQ(PhysxManager::instance(), first);
    EXPECT_EQ(PhysxManager::physics(), physics);
    EXPECT_EQ(PhysxManager::cooking(), cooking);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(PhysxManager, IsTunedToAWorldOfOneUnitAndTenUnitsASecond)
{
    const PxTolerancesScale scale = PhysxManager::physics()->getTolerancesScale();
    EXPECT_EQ(scale.length, 1.0f);
    EXPECT_EQ(scale.speed, 10.0f);
}

TEST(PhysxManager, HandsOutMemoryAlignedToSixteenBytes)
{
    PhysxManager::instance();
    PxAllocatorCallback& allocator = *PxGetAllocatorCallback();
    for (std::size_t size : {1u, 17u, 100u}) {
        SCOPED_TRACE(size);
        void* memory = allocator.allocate(size, "test", __FILE__, __LINE__);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % 16, 0u);
        allocator.deallocate(memory);
    }
}

TEST(PhysxManagerDeathTest, SaysOneLineAndStopsWhenTheFoundationCannotBeMade)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(createBesideARival(), testing::ExitedWithCode(0), "");
}

TEST(PhysxManagerDeathTest, TakesALiveSceneDownAtTheEndOfTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitWithALiveScene(), testing::ExitedWithCode(0), "");
}
