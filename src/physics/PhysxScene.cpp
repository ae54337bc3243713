#include "physics/PhysxScene.h"

#include "base/Say.h"
#include "physics/PhysxManager.h"

#include <utility>

using namespace physx;

namespace {

/// PhysX's own conditions on a material, which its release build does not check.
bool isFriction(float value)
{
    return PxIsFinite(value) && value >= 0.0f;
}

bool isRestitution(float value)
{
    return value >= 0.0f && value <= 1.0f;
}

unsigned int groupOf(const PxShape* shape)
{
    return shape->getSimulationFilterData().word0;
}

}  // namespace

PhysxScene::PhysxScene() = default;

PhysxScene::~PhysxScene()
{
    clear();
    if (scene)
        scene->release();
}

unsigned int PhysxScene::nextId()
{
    return idCounter++;
}

bool PhysxScene::createMaterial(std::string name, float staticFriction, float dynamicFriction,
                                float restitution)
{
    if (materials.count(name)) {
        say("There already is a material named ", name);
        return false;
    }
    PxMaterial* material = nullptr;
    if (isFriction(staticFriction) && isFriction(dynamicFriction) && isRestitution(restitution))
        material =
            PhysxManager::physics()->createMaterial(staticFriction, dynamicFriction, restitution);
    if (!material) {
        say("Failed to create material");
        return false;
    }
    materials.emplace(std::move(name), material);
    return true;
}

bool PhysxScene::isContactBetween(unsigned int idA, unsigned int idB,
                                  const PxContactPairHeader& header)
{
    return (isActor(idA, header.actors[0]) && isActor(idB, header.actors[1])) ||
           (isActor(idA, header.actors[1]) && isActor(idB, header.actors[0]));
}

bool PhysxScene::isContactOf(unsigned int id, const PxContactPairHeader& header)
{
    return isActor(id, header.actors[0]) || isActor(id, header.actors[1]);
}

bool PhysxScene::isActor(unsigned int id, const PxActor* actor)
{
    const auto found = actors.find(id);
    return found != actors.end() && found->second == actor;
}

bool PhysxScene::isShapeContactBetween(unsigned int groupA, unsigned int groupB,
                                       const PxContactPair& pair)
{
    const unsigned int group0 = groupOf(pair.shapes[0]);
    const unsigned int group1 = groupOf(pair.shapes[1]);
    return (group0 == groupA && group1 == groupB) || (group0 == groupB && group1 == groupA);
}

bool PhysxScene::isShapeContactOf(unsigned int group, const PxContactPair& pair)
{
    return groupOf(pair.shapes[0]) == group || groupOf(pair.shapes[1]) == group;
}
