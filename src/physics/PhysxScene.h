#pragma once

#include <PxPhysicsAPI.h>
#include <QMutex>
#include <osg/Array>
#include <osg/Matrixd>
#include <osg/Referenced>
#include <osg/Vec3f>

#include <deque>
#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// Decides what a pair of shapes reports. Every solid pair collides and takes part in continuous
/// collision detection, unless both are of one family (word 2); group and mask (words 0 and 1)
/// only gate who is told of it.
physx::PxFilterFlags filterShader(physx::PxFilterObjectAttributes attributes0,
                                  physx::PxFilterData data0,
                                  physx::PxFilterObjectAttributes attributes1,
                                  physx::PxFilterData data1, physx::PxPairFlags& pairFlags,
                                  const void* constantBlock, physx::PxU32 constantBlockSize);

/// The one door between the game and PhysX: a world of rigid bodies in which everything has a
/// number. Game code never holds a PhysX pointer.
///
/// Units are the world's, angles radians. Every misuse prints one sentence in the first person on
/// standard output and changes nothing; results may be ignored.
///
/// Threads: all operations need the world lock, on the main and on the sensor thread alike, in a
/// timer as well as in a tick. Those marked "queued" check their id at once and act at the start of
/// the next step(). From inside a physics event only these may be called, and setD6Motion().
class PhysxScene : public osg::Referenced, public physx::PxSimulationEventCallback
{
public:
    /// Stands for the world as a partner of a joint: an id that no actor bears.
    static constexpr unsigned int world = 0xFFFFFFFFu;

    /// How an actor moves.
    static constexpr unsigned int motionDynamic = 0;
    static constexpr unsigned int motionWithoutGravity = 1;
    static constexpr unsigned int motionKinematic = 2;

    /// What a force or a torque means, in PhysX's numbers.
    static constexpr unsigned int forceModeForce = 0;           // mass times world units a second^2
    static constexpr unsigned int forceModeVelocityChange = 2;  // world units or radians a second

    PhysxScene();

    /// Was the contact one of these two actors, in either order? An unknown id was not in it.
    virtual bool isContactBetween(unsigned int idA, unsigned int idB,
                                  const physx::PxContactPairHeader& header);
    virtual bool isContactOf(unsigned int id, const physx::PxContactPairHeader& header);
    virtual bool isActor(unsigned int id, const physx::PxActor* actor);
    /// The same by kind of shape, which is its filter group.
    virtual bool isShapeContactBetween(unsigned int groupA, unsigned int groupB,
                                       const physx::PxContactPair& pair);
    virtual bool isShapeContactOf(unsigned int group, const physx::PxContactPair& pair);

    void onConstraintBreak(physx::PxConstraintInfo*, physx::PxU32) override {}
    void onWake(physx::PxActor**, physx::PxU32) override {}
    void onSleep(physx::PxActor**, physx::PxU32) override {}
    void onContact(const physx::PxContactPairHeader&, const physx::PxContactPair*,
                   physx::PxU32) override
    {
    }
    void onTrigger(physx::PxTriggerPair*, physx::PxU32) override {}
    void onAdvance(const physx::PxRigidBody* const*, const physx::PxTransform*,
                   const physx::PxU32) override
    {
    }

    /// Makes the world; must precede all else. Gravity in units per second squared.
    bool createScene(const osg::Vec3f& gravity);

    /// Runs the queued commands, then simulates dt seconds. Every physics event is told in here, on
    /// the calling thread. Commands that an event queues wait for the next step.
    void step(double dt);

    /// Back to the empty world: joints, actors, materials and the queue are dropped, the latter
    /// without being run.
    void clear();

    /// A number for a joint, counted from 0 since createScene() or clear().
    unsigned int nextId();

    bool createMaterial(std::string name, float staticFriction, float dynamicFriction,
                        float restitution);

