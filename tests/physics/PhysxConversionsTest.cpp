#include "physics/PhysxConversions.h"

#include <gtest/gtest.h>

using namespace physx;

TEST(PhysxConversions, NarrowTheElementsInStorageOrder)
{
    osg::Matrixd matrix;
    for (int i = 0; i < 16; ++i)
        matrix.ptr()[i] = i + 0.1;
    const PxMat44 result = toPxMat44(matrix);
    for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(result.front()[i], float(i + 0.1));
    }
}

TEST(PhysxConversions, WidenTheElementsInStorageOrder)
{
    float values[16];
    for (int i = 0; i < 16; ++i)
        values[i] = float(i) + 0.1f;
    const osg::Matrixd result = toOsgMatrix(PxMat44(values));
    for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(result.ptr()[i], double(values[i]));
    }
}

TEST(PhysxConversions, TurnAndMovePointsAsTheMatrixDid)
{
    const osg::Matrixd matrix =
        osg::Matrixd::rotate(0.7, osg::Vec3d(1, 2, 3)) * osg::Matrixd::translate(4, 5, 6);
    const osg::Vec3d expected = osg::Vec3d(1, -2, 0.5) * matrix;
    const PxVec3 turned = toPxTransform(matrix).transform(PxVec3(1.0f, -2.0f, 0.5f));
    EXPECT_NEAR(turned.x, expected.x(), 1e-5);
    EXPECT_NEAR(turned.y, expected.y(), 1e-5);
    EXPECT_NEAR(turned.z, expected.z(), 1e-5);
}

TEST(PhysxConversions, ComeBackFromAPoseToTheSameMatrix)
{
    const osg::Matrixd matrix =
        osg::Matrixd::rotate(-1.3, osg::Vec3d(0, 1, 1)) * osg::Matrixd::translate(-7, 8, 9);
    const osg::Matrixd back = toOsgMatrix(toPxTransform(matrix));
    for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(i);
        EXPECT_NEAR(back.ptr()[i], matrix.ptr()[i], 1e-5);
    }
}

TEST(PhysxConversions, TakeThePositionFromElementsTwelveToFourteen)
{
    EXPECT_EQ(toPxTransform(osg::Matrixd::translate(1, 2, 3)).p, PxVec3(1.0f, 2.0f, 3.0f));
}

TEST(PhysxConversions, KeepVectorsAsTheyAre)
{
    EXPECT_EQ(toPxVec3(osg::Vec3f(1, 2, 3)), PxVec3(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(toOsgVec3(PxVec3(1.0f, 2.0f, 3.0f)), osg::Vec3f(1, 2, 3));
}
