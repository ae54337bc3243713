#pragma once

#include "base/WorldNumbers.h"
#include "physics/PhysxConversions.h"
#include "physics/PhysxScene.h"

#include <gtest/gtest.h>
#include <osg/ref_ptr>

#include <cmath>
#include <functional>
#include <string>

/// The game's own numbers for the three kinds of shape.
namespace kind {
constexpr unsigned int ground = 1, board = 2, ball = 4;
constexpr unsigned int groundMask = 4, boardMask = 4, ballMask = 3;
}  // namespace kind

constexpr double gameStep = world::secondsPerTick;

/// A scene that shows its inside and counts what it is told.
class TestScene : public PhysxScene
{
public:
    using PhysxScene::actors;
    using PhysxScene::joints;
    using PhysxScene::materials;
    using PhysxScene::scene;
    using PhysxScene::tasks;

    void onContact(const physx::PxContactPairHeader& header, const physx::PxContactPair* pairs,
                   physx::PxU32 count) override
    {
        ++contacts;
        if (contactHandler)
            contactHandler(header, pairs, count);
    }

    void onTrigger(physx::PxTriggerPair* pairs, physx::PxU32 count) override
    {
        for (physx::PxU32 i = 0; i < count; ++i)
            ++(pairs[i].status == physx::PxPairFlag::eNOTIFY_TOUCH_FOUND ? entered : left);
    }

    physx::PxRigidDynamic* body(unsigned int id)
    {
        return actors.at(id)->is<physx::PxRigidDynamic>();
    }
    osg::Vec3f position(unsigned int id) { return toOsgVec3(actors.at(id)->getGlobalPose().p); }
    void steps(int count)
    {
        for (int i = 0; i < count; ++i)
            step(gameStep);
    }

    int contacts = 0;
    int entered = 0;
    int left = 0;
    std::function<void(const physx::PxContactPairHeader&, const physx::PxContactPair*,
                       physx::PxU32)>
        contactHandler;
};

/// An empty world with the game's gravity and its one material.
class PhysxTest : public testing::Test
{
protected:
    PhysxTest()
    {
        scene->createScene(osg::Vec3f(0.0f, 0.0f, -world::gravity));
        scene->createMaterial("holz", 0.2f, 0.05f, 0.0f);
    }

    static std::string outputOf(const std::function<void()>& action)
    {
        testing::internal::CaptureStdout();
        action();
        return testing::internal::GetCapturedStdout();
    }

    bool box(unsigned int id, unsigned int motion = 0, const osg::Vec3f& size = {1, 1, 1})
    {
        return scene->createBox(id, size, 1.0, "holz", motion, kind::board, kind::boardMask);
    }

    bool ball(unsigned int id, const osg::Vec3f& position)
    {
        const bool made = scene->createSphere(id, world::ballRadius, world::ballDensity, "holz", 0,
                                              kind::ball, kind::ballMask);
        scene->setPose(id, osg::Matrixd::translate(position));
        return made;
    }

    /// A floor whose surface is at the given height.
    bool plane(unsigned int id, float height = 0.0f)
    {
        return scene->createPlane(id, "holz", osg::Vec3f(0, 0, height), osg::Vec3f(0, 0, 1),
                                  kind::ground, kind::groundMask);
    }

    osg::ref_ptr<TestScene> scene = new TestScene;
};