    /// A body is made by createActor(), shapes, and once finishActor(), which weighs it and puts it
    /// into the world; the other create operations do all of it. Motion: 0 dynamic, 1 dynamic
    /// without gravity, 2 kinematic. An actor whose creation fails for its shape keeps its id.
    bool createActor(unsigned int id, unsigned int motion);
    /// Full edge lengths; the pose is the shape's in the actor's space.
    bool addBoxShape(unsigned int id, const osg::Vec3f& size, std::string material,
                     const osg::Matrixd& localPose, unsigned int filterGroup,
                     unsigned int filterMask, bool trigger);
    /// The hull of points in the actor's space.
    bool addConvexShape(unsigned int id, osg::Vec3Array* vertices, std::string material,
                        unsigned int filterGroup, unsigned int filterMask, bool trigger);
    bool finishActor(unsigned int id, double density);

    bool createBox(unsigned int id, const osg::Vec3f& size, double density, std::string material,
                   unsigned int motion, unsigned int filterGroup, unsigned int filterMask);
    bool createSphere(unsigned int id, double radius, double density, std::string material,
                      unsigned int motion, unsigned int filterGroup, unsigned int filterMask);
    bool createConvex(unsigned int id, osg::Vec3Array* vertices, double density,
                      std::string material, unsigned int motion, unsigned int filterGroup,
                      unsigned int filterMask);
    /// A static, endless plane through a point; the side that the normal points to is free.
    bool createPlane(unsigned int id, std::string material, const osg::Vec3f& point,
                     const osg::Vec3f& normal, unsigned int filterGroup, unsigned int filterMask);

    /// The shapes that the actor has so far pass through those of the same family, whatever their
    /// group and mask. For bodies that are tied together side by side: one that slides between
    /// two others would hang on their edges. 0 is no family.
    bool setFamily(unsigned int id, unsigned int family);

    /// Queued. The actor is put there, whatever its motion; its velocity stays.
    void setPose(unsigned int id, const osg::Matrixd& pose);
    /// Queued. As setPose(), and every body that a fixed or D6 joint ties to the actor is put along
    /// with it, each keeping its pose relative to the actor and taking its motion over. Left where
    /// they are, tied bodies would drag the actor back half the way and throw off what lies there.
    void setPoseWithAttached(unsigned int id, const osg::Matrixd& pose);

    /// Queued. World frame; forceMode is a PxForceMode. Whether the actor can be pushed at all is
    /// found out, and complained of, when the command runs.
    void addForce(unsigned int id, const osg::Vec3f& force, unsigned int forceMode, bool wake);
    void addTorque(unsigned int id, const osg::Vec3f& torque, unsigned int forceMode, bool wake);
    void setLinearVelocity(unsigned int id, const osg::Vec3f& velocity, bool wake);
    void setAngularVelocity(unsigned int id, const osg::Vec3f& velocity, bool wake);

    /// Queued, but unlike the others checked and complained of at once.
    void clearForce(unsigned int id, unsigned int forceMode);

    /// The velocity after the last step; zero on failure.
    osg::Vec3f linearVelocity(unsigned int id);

    bool setAngularDamping(unsigned int id, float damping);
    bool setMaxAngularVelocity(unsigned int id, float velocity);

    /// Queued. PhysX knows no continuous detection for kinematic bodies: the wish is kept and takes
    /// effect as soon as the body is dynamic.
    void setCcdEnabled(unsigned int id, bool enabled);
    /// Queued. An unknown motion changes nothing; a body that gravity gets hold of again wakes.
    void setMotion(unsigned int id, unsigned int motion);
    /// Queued. Trigger shapes go on working.
    void setCollisionEnabled(unsigned int id, bool enabled);

    /// The four joints. Each frame is the joint's in the space of its actor, or in the world's.
    bool createSphericalJoint(unsigned int jointId, unsigned int actorA, const osg::Matrixd& frameA,
                              unsigned int actorB, const osg::Matrixd& frameB);
    bool createDistanceJoint(unsigned int jointId, unsigned int actorA, const osg::Matrixd& frameA,
                             unsigned int actorB, const osg::Matrixd& frameB);
    bool createFixedJoint(unsigned int jointId, unsigned int actorA, const osg::Matrixd& frameA,
                          unsigned int actorB, const osg::Matrixd& frameB);
    bool createD6Joint(unsigned int jointId, unsigned int actorA, const osg::Matrixd& frameA,
                       unsigned int actorB, const osg::Matrixd& frameB);

