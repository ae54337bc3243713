#include "hand/HandPose.h"

#include <Leap.h>
#include <osg/MatrixTransform>
#include <osg/Matrixd>

namespace {

constexpr double pi = 3.141592653589793;

// Below this squared length a projection is rounding noise, whose direction would be a twist that
// nobody asked for. It happens when the fingers point along the palm's target: at a camera turned
// by a quarter, a hand that stands on its edge does that.
constexpr float negligibleLength2 = 1e-8f;

osg::Vec3f projectedOnPlane(const osg::Vec3f& vector, const osg::Vec3f& normal)
{
    return vector - normal * (normal * vector);
}

}  // namespace

osg::Vec3f toOsgVector(const Leap::Vector& vector)
{
    return osg::Vec3f(vector.x, -vector.z, vector.y);
}

HandPose handPose(const Leap::Hand& hand, float cameraAngle)
{
    const osg::Matrixd camera = osg::Matrixd::rotate(cameraAngle + pi, osg::Vec3d(0.0, 0.0, 1.0));
    return {camera * toOsgVector(hand.palmNormal()), toOsgVector(hand.direction())};
}

osg::Vec3f alignmentRotation(const osg::Quat& orientation, const osg::Vec3f& fromDown,
                             const osg::Vec3f& toDown, const osg::Vec3f& fromForward,
                             const osg::Vec3f& toForward, float minAngle)
{
    const osg::Vec3f down = orientation * fromDown;
    const osg::Vec3f forward = orientation * fromForward;

    osg::Quat tilt;
    tilt.makeRotate(down, toDown);

    // The twist is measured before the tilt, in the plane of the body as it stands.
    osg::Vec3f normal = down;
    normal.normalize();
    const osg::Vec3f twistFrom = projectedOnPlane(forward, normal);
    const osg::Vec3f twistTo = projectedOnPlane(tilt.conj() * toForward, normal);

    osg::Quat twist;
    if (twistFrom.length2() > negligibleLength2 && twistTo.length2() > negligibleLength2)
        twist.makeRotate(twistFrom, twistTo);

    const osg::Quat rotation = tilt * twist;
    double angle = 0.0;
    osg::Vec3d axis;
    rotation.getRotate(angle, axis);
    if (angle > double(minAngle))
        return osg::Vec3f(axis * angle);
    return osg::Vec3f();
}

osg::Vec3f alignmentRotation(osg::MatrixTransform* transform, const osg::Vec3f& fromDown,
                             const osg::Vec3f& toDown, const osg::Vec3f& fromForward,
                             const osg::Vec3f& toForward, float minAngle)
{
    return alignmentRotation(transform->getMatrix().getRotate(), fromDown, toDown, fromForward,
                             toForward, minAngle);
}
