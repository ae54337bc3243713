#pragma once

#include <osg/Vec3f>

/// Something round that hovers over the board and throws a shadow: a coin, a heart, a weight.
struct Hovering
{
    osg::Vec3f center;  // board coordinates
    float radius;

    bool operator==(const Hovering& other) const
    {
        return center == other.center && radius == other.radius;
    }
};
