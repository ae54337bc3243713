#include "base/Say.h"
#include "physics/PhysxConversions.h"
#include "physics/PhysxLists.h"
#include "physics/PhysxManager.h"
#include "physics/PhysxScene.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

using namespace physx;

namespace {

constexpr double planeDensity = 0.0;      // a static actor is not weighed
constexpr PxU16 convexVertexLimit = 255;  // the most that PhysX takes
constexpr float flatness = 1e-6f;         // of a hull's volume in that of the cube around it

PxVec3 halfOf(const osg::Vec3f& size)
{
    const auto half = [](float edge) {
        return float(edge * 0.5);
    };
    return PxVec3(half(size.x()), half(size.y()), half(size.z()));
}

bool hasSolidShape(const PxRigidActor& actor)
{
    const std::vector<PxShape*> shapes = shapesOf(actor);
    return std::any_of(shapes.begin(), shapes.end(), [](const PxShape* shape) {
        return shape->getFlags().isSet(PxShapeFlag::eSIMULATION_SHAPE);
    });
}

/// The point with the largest measure.
template <typename Measure>
PxVec3 farthest(const std::vector<PxVec3>& points, const Measure& measure)
{
    return *std::max_element(
        points.begin(), points.end(),
        [&](const PxVec3& a, const PxVec3& b) { return measure(a) < measure(b); });
}

/// Points on one spot, line or plane have no hull. Cooking would give them a thickness of its own.
bool spanASolid(const std::vector<PxVec3>& points)
{
    if (points.empty())
        return false;
    for (const PxVec3& point : points)
        if (!point.isFinite())
            return false;
    const PxVec3& origin = points.front();
    const auto distance = [&](const PxVec3& p) {
        return (p - origin).magnitude();
    };
    const PxVec3 axis = farthest(points, distance) - origin;
    const auto offAxis = [&](const PxVec3& p) {
        return axis.cross(p - origin).magnitude();
    };
    const PxVec3 normal = axis.cross(farthest(points, offAxis) - origin);
    const auto offPlane = [&](const PxVec3& p) {
        return std::abs(normal.dot(p - origin));
    };
    const float extent = axis.magnitude();
    const float volume = offPlane(farthest(points, offPlane));
    return PxIsFinite(volume) && volume > flatness * extent * extent * extent;
}

std::vector<PxVec3> pointsOf(const osg::Vec3Array* vertices)
{
    std::vector<PxVec3> points;
    if (vertices)
        std::transform(vertices->begin(), vertices->end(), std::back_inserter(points), toPxVec3);
    return points;
}

/// Null when the points have no hull.
PxConvexMesh* cookConvex(const std::vector<PxVec3>& points)
{
    if (!spanASolid(points))
        return nullptr;
    PxConvexMeshDesc description;
    description.points.count = PxU32(points.size());
    description.points.stride = sizeof(PxVec3);
    description.points.data = points.data();
    description.flags = PxConvexFlag::eCOMPUTE_CONVEX;
    description.vertexLimit = convexVertexLimit;

    PxDefaultMemoryOutputStream cooked;
    if (!PhysxManager::cooking()->cookConvexMesh(description, cooked))
        return nullptr;
    PxDefaultMemoryInputData input(cooked.getData(), cooked.getSize());
    return PhysxManager::physics()->createConvexMesh(input);
}

}  // namespace

PxRigidActor* PhysxScene::findActor(unsigned int id)
{
    const auto found = actors.find(id);
    if (found == actors.end()) {
        say("I do not know an actor with id ", id);
        return nullptr;
    }
    return found->second;
}

PxRigidDynamic* PhysxScene::createDynamicActor(unsigned int id, unsigned int motion)
{
    if (actors.count(id)) {
        say("There already is an actor with id ", id);
        return nullptr;
    }
    PxRigidDynamic* body = PhysxManager::physics()->createRigidDynamic(PxTransform(PxIdentity));
    if (!body) {
        say("Failed to create actor ", id);
        return nullptr;
    }
    actors.emplace(id, body);
    setMotion(id, motion);
    return body;
}

PxShape* PhysxScene::addShape(PxRigidActor* actor, const PxGeometry& geometry, std::string material,
                              const osg::Matrixd& localPose, unsigned int filterGroup,
                              unsigned int filterMask, bool trigger)
{
    const PxTransform pose = toPxTransform(localPose);
    PxMaterial* surface = materials[std::move(material)];
    const PxShapeFlags flags = PxShapeFlag::eSIMULATION_SHAPE | PxShapeFlag::eSCENE_QUERY_SHAPE |
                               PxShapeFlag::eVISUALIZATION;
    // The release build of PhysX has its argument checks compiled out: what it would refuse, it
    // would crash on.
    PxShape* shape = nullptr;
    if (surface && pose.isFinite() && PxGeometryQuery::isValid(geometry))
        shape = PxRigidActorExt::createExclusiveShape(*actor, geometry, *surface, flags);
    if (!shape) {
        say("Failed to create shape for actor");
        return nullptr;
    }
    shape->setLocalPose(pose);
    shape->setSimulationFilterData(PxFilterData(filterGroup, filterMask, 0, 0));
    if (trigger) {
        // PhysX refuses a shape that is both for a moment.
        shape->setFlag(PxShapeFlag::eSIMULATION_SHAPE, false);
        shape->setFlag(PxShapeFlag::eTRIGGER_SHAPE, true);
    }
    return shape;
}

