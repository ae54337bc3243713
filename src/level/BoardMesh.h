#pragma once

#include <osg/Geometry>
#include <osg/ref_ptr>

#include <functional>

namespace osg {
class Geode;
}

/// The drawings of all static blocks as one: hundreds of drawables cost more to hand over than to
/// draw, and most upright faces of a board stand against a neighbour and are never seen.
///
/// Board coordinates throughout; cells lie around (x, y) in steps of one.
class BoardMesh
{
public:
    /// The height up to which the cell around (x, y) is filled from edge to edge; 0 for a hole.
    using FilledHeight = std::function<float(float x, float y)>;

    explicit BoardMesh(FilledHeight filledHeight);

    /// Replaces the drawables of `geode` by one drawable that shows the same from outside.
    void merge(osg::Geode& geode) const;

private:
    bool isCovered(const osg::Vec3f& a, const osg::Vec3f& b, const osg::Vec3f& c,
                   const osg::Vec3f& normal) const;

    FilledHeight filledHeight;
};
