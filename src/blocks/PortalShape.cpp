#include "blocks/PortalShape.h"

#include <algorithm>
#include <array>

namespace {

constexpr float inner = 0.4f;           // half the width of the inner hull and of a mouth
constexpr float mouthPlane = 0.3f;      // of a mouth on a side, from the block's middle
constexpr float rim = 0.1f;             // of the hulls, under the top and over the board
constexpr float sideMouthDepth = 0.8f;  // from the higher corner of the face down
constexpr float topMouthDepth = 0.2f;
constexpr float reach = 1.7f;  // of the outer hull, out of the block

using Quad = std::array<osg::Vec3f, 4>;

/// The mouth over the board surface.
Quad mouthQuad(PortalFace face, const CornerHeights& c)
{
    const auto sideOfX = [](float x, float front, float back) {
        const float bottom = std::max(front, back) - sideMouthDepth;
        return Quad{osg::Vec3f(x, -inner, front - rim), osg::Vec3f(x, -inner, bottom),
                    osg::Vec3f(x, inner, back - rim), osg::Vec3f(x, inner, bottom)};
    };
    const auto sideOfY = [](float y, float left, float right) {
        const float bottom = std::max(left, right) - sideMouthDepth;
        return Quad{osg::Vec3f(-inner, y, left - rim), osg::Vec3f(-inner, y, bottom),
                    osg::Vec3f(inner, y, right - rim), osg::Vec3f(inner, y, bottom)};
    };
    switch (face) {
    case PortalFace::Right:
        return sideOfX(mouthPlane, c.rightFront, c.rightBack);
    case PortalFace::Left:
        return sideOfX(-mouthPlane, c.leftFront, c.leftBack);
    case PortalFace::Back:
        return sideOfY(mouthPlane, c.leftBack, c.rightBack);
    case PortalFace::Front:
        return sideOfY(-mouthPlane, c.leftFront, c.rightFront);
    case PortalFace::Top:
        break;
    }
    return {osg::Vec3f(-inner, inner, c.leftBack - topMouthDepth),
            osg::Vec3f(inner, inner, c.rightBack - topMouthDepth),
            osg::Vec3f(-inner, -inner, c.leftFront - topMouthDepth),
            osg::Vec3f(inner, -inner, c.rightFront - topMouthDepth)};
}

}  // namespace

osg::Vec3f directionInto(PortalFace face)
{
    switch (face) {
    case PortalFace::Right:
        return osg::Vec3f(-1.0f, 0.0f, 0.0f);
    case PortalFace::Left:
        return osg::Vec3f(1.0f, 0.0f, 0.0f);
    case PortalFace::Back:
        return osg::Vec3f(0.0f, -1.0f, 0.0f);
    case PortalFace::Front:
        return osg::Vec3f(0.0f, 1.0f, 0.0f);
    case PortalFace::Top:
        break;
    }
    return osg::Vec3f(0.0f, 0.0f, -1.0f);
}

PortalShape::PortalShape(PortalFace face, const CornerHeights& corners, float height)
    : innerHull(new osg::Vec3Array), outerHull(new osg::Vec3Array)
{
    const osg::Vec3f origin(0.0f, 0.0f, height * 0.5f);
    const auto addInnerCorner = [&](float x, float y, float top) {
        innerHull->push_back(osg::Vec3f(x, y, rim) - origin);
        innerHull->push_back(osg::Vec3f(x, y, top - rim) - origin);
    };
    addInnerCorner(-inner, -inner, corners.leftFront);
    addInnerCorner(-inner, inner, corners.leftBack);
    addInnerCorner(inner, -inner, corners.rightFront);
    addInnerCorner(inner, inner, corners.rightBack);

    for (const osg::Vec3f& corner : mouthQuad(face, corners)) {
        outerHull->push_back(corner - origin);
        outerHull->push_back(corner - directionInto(face) * reach - origin);
        mouthCenter += (corner - origin) * 0.25f;
    }
}
