#include "level/BoardMesh.h"

#include "level/Relief.h"

#include <osg/Geode>
#include <osg/TriangleFunctor>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr float tolerance = 1.0e-4f;
constexpr float insideStep = 0.01f;  // units, from a face into its block

/// Collects the corners of the triangles that a drawable consists of.
struct Corners
{
    std::vector<osg::Vec3f> points;

    void operator()(const osg::Vec3& a, const osg::Vec3& b, const osg::Vec3& c, bool = false)
    {
        points.insert(points.end(), {a, b, c});
    }
};

}  // namespace

BoardMesh::BoardMesh(const Relief& boardRelief) : relief(boardRelief) {}

bool BoardMesh::isCovered(const osg::Vec3f& a, const osg::Vec3f& b, const osg::Vec3f& c,
                          const osg::Vec3f& normal) const
{
    const bool looksAlongX = std::abs(normal.x()) > 1.0f - tolerance;
    const bool looksAlongY = std::abs(normal.y()) > 1.0f - tolerance;
    if (!looksAlongX && !looksAlongY)
        return false;
    const osg::Vec3f beyond = (a + b + c) / 3.0f + normal * 0.5f;
    const float filled = relief.solidHeight(relief.columnOf(beyond.x()), relief.rowOf(beyond.y()));
    return filled >= std::max({a.z(), b.z(), c.z()}) - tolerance;
}

void BoardMesh::merge(osg::Geode& geode) const
{
    osg::TriangleFunctor<Corners> corners;
    for (unsigned int i = 0; i < geode.getNumDrawables(); ++i)
        geode.getDrawable(i)->accept(corners);

    osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
    osg::ref_ptr<osg::Vec3Array> normals = new osg::Vec3Array;
    osg::ref_ptr<osg::Vec3Array> cells = new osg::Vec3Array;
    osg::ref_ptr<osg::Vec4Array> openEdges = new osg::Vec4Array;
    // From the last row to the first: from the camera's first place that is front to back, and what
    // hides something is drawn before it.
    for (std::size_t i = corners.points.size(); i >= 3;) {
        i -= 3;
        const osg::Vec3f& a = corners.points[i];
        const osg::Vec3f& b = corners.points[i + 1];
        const osg::Vec3f& c = corners.points[i + 2];
        osg::Vec3f normal = (b - a) ^ (c - a);
        if (normal.normalize() < tolerance || isCovered(a, b, c, normal))
            continue;
        const osg::Vec3f inside = (a + b + c) / 3.0f - normal * insideStep;
        const int column = relief.columnOf(inside.x());
        const int row = relief.rowOf(inside.y());
        const float left = relief.xOf(column) - 0.5f;
        const float front = relief.yOf(row) - 0.5f;
        const osg::Vec4f edges = relief.openEdges(column, row);
        for (const osg::Vec3f& corner : {a, b, c}) {
            const float top = relief.at(column, row).top.at(corner.x() - left, corner.y() - front);
            vertices->push_back(corner);
            normals->push_back(normal);
            cells->push_back(osg::Vec3f(left + 0.5f, front + 0.5f, top));
            openEdges->push_back(edges);
        }
    }

    geode.removeDrawables(0, geode.getNumDrawables());
    if (vertices->empty())
        return;
    osg::ref_ptr<osg::Vec4Array> colors = new osg::Vec4Array;
    colors->push_back(osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
    osg::ref_ptr<osg::Geometry> mesh = new osg::Geometry;
    mesh->setUseDisplayList(false);
    mesh->setUseVertexBufferObjects(true);
    mesh->setVertexArray(vertices);
    mesh->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
    mesh->setColorArray(colors, osg::Array::BIND_OVERALL);
    mesh->setTexCoordArray(0, cells, osg::Array::BIND_PER_VERTEX);
    mesh->setTexCoordArray(1, openEdges, osg::Array::BIND_PER_VERTEX);
    mesh->addPrimitiveSet(new osg::DrawArrays(GL_TRIANGLES, 0, GLsizei(vertices->size())));
    geode.addDrawable(mesh);
}
