#pragma once

#include <osg/Quat>
#include <osg/Vec3f>

namespace Leap {
class Hand;
struct Vector;
}  // namespace Leap
namespace osg {
class MatrixTransform;
}

/// Sensor coordinates to the world's: what is up for the sensor is up in the world, and what points
/// away from the player points into the screen.
osg::Vec3f toOsgVector(const Leap::Vector& vector);

/// Where a hand wants the board's underside and its far edge to point, as unit vectors of the
/// world.
struct HandPose
{
    osg::Vec3f down;
    osg::Vec3f forward;
};

/// The pose that a hand asks for when the camera stands at the azimuth cameraAngle (radians). Only
/// the palm's normal turns with the camera: the fingers' direction stays in the sensor's frame. A
/// player whose camera stands elsewhere thus tilts as seen, without having to twist the arm along.
HandPose handPose(const Leap::Hand& hand, float cameraAngle);

/// The rotation that would bring a body to the pose in which its two reference axes fromDown and
/// fromForward (body coordinates, unit length) point to toDown and, as far as that leaves a choice,
/// to toForward (world coordinates, unit length).
///
/// It is exact for a tilt without a twist and for a twist without a tilt. Of both together it is
/// the first of a few steps: who follows it and asks again with every frame arrives.
///
/// The result is a rotation vector of the world, axis times angle in radians, and zero unless the
/// angle is greater than minAngle.
osg::Vec3f alignmentRotation(const osg::Quat& orientation, const osg::Vec3f& fromDown,
                             const osg::Vec3f& toDown, const osg::Vec3f& fromForward,
                             const osg::Vec3f& toForward, float minAngle);

/// The same for the orientation that a transform has now. The caller holds the world lock.
osg::Vec3f alignmentRotation(osg::MatrixTransform* transform, const osg::Vec3f& fromDown,
                             const osg::Vec3f& toDown, const osg::Vec3f& fromForward,
                             const osg::Vec3f& toForward, float minAngle);