PxShape* PhysxScene::addConvex(PxRigidActor* actor, const osg::Vec3Array* vertices,
                               std::string material, unsigned int filterGroup,
                               unsigned int filterMask, bool trigger)
{
    PxConvexMesh* mesh = cookConvex(pointsOf(vertices));
    PxShape* shape = addShape(actor, PxConvexMeshGeometry(mesh), std::move(material),
                              osg::Matrixd::identity(), filterGroup, filterMask, trigger);
    // The shape has taken a reference of its own.
    if (mesh)
        mesh->release();
    return shape;
}

void PhysxScene::addToScene(PxRigidActor* actor, double density)
{
    if (auto* body = actor->is<PxRigidDynamic>()) {
        // With nothing to weigh PhysX complains, and then does just this.
        if (hasSolidShape(*body)) {
            PxRigidBodyExt::updateMassAndInertia(*body, float(density), nullptr);
        } else {
            body->setMass(1.0f);
            body->setMassSpaceInertiaTensor(PxVec3(1.0f));
        }
    }
    scene->addActor(*actor);
}

bool PhysxScene::createActor(unsigned int id, unsigned int motion)
{
    return createDynamicActor(id, motion) != nullptr;
}

bool PhysxScene::addBoxShape(unsigned int id, const osg::Vec3f& size, std::string material,
                             const osg::Matrixd& localPose, unsigned int filterGroup,
                             unsigned int filterMask, bool trigger)
{
    PxRigidActor* actor = findActor(id);
    return actor && addShape(actor, PxBoxGeometry(halfOf(size)), std::move(material), localPose,
                             filterGroup, filterMask, trigger);
}

bool PhysxScene::addConvexShape(unsigned int id, osg::Vec3Array* vertices, std::string material,
                                unsigned int filterGroup, unsigned int filterMask, bool trigger)
{
    PxRigidActor* actor = findActor(id);
    return actor &&
           addConvex(actor, vertices, std::move(material), filterGroup, filterMask, trigger);
}

bool PhysxScene::finishActor(unsigned int id, double density)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return false;
    addToScene(actor, density);
    return true;
}

bool PhysxScene::createBox(unsigned int id, const osg::Vec3f& size, double density,
                           std::string material, unsigned int motion, unsigned int filterGroup,
                           unsigned int filterMask)
{
    PxRigidDynamic* body = createDynamicActor(id, motion);
    if (!body || !addShape(body, PxBoxGeometry(halfOf(size)), std::move(material),
                           osg::Matrixd::identity(), filterGroup, filterMask, false))
        return false;
    addToScene(body, density);
    return true;
}

bool PhysxScene::createSphere(unsigned int id, double radius, double density, std::string material,
                              unsigned int motion, unsigned int filterGroup,
                              unsigned int filterMask)
{
    PxRigidDynamic* body = createDynamicActor(id, motion);
    if (!body || !addShape(body, PxSphereGeometry(float(radius)), std::move(material),
                           osg::Matrixd::identity(), filterGroup, filterMask, false))
        return false;
    addToScene(body, density);
    return true;
}

bool PhysxScene::createConvex(unsigned int id, osg::Vec3Array* vertices, double density,
                              std::string material, unsigned int motion, unsigned int filterGroup,
                              unsigned int filterMask)
{
    PxRigidDynamic* body = createDynamicActor(id, motion);
    if (!body || !addConvex(body, vertices, std::move(material), filterGroup, filterMask, false))
        return false;
    addToScene(body, density);
    return true;
}

bool PhysxScene::createPlane(unsigned int id, std::string material, const osg::Vec3f& point,
                             const osg::Vec3f& normal, unsigned int filterGroup,
                             unsigned int filterMask)
{
    if (actors.count(id)) {
        say("There already is an actor with id ", id);
        return false;
    }
    const PxPlane plane(toPxVec3(normal), -(normal * point));
    const PxTransform pose = PxTransformFromPlaneEquation(plane);
    PxRigidStatic* actor =
        pose.isSane() ? PhysxManager::physics()->createRigidStatic(pose) : nullptr;
    if (!actor) {
        say("Failed to create actor ", id);
        return false;
    }
    actors.emplace(id, actor);
    const PxShape* shape = addShape(actor, PxPlaneGeometry(), std::move(material),
                                    osg::Matrixd::identity(), filterGroup, filterMask, false);
    addToScene(actor, planeDensity);
    return shape;
}

bool PhysxScene::setFamily(unsigned int id, unsigned int family)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return false;
    for (PxShape* shape : shapesOf(*actor)) {
        PxFilterData data = shape->getSimulationFilterData();
        data.word2 = family;
        shape->setSimulationFilterData(data);
    }
    return true;
}
