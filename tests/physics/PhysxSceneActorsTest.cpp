#include "base/WorldNumbers.h"
#include "physics/PhysxTestScene.h"

#include <cmath>
#include <limits>
#include <string>

using namespace physx;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

osg::ref_ptr<osg::Vec3Array> points(std::initializer_list<osg::Vec3f> list)
{
    osg::ref_ptr<osg::Vec3Array> array = new osg::Vec3Array;
    array->assign(list.begin(), list.end());
    return array;
}

osg::ref_ptr<osg::Vec3Array> unitCube()
{
    return points({{-.5f, -.5f, 0},
                   {-.5f, -.5f, 1},
                   {-.5f, .5f, 0},
                   {-.5f, .5f, 1},
                   {.5f, -.5f, 0},
                   {.5f, -.5f, 1},
                   {.5f, .5f, 0},
                   {.5f, .5f, 1}});
}

}  // namespace

class PhysxSceneActors : public PhysxTest
{
protected:
    bool convex(unsigned int id, osg::Vec3Array* vertices)
    {
        return scene->createConvex(id, vertices, 1.0, "holz", 0, kind::board, kind::boardMask);
    }
};

TEST_F(PhysxSceneActors, KeepTheIdOfABodyOfAnUnknownMaterial)
{
    bool made = true;
    EXPECT_EQ(outputOf([&] {
                  made = scene->createBox(7, {1, 1, 1}, 1.0, "gold", 0, 2, 4);
              }),
              "Failed to create shape for actor\n");
    EXPECT_FALSE(made);
    EXPECT_EQ(outputOf([&] { made = box(7); }), "There already is an actor with id 7\n");
    EXPECT_FALSE(made);
    EXPECT_FALSE(scene->actors.at(7)->getScene());
    scene->steps(2);
}

TEST_F(PhysxSceneActors, AreRefusedAShapeOfAnUnknownMaterialWhateverItsKind)
{
    const std::string refused = "Failed to create shape for actor\n";
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->createSphere(0, 0.3, 1.0, "gold", 0, 4, 3)); }),
              refused);
    EXPECT_EQ(
        outputOf([&] { EXPECT_FALSE(scene->createConvex(1, unitCube(), 1.0, "gold", 0, 2, 4)); }),
        refused);
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(scene->createPlane(2, "gold", {0, 0, 0}, {0, 0, 1}, 1, 4));
              }),
              refused);
    scene->createActor(3, 0);
    EXPECT_EQ(
        outputOf([&] { EXPECT_FALSE(scene->addConvexShape(3, unitCube(), "gold", 2, 4, false)); }),
        refused);
    for (unsigned int id = 0; id < 4; ++id) {
        SCOPED_TRACE(id);
        EXPECT_EQ(scene->actors.at(id)->getNbShapes(), 0u);
        EXPECT_EQ(outputOf([&] { EXPECT_FALSE(box(id)); }),
                  "There already is an actor with id " + std::to_string(id) + "\n");
    }
    EXPECT_FALSE(scene->actors.at(0)->getScene());
    EXPECT_FALSE(scene->actors.at(1)->getScene());
    EXPECT_TRUE(scene->actors.at(2)->getScene()) << "the plane, which stops nobody";
    ball(4, {0, 0, 1});
    scene->steps(30);
    EXPECT_LT(scene->position(4).z(), -2.0f);
}

TEST_F(PhysxSceneActors, TakeTheNameOfAnUnknownMaterial)
{
    scene->createActor(0, 0);
    outputOf([&] { scene->addBoxShape(0, {1, 1, 1}, "gold", osg::Matrixd(), 2, 4, false); });
    bool made = true;
    EXPECT_EQ(outputOf([&] { made = scene->createMaterial("gold", 0.5f, 0.5f, 0.5f); }),
              "There already is a material named gold\n");
    EXPECT_FALSE(made);
    scene->clear();
    EXPECT_TRUE(scene->createMaterial("gold", 0.5f, 0.5f, 0.5f));
}

TEST_F(PhysxSceneActors, RefuseASecondMaterialOfAName)
{
    bool made = true;
    EXPECT_EQ(outputOf([&] { made = scene->createMaterial("holz", 1, 1, 0); }),
              "There already is a material named holz\n");
    EXPECT_FALSE(made);
    EXPECT_FLOAT_EQ(scene->materials.at("holz")->getStaticFriction(), 0.2f);
}

TEST_F(PhysxSceneActors, RefuseAnImpossibleMaterial)
{
    bool made = true;
    for (const auto& values :
         {osg::Vec3f(-1, 0, 0), osg::Vec3f(0, notANumber, 0), osg::Vec3f(0, 0, 2)}) {
        SCOPED_TRACE(values.x());
        EXPECT_EQ(outputOf([&] {
                      made = scene->createMaterial("odd", values.x(), values.y(), values.z());
                  }),
                  "Failed to create material\n");
        EXPECT_FALSE(made);
    }
    EXPECT_EQ(scene->materials.count("odd"), 0u);
}

