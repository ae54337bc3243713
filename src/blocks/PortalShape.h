#pragma once

#include "level/CornerHeights.h"

#include <osg/Array>
#include <osg/Vec3f>
#include <osg/ref_ptr>

/// The face of a portal block that has the mouth.
enum class PortalFace : int { Right = 0, Left = 1, Back = 2, Front = 3, Top = 4 };  // +x -x +y -y

/// Unit vector from the mouth on this face into the block.
osg::Vec3f directionInto(PortalFace face);

/// What the saturation of a portal's pixel says.
struct PortalOption
{
    PortalFace face;
    float strength;  // of the pull; 0 for a portal that the ball has to roll into by itself

    static PortalOption ofSaturation(int saturation);
};

/// The two bodies that feel a ball at a portal, and where the mouth is; all in the block's frame,
/// whose origin lies at half the block's height.
struct PortalShape
{
    osg::ref_ptr<osg::Vec3Array> innerHull;  // the block, a tenth smaller all round
    osg::ref_ptr<osg::Vec3Array> outerHull;  // from the mouth's plane outward
    osg::Vec3f mouthCenter;

    PortalShape(PortalFace face, const CornerHeights& corners, float height);
};
