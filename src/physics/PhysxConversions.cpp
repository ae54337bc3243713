#include "physics/PhysxConversions.h"

namespace {

constexpr int elements = 16;
}

physx::PxMat44 toPxMat44(const osg::Matrixd& matrix)
{
    float values[elements];
    for (int i = 0; i < elements; ++i)
        values[i] = float(matrix.ptr()[i]);
    return physx::PxMat44(values);
}

osg::Matrixd toOsgMatrix(const physx::PxMat44& matrix)
{
    return osg::Matrixd(matrix.front());
}

physx::PxTransform toPxTransform(const osg::Matrixd& matrix)
{
    return physx::PxTransform(toPxMat44(matrix));
}

osg::Matrixd toOsgMatrix(const physx::PxTransform& pose)
{
    return toOsgMatrix(physx::PxMat44(pose));
}
