#include "physics/PhysxConversions.h"
#include "physics/PhysxManager.h"
#include "physics/PhysxMessages.h"
#include "physics/PhysxScene.h"

#include <algorithm>

#include <cmath>
#include <utility>

using namespace physx;

namespace {
enum Motion : unsigned int { Dynamic = 0, Weightless = 1, Kinematic = 2 };

constexpr double planeDensity = 0.0;      // a static actor is not weighed
constexpr PxU16 convexVertexLimit = 255;  // the most that PhysX takes

const char* const cannotForce = " is not dynamic. The force cannot be with him.";
const char* const ignoresForces = " is kinematic. He won't respond to forces.";
const char* const cannotSetVelocity = " is not dynamic. I cannot set a velocity.";
const char* const ignoresVelocities = " is kinematic. He won't respond to velocities.";

PxVec3 halfOf(const osg::Vec3f& size)
{
    const auto half = [](float edge) {
        return static_cast<float>(edge * 0.5);
    };
    return PxVec3(half(size.x()), half(size.y()), half(size.z()));
}

bool isKinematic(const PxRigidDynamic& body)
{
    return body.getRigidBodyFlags().isSet(PxRigidBodyFlag::eKINEMATIC);
}

/// The actor as a body, or null after a complaint that ends in the given words.
PxRigidDynamic* asBody(PxRigidActor* actor, unsigned int id, const char* notDynamic)
{
    PxRigidDynamic* body = actor->is<PxRigidDynamic>();
    if (!body)
        say("The actor with id ", id, notDynamic);
    return body;
}

PxRigidDynamic* asMovableBody(PxRigidActor* actor, unsigned int id, const char* notDynamic,
                              const char* kinematic)
{
    PxRigidDynamic* body = asBody(actor, id, notDynamic);
    if (body && isKinematic(*body)) {
        say("The actor with id ", id, kinematic);
        return nullptr;
    }
    return body;
}

/// Forces go into a body's simulation state, which it has only in a scene; an actor whose shape
/// failed never gets there.
bool isInScene(const PxRigidActor& actor)
{
    return actor.getScene() != nullptr;
}

bool hasSolidShape(const PxRigidActor& actor)
{
    std::vector<PxShape*> shapes(actor.getNbShapes());
    actor.getShapes(shapes.data(), static_cast<PxU32>(shapes.size()));
    return std::any_of(shapes.begin(), shapes.end(), [](const PxShape* shape) {
        return shape->getFlags().isSet(PxShapeFlag::eSIMULATION_SHAPE);
    });
}

bool areFinite(const osg::Vec3Array& vertices)
{
    return std::all_of(vertices.begin(), vertices.end(),
                       [](const osg::Vec3f& vertex) { return toPxVec3(vertex).isFinite(); });
}

PxConvexMesh* cookConvex(const osg::Vec3Array& vertices)
{
    std::vector<PxVec3> points;
    points.reserve(vertices.size());
    for (const osg::Vec3f& vertex : vertices)
        points.push_back(toPxVec3(vertex));

    PxConvexMeshDesc description;
    description.points.count = static_cast<PxU32>(points.size());
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

/// Everything that is tied to the body so that it has no way of its own through the world.
std::vector<PxRigidDynamic*> attachedTo(const PxRigidActor& body)
{
    std::vector<PxConstraint*> constraints(body.getNbConstraints());
    body.getConstraints(constraints.data(), static_cast<PxU32>(constraints.size()));

    std::vector<PxRigidDynamic*> attached;
    for (PxConstraint* constraint : constraints) {
        PxU32 kind = 0;
        void* reference = constraint->getExternalReference(kind);
        if (kind != PxConstraintExtIDs::eJOINT)
            continue;
        const PxType type = static_cast<PxJoint*>(reference)->getConcreteType();
        if (type != PxJointConcreteType::eFIXED && type != PxJointConcreteType::eD6)
            continue;
        PxRigidActor* pair[2];
        constraint->getActors(pair[0], pair[1]);
        PxRigidActor* partner = pair[0] == &body ? pair[1] : pair[0];
        PxRigidDynamic* other = partner ? partner->is<PxRigidDynamic>() : nullptr;
        // A body in its lock is tied twice.
        if (other && std::find(attached.begin(), attached.end(), other) == attached.end())
            attached.push_back(other);
    }
    return attached;
}

PxVec3 massCentre(const PxRigidBody& body)
{
    return body.getGlobalPose().transform(body.getCMassLocalPose().p);
}

/// Makes the follower move as if it were a part of the leader.
void takeMotionOver(const PxRigidDynamic& leader, PxRigidDynamic& follower)
{
    if (isKinematic(follower))
        return;
    const PxVec3 spin = leader.getAngularVelocity();
    const PxVec3 arm = massCentre(follower) - massCentre(leader);
    follower.setLinearVelocity(leader.getLinearVelocity() + spin.cross(arm));
    follower.setAngularVelocity(spin);
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
    PxConvexMesh* mesh = nullptr;
    if (vertices && !vertices->empty() && areFinite(*vertices))
        mesh = cookConvex(*vertices);
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
            PxRigidBodyExt::updateMassAndInertia(*body, static_cast<float>(density), nullptr);
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
    if (!body || !addShape(body, PxSphereGeometry(static_cast<float>(radius)), std::move(material),
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

void PhysxScene::setPose(unsigned int id, const osg::Matrixd& pose)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([actor, target = toPxTransform(pose)] {
        if (target.isFinite())
            actor->setGlobalPose(target, true);
    });
}

void PhysxScene::setPoseWithAttached(unsigned int id, const osg::Matrixd& pose)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([actor, target = toPxTransform(pose)] {
        if (!target.isFinite())
            return;
        const PxTransform move = target.getNormalized() * actor->getGlobalPose().getInverse();
        actor->setGlobalPose(target, true);
        const auto* leader = actor->is<PxRigidDynamic>();
        for (PxRigidDynamic* attached : attachedTo(*actor)) {
            attached->setGlobalPose(move * attached->getGlobalPose(), true);
            if (leader)
                takeMotionOver(*leader, *attached);
        }
    });
}

void PhysxScene::addForce(unsigned int id, const osg::Vec3f& force, unsigned int forceMode,
                          bool wake)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([id, actor, push = toPxVec3(force), forceMode, wake] {
        PxRigidDynamic* body = asMovableBody(actor, id, cannotForce, ignoresForces);
        if (body && isInScene(*body) && push.isFinite())
            body->addForce(push, static_cast<PxForceMode::Enum>(forceMode), wake);
    });
}

void PhysxScene::addTorque(unsigned int id, const osg::Vec3f& torque, unsigned int forceMode,
                           bool wake)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([id, actor, twist = toPxVec3(torque), forceMode, wake] {
        PxRigidDynamic* body = asMovableBody(actor, id, cannotForce, ignoresForces);
        if (body && isInScene(*body) && twist.isFinite())
            body->addTorque(twist, static_cast<PxForceMode::Enum>(forceMode), wake);
    });
}

void PhysxScene::clearForce(unsigned int id, unsigned int forceMode)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body = actor ? asMovableBody(actor, id, cannotForce, ignoresForces) : nullptr;
    if (!body)
        return;
    postTask([body, forceMode] {
        if (isInScene(*body) && !isKinematic(*body))
            body->clearForce(static_cast<PxForceMode::Enum>(forceMode));
    });
}

