#pragma once

#include <osg/Geometry>

namespace osg {
class Geode;
}

class Relief;

/// The drawings of all static blocks as one: hundreds of drawables cost more to hand over than to
/// draw, and most upright faces of a board stand against a neighbour and are never seen. Each
/// vertex also tells what the wood's shader wants to know of its cell: the cell's middle and the
/// height of its upper face over the vertex as texture coordinate 0, the open edges as 1.
///
/// Board coordinates throughout.
class BoardMesh
{
public:
    explicit BoardMesh(const Relief& relief);

    /// Replaces the drawables of `geode` by one drawable that shows the same from outside.
    void merge(osg::Geode& geode) const;

private:
    bool isCovered(const osg::Vec3f& a, const osg::Vec3f& b, const osg::Vec3f& c,
                   const osg::Vec3f& normal) const;

    const Relief& relief;
};