TEST_F(PhysxSceneActors, RefuseASecondActorOfAnId)
{
    const std::string duplicate = "There already is an actor with id 3\n";
    box(3);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->createActor(3, 0)); }), duplicate);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(box(3)); }), duplicate);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(ball(3, {})); }), duplicate);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(convex(3, unitCube())); }), duplicate);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(plane(3)); }), duplicate);
    EXPECT_EQ(scene->actors.size(), 1u);
}

TEST_F(PhysxSceneActors, RefuseShapesOfImpossibleSizes)
{
    const std::string refused = "Failed to create shape for actor\n";
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(box(0, 0, {1, 0, 1})); }), refused);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(box(1, 0, {1, notANumber, 1})); }), refused);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->createSphere(2, -1, 1, "holz", 0, 4, 3)); }),
              refused);
    scene->steps(2);
}

TEST_F(PhysxSceneActors, RefuseConvexShapesOfNoVolume)
{
    const std::string refused = "Failed to create shape for actor\n";
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(convex(0, nullptr)); }), refused);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(convex(1, points({}))); }), refused);
    const auto withNan = points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, notANumber}});
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(convex(2, withNan)); }), refused);
    const auto single = points({{1, 1, 1}});
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(convex(3, single)); }), refused);
    const auto same = points({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}});
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(convex(4, same)); }), refused);
    const auto line = points({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(convex(5, line)); }), refused);
    const auto flat = points({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(convex(6, flat)); }), refused);
    const auto vast = points({{0, 0, 0}, {3e38f, 0, 0}, {0, 3e38f, 0}, {0, 0, 3e38f}});
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(convex(7, vast)); }), refused);
    scene->steps(2);
}

TEST_F(PhysxSceneActors, HaveAHullOfAtMost255OfTheirPoints)
{
    // Evenly over a sphere of radius 2, along a spiral: every point is a corner of the hull.
    constexpr int count = 1000;
    constexpr double goldenAngle = 2.399963229728653;
    constexpr float radius = 2.0f;
    osg::ref_ptr<osg::Vec3Array> globe = new osg::Vec3Array;
    for (int i = 0; i < count; ++i) {
        const double z = 1.0 - (2.0 * i + 1.0) / count;
        const double ring = std::sqrt(1.0 - z * z);
        globe->push_back(osg::Vec3f(float(ring * std::cos(i * goldenAngle)),
                                    float(ring * std::sin(i * goldenAngle)), float(z)) *
                         radius);
    }
    EXPECT_EQ(outputOf([&] { EXPECT_TRUE(convex(0, globe)); }), "");
    PxShape* shape = nullptr;
    scene->actors.at(0)->getShapes(&shape, 1);
    const PxConvexMesh* hull =
        static_cast<const PxConvexMeshGeometry&>(shape->getGeometry()).convexMesh;
    EXPECT_LE(hull->getNbVertices(), 255u);
    EXPECT_GT(hull->getNbVertices(), 100u);
    const float volume = 4.0f / 3.0f * 3.14159265f * radius * radius * radius;
    EXPECT_NEAR(scene->body(0)->getMass(), volume, 0.06f * volume);
    scene->steps(3);
    EXPECT_LT(scene->position(0).z(), 0.0f);
}

TEST_F(PhysxSceneActors, RefuseAPlaneWithoutANormal)
{
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(scene->createPlane(4, "holz", {0, 0, 0}, {0, 0, 0}, 1, 4));
              }),
              "Failed to create actor 4\n");
    EXPECT_EQ(scene->actors.count(4), 0u);
}

TEST_F(PhysxSceneActors, ComplainOfEveryUnknownId)
{
    const std::string unknown = "I do not know an actor with id 99\n";
    const osg::Vec3f zero;
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(scene->addBoxShape(99, {1, 1, 1}, "holz", {}, 2, 4, false));
              }),
              unknown);
    EXPECT_EQ(
        outputOf([&] { EXPECT_FALSE(scene->addConvexShape(99, unitCube(), "holz", 2, 4, false)); }),
        unknown);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->finishActor(99, 1)); }), unknown);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setFamily(99, 1)); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->setPose(99, {}); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->setPoseWithAttached(99, {}); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->addForce(99, zero, 0, true); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->addTorque(99, zero, 0, true); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->clearForce(99, 0); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->setLinearVelocity(99, zero, true); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->setAngularVelocity(99, zero, true); }), unknown);
    EXPECT_EQ(outputOf([&] { EXPECT_EQ(scene->linearVelocity(99), zero); }), unknown);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setAngularDamping(99, 1)); }), unknown);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setMaxAngularVelocity(99, 1)); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->setCcdEnabled(99, true); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->setMotion(99, 0); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->setCollisionEnabled(99, true); }), unknown);
    EXPECT_TRUE(scene->tasks.empty());
}

