#pragma once

#include <PxPhysicsAPI.h>
#include <osg/Matrixd>
#include <osg/Vec3f>

/// Both libraries keep a translation in elements 12 to 14, one calling its fours rows and the other
/// columns, so that a pose passes element by element, without a transposition.
physx::PxMat44 toPxMat44(const osg::Matrixd& matrix);
osg::Matrixd toOsgMatrix(const physx::PxMat44& matrix);

/// Rotation and position of a pose. Scale is not taken out of the rotation's 3x3 block.
physx::PxTransform toPxTransform(const osg::Matrixd& matrix);
osg::Matrixd toOsgMatrix(const physx::PxTransform& pose);

inline physx::PxVec3 toPxVec3(const osg::Vec3f& v)
{
    return physx::PxVec3(v.x(), v.y(), v.z());
}

inline osg::Vec3f toOsgVec3(const physx::PxVec3& v)
{
    return osg::Vec3f(v.x, v.y, v.z);
}
