#pragma once

#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <osg/Array>
#include <osg/Vec3f>
#include <osg/ref_ptr>

/// Unit vector from the mouth on this face into the block.
osg::Vec3f directionInto(PortalFace face);

/// The two bodies that feel a ball at a portal, and where the mouth is; all in the block's frame,
/// whose origin lies at half the block's height.
struct PortalShape
{
    osg::ref_ptr<osg::Vec3Array> innerHull;  // the block, a tenth smaller all round
    osg::ref_ptr<osg::Vec3Array> outerHull;  // from the mouth's plane outward
    osg::Vec3f mouthCenter;

    PortalShape(PortalFace face, const CornerHeights& corners, float height);
};