TEST_F(PhysxSceneActors, WeighABoxByItsFullEdges)
{
    scene->createBox(0, {2, 3, 4}, 0.5, "holz", 0, 2, 4);
    EXPECT_NEAR(scene->body(0)->getMass(), 12.0f, 1e-4f);
    PxBoxGeometry half;
    PxShape* shape = nullptr;
    scene->actors.at(0)->getShapes(&shape, 1);
    ASSERT_EQ(shape->getGeometry().getType(), PxGeometryType::eBOX);
    half = static_cast<const PxBoxGeometry&>(shape->getGeometry());
    EXPECT_EQ(half.halfExtents, PxVec3(1.0f, 1.5f, 2.0f));
}

TEST_F(PhysxSceneActors, WeighASphereAndAConvexByTheirVolume)
{
    scene->createSphere(0, world::ballRadius, world::ballDensity, "holz", 0, 4, 3);
    EXPECT_NEAR(scene->body(0)->getMass(), 4.0f / 3.0f * 3.14159265f * 0.027f, 1e-4f);
    EXPECT_TRUE(convex(1, unitCube()));
    EXPECT_NEAR(scene->body(1)->getMass(), 1.0f, 1e-3f);
    EXPECT_NEAR(scene->body(1)->getCMassLocalPose().p.z, 0.5f, 1e-3f);
}

TEST_F(PhysxSceneActors, MakeOneBodyOfManyShapes)
{
    EXPECT_TRUE(scene->createActor(0, 1));
    EXPECT_TRUE(
        scene->addBoxShape(0, {1, 1, 2}, "holz", osg::Matrixd::translate(-1, 0, 1), 2, 4, false));
    EXPECT_TRUE(scene->addConvexShape(0, unitCube(), "holz", 2, 4, false));
    EXPECT_FALSE(scene->actors.at(0)->getScene());
    EXPECT_TRUE(scene->finishActor(0, 1.0));
    EXPECT_TRUE(scene->actors.at(0)->getScene());
    EXPECT_EQ(scene->actors.at(0)->getNbShapes(), 2u);
    EXPECT_NEAR(scene->body(0)->getMass(), 3.0f, 1e-3f);
    EXPECT_NEAR(scene->body(0)->getCMassLocalPose().p.x, -2.0f / 3.0f, 1e-3f);
}

TEST_F(PhysxSceneActors, PutTheFilterWordsIntoTheFirstTwo)
{
    scene->createSphere(0, world::ballRadius, world::ballDensity, "holz", 0, 4, 3);
    PxShape* shape = nullptr;
    scene->actors.at(0)->getShapes(&shape, 1);
    const PxFilterData data = shape->getSimulationFilterData();
    EXPECT_EQ(data.word0, 4u);
    EXPECT_EQ(data.word1, 3u);
    EXPECT_EQ(data.word2, 0u);
    EXPECT_EQ(data.word3, 0u);
    EXPECT_EQ(scene->actors.at(0)->userData, nullptr);
    EXPECT_EQ(shape->userData, nullptr);
}

TEST_F(PhysxSceneActors, MakeATriggerOfAShapeThatDoesNotCollide)
{
    scene->createActor(0, 0);
    EXPECT_TRUE(scene->addBoxShape(0, {1, 1, 1}, "holz", {}, 2, 4, true));
    PxShape* shape = nullptr;
    scene->actors.at(0)->getShapes(&shape, 1);
    EXPECT_TRUE(shape->getFlags().isSet(PxShapeFlag::eTRIGGER_SHAPE));
    EXPECT_FALSE(shape->getFlags().isSet(PxShapeFlag::eSIMULATION_SHAPE));
}

TEST_F(PhysxSceneActors, LetABodyOfNoShapesWeighOne)
{
    scene->createActor(0, 1);
    EXPECT_EQ(outputOf([&] { EXPECT_TRUE(scene->finishActor(0, 1.0)); }), "");
    EXPECT_EQ(scene->body(0)->getMass(), 1.0f);
    EXPECT_EQ(scene->body(0)->getMassSpaceInertiaTensor(), PxVec3(1.0f));
    EXPECT_EQ(outputOf([&] { scene->steps(10); }), "");
    EXPECT_EQ(scene->position(0), osg::Vec3f());
}

TEST_F(PhysxSceneActors, LeaveFreeTheSideOfAPlaneThatItsNormalPointsTo)
{
    plane(0, -5.0f);
    ball(1, {0, 0, 0});
    ball(2, {3, 0, -6});
    scene->steps(100);
    EXPECT_NEAR(scene->position(1).z(), -4.7f, 0.02f);
    EXPECT_GT(scene->position(2).z(), -5.5f) << "what starts inside the plane is pushed out";
}

TEST_F(PhysxSceneActors, TakeThePointOfAPlaneWhateverTheLengthOfItsNormal)
{
    scene->createPlane(0, "holz", {0, 0, -5}, {0, 0, 4}, 1, 4);
    ball(1, {0, 0, 0});
    scene->steps(100);
    EXPECT_NEAR(scene->position(1).z(), -4.7f, 0.02f);
}

TEST_F(PhysxSceneActors, CountJointIdsFromZeroAfterClear)
{
    EXPECT_EQ(scene->nextId(), 0u);
    EXPECT_EQ(scene->nextId(), 1u);
    scene->clear();
    EXPECT_EQ(scene->nextId(), 0u);
}