void PhysxScene::setLinearVelocity(unsigned int id, const osg::Vec3f& velocity, bool wake)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([id, actor, target = toPxVec3(velocity), wake] {
        PxRigidDynamic* body = asMovableBody(actor, id, cannotSetVelocity, ignoresVelocities);
        if (body && target.isFinite())
            body->setLinearVelocity(target, wake);
    });
}

void PhysxScene::setAngularVelocity(unsigned int id, const osg::Vec3f& velocity, bool wake)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([id, actor, target = toPxVec3(velocity), wake] {
        PxRigidDynamic* body = asMovableBody(actor, id, cannotSetVelocity, ignoresVelocities);
        if (body && target.isFinite())
            body->setAngularVelocity(target, wake);
    });
}

osg::Vec3f PhysxScene::linearVelocity(unsigned int id)
{
    PxRigidActor* actor = findActor(id);
    const PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. I cannot read a velocity.") : nullptr;
    return body ? toOsgVec3(body->getLinearVelocity()) : osg::Vec3f();
}

bool PhysxScene::setAngularDamping(unsigned int id, float damping)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. He can't have damping.") : nullptr;
    if (!body)
        return false;
    body->setAngularDamping(damping);
    return true;
}

bool PhysxScene::setMaxAngularVelocity(unsigned int id, float velocity)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. He cannot have a maximum angular velocity.")
              : nullptr;
    if (!body)
        return false;
    body->setMaxAngularVelocity(velocity);
    return true;
}

void PhysxScene::setCcdEnabled(unsigned int id, bool enabled)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. I cannot use CCD.") : nullptr;
    if (!body)
        return;
    postTask([this, body, enabled] {
        if (enabled)
            ccdBodies.insert(body);
        else
            ccdBodies.erase(body);
        applyCcd(*body);
    });
}

void PhysxScene::applyCcd(PxRigidDynamic& body)
{
    body.setRigidBodyFlag(PxRigidBodyFlag::eENABLE_CCD,
                          ccdBodies.count(&body) && !isKinematic(body));
}

void PhysxScene::setMotion(unsigned int id, unsigned int motion)
{
    PxRigidActor* actor = findActor(id);
    PxRigidDynamic* body =
        actor ? asBody(actor, id, " is not dynamic. I cannot respond to forces.") : nullptr;
    if (body)
        postTask([this, body, motion] { applyMotion(*body, motion); });
}

void PhysxScene::applyMotion(PxRigidDynamic& body, unsigned int motion)
{
    switch (motion) {
    case Dynamic:
    case Weightless:
        body.setRigidBodyFlag(PxRigidBodyFlag::eKINEMATIC, false);
        body.setActorFlag(PxActorFlag::eDISABLE_GRAVITY, motion == Weightless);
        applyCcd(body);
        break;
    case Kinematic:
        // Both flags at once make PhysX complain, be it for a moment.
        body.setRigidBodyFlag(PxRigidBodyFlag::eENABLE_CCD, false);
        body.setRigidBodyFlag(PxRigidBodyFlag::eKINEMATIC, true);
        break;
    default:
        break;
    }
}

void PhysxScene::setCollisionEnabled(unsigned int id, bool enabled)
{
    PxRigidActor* actor = findActor(id);
    if (!actor)
        return;
    postTask([actor, enabled] {
        std::vector<PxShape*> shapes(actor->getNbShapes());
        actor->getShapes(shapes.data(), static_cast<PxU32>(shapes.size()));
        for (PxShape* shape : shapes)
            if (!shape->getFlags().isSet(PxShapeFlag::eTRIGGER_SHAPE))
                shape->setFlag(PxShapeFlag::eSIMULATION_SHAPE, enabled);
    });
}