    /// Queued: the id is free at once, the joint holds until the next step.
    void removeJoint(unsigned int jointId);
    /// Queued. The target is where the second actor's frame shall be as seen from the first's: to
    /// send the first actor up, it lies below. Wakes both.
    void driveJoint(unsigned int jointId, const osg::Matrixd& target,
                    const osg::Vec3f& linearVelocity, const osg::Vec3f& angularVelocity);
    bool setD6Drive(unsigned int jointId, unsigned int driveIndex, float stiffness, float damping,
                    float forceLimit, bool acceleration);
    /// Frees, locks or limits a linear axis; limit and contact distance (-1 for PhysX's default)
    /// count only for the motion "limited". Numbers that PhysX does not know are refused.
    bool setD6Motion(unsigned int jointId, unsigned int axis, unsigned int motion, float limit,
                     float contactDistance);
    /// A negative distance means no such limit. The joint is slack from minimum less tolerance to
    /// maximum plus tolerance. The stiffness has no effect while nobody enables the joint's spring.
    bool setDistanceLimit(unsigned int jointId, float minDistance, float maxDistance,
                          float tolerance, float stiffness);
    bool setSphericalLimit(unsigned int jointId, float yAngle, float zAngle, float contactDistance);

protected:
    ~PhysxScene() override;

    std::unordered_map<unsigned int, physx::PxRigidActor*> actors;
    /// A null entry is what a shape of an unknown material leaves behind.
    std::unordered_map<std::string, physx::PxMaterial*> materials;
    std::unordered_map<unsigned int, physx::PxJoint*> joints;
    physx::PxScene* scene = nullptr;
    std::deque<std::function<void()>> tasks;
    QMutex taskMutex;
    unsigned int idCounter = 0;

private:
    using JointCreator =
        std::function<physx::PxJoint*(physx::PxRigidActor*, const physx::PxTransform&,
                                      physx::PxRigidActor*, const physx::PxTransform&)>;

    /// Tasks run with the queue locked, so that a task must not post another.
    void postTask(std::function<void()> task);
    void runTasks();

    physx::PxRigidActor* findActor(unsigned int id);
    physx::PxRigidDynamic* createDynamicActor(unsigned int id, unsigned int motion);
    physx::PxShape* addShape(physx::PxRigidActor* actor, const physx::PxGeometry& geometry,
                             std::string material, const osg::Matrixd& localPose,
                             unsigned int filterGroup, unsigned int filterMask, bool trigger);
    physx::PxShape* addConvex(physx::PxRigidActor* actor, const osg::Vec3Array* vertices,
                              std::string material, unsigned int filterGroup,
                              unsigned int filterMask, bool trigger);
    void addToScene(physx::PxRigidActor* actor, double density);
    void applyMotion(physx::PxRigidDynamic& body, unsigned int motion);
    void applyCcd(physx::PxRigidDynamic& body);

    physx::PxJoint* findJoint(unsigned int jointId);
    template <typename Joint>
    Joint* findJointOf(unsigned int jointId, const char* kind, const char* complaint);
    bool createJoint(unsigned int jointId, unsigned int actorA, const osg::Matrixd& frameA,
                     unsigned int actorB, const osg::Matrixd& frameB, const JointCreator& create);

    /// Joints that have lost their id but still hold: replaced ones, and removed ones until the
    /// next step. clear() releases them as well.
    std::unordered_set<physx::PxJoint*> namelessJoints;
    /// Bodies for which continuous detection is wanted whenever they are dynamic.
    std::unordered_set<const physx::PxRigidDynamic*> ccdBodies;
};
