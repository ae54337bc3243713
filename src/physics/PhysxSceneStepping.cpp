#include "base/Say.h"
#include "physics/PhysxConversions.h"
#include "physics/PhysxManager.h"
#include "physics/PhysxScene.h"

#include <QMutexLocker>

#include <utility>

using namespace physx;

namespace {

constexpr PxU32 workerThreads = 1;

void releaseAll(const std::unordered_map<unsigned int, PxRigidActor*>& actors)
{
    for (const auto& [id, actor] : actors)
        actor->release();
}

}  // namespace

PxFilterFlags filterShader(PxFilterObjectAttributes attributes0, PxFilterData data0,
                           PxFilterObjectAttributes attributes1, PxFilterData data1,
                           PxPairFlags& pairFlags, const void*, PxU32)
{
    const bool match = (data0.word0 & data1.word1) != 0 && (data1.word0 & data0.word1) != 0;
    if (PxFilterObjectIsTrigger(attributes0) || PxFilterObjectIsTrigger(attributes1)) {
        if (match)
            pairFlags = PxPairFlag::eTRIGGER_DEFAULT;
        return PxFilterFlag::eDEFAULT;
    }
    if (data0.word2 != 0 && data0.word2 == data1.word2)
        return PxFilterFlag::eSUPPRESS;
    // PhysX finds no contacts at all for a pair that does not ask for discrete detection as well.
    pairFlags = PxPairFlag::eSOLVE_CONTACT | PxPairFlag::eDETECT_DISCRETE_CONTACT |
                PxPairFlag::eDETECT_CCD_CONTACT;
    if (match)
        pairFlags |= PxPairFlag::eNOTIFY_TOUCH_FOUND | PxPairFlag::eNOTIFY_CONTACT_POINTS;
    return PxFilterFlag::eDEFAULT;
}

bool PhysxScene::createScene(const osg::Vec3f& gravity)
{
    idCounter = 0;
    PxSceneDesc description(PhysxManager::physics()->getTolerancesScale());
    description.flags |= PxSceneFlag::eENABLE_CCD;
    description.gravity = toPxVec3(gravity);
    if (!description.cpuDispatcher)
        description.cpuDispatcher = PxDefaultCpuDispatcherCreate(workerThreads, nullptr);
    description.filterShader = filterShader;

    // The release build of PhysX leaves these checks out.
    scene = description.isValid() && description.gravity.isFinite()
                ? PhysxManager::physics()->createScene(description)
                : nullptr;
    if (!scene) {
        say("Unable to create Scene");
        return false;
    }
    // Draws nothing by itself; it is there for whoever connects a visual debugger.
    scene->setVisualizationParameter(PxVisualizationParameter::eJOINT_LOCAL_FRAMES, 1.0f);
    scene->setVisualizationParameter(PxVisualizationParameter::eJOINT_LIMITS, 1.0f);
    scene->setSimulationEventCallback(this);
    return true;
}

void PhysxScene::step(double dt)
{
    runTasks();
    constexpr bool controlSimulation = true;
    constexpr bool block = true;
    scene->simulate(float(dt), nullptr, nullptr, 0, controlSimulation);
    scene->fetchResults(block, nullptr);
}

void PhysxScene::postTask(std::function<void()> task)
{
    QMutexLocker locker(&taskMutex);
    tasks.push_back(std::move(task));
}

void PhysxScene::runTasks()
{
    QMutexLocker locker(&taskMutex);
    while (!tasks.empty()) {
        tasks.front()();
        tasks.pop_front();
    }
}

void PhysxScene::clear()
{
    idCounter = 0;
    // Joints first, so that none outlives its actors.
    for (const auto& [id, joint] : joints)
        joint->release();
    joints.clear();
    for (PxJoint* joint : namelessJoints)
        joint->release();
    namelessJoints.clear();

    releaseAll(actors);
    actors.clear();
    ccdBodies.clear();

    for (const auto& [name, material] : materials)
        if (material)
            material->release();
    materials.clear();

    // The queue points at what has just been released.
    std::deque<std::function<void()>> dropped;
    QMutexLocker locker(&taskMutex);
    tasks.swap(dropped);
    dropped.clear();
}
