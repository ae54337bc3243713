#include "blocks/Ribbon.h"

#include "base/WorldNumbers.h"
#include "game/Rollix.h"
#include "shaders/ShaderProgram.h"

#include <osg/Geode>
#include <osg/Math>

#include <cmath>

namespace {

constexpr unsigned int stripVertices = 50;  // two a step: half a second of history

}  // namespace

Ribbon::Ribbon(const osg::Vec3f& color, osg::Node* target, unsigned int ballActorId, Rollix* owner,
               osg::MatrixTransform* boardTransform)
    : parent(boardTransform),
      halfWidth(world::ballRadius),
      vertexCount(stripVertices),
      actorId(ballActorId),
      game(owner)
{
    createGeometry(color);
    createGeode();
    target->addUpdateCallback(this);
}

Ribbon::~Ribbon() = default;

void Ribbon::createGeometry(const osg::Vec3f& color)
{
    vertices = new osg::Vec3Array(vertexCount);
    normals = new osg::Vec3Array(vertexCount);
    osg::ref_ptr<osg::Vec4Array> colors = new osg::Vec4Array(vertexCount);
    for (unsigned int i = 0; i + 1 < vertexCount; i += 2) {
        // By place and not by age: invisible at both ends, most opaque in the middle.
        const float alpha = std::sin(float(float(i) * osg::PI / float(vertexCount)));
        for (unsigned int edge = i; edge <= i + 1; ++edge) {
            (*normals)[edge].set(0.0f, 0.0f, 1.0f);
            (*colors)[edge].set(color.x(), color.y(), color.z(), alpha);
        }
    }
    geometry = new osg::Geometry;
    geometry->setDataVariance(osg::Object::DYNAMIC);
    geometry->setUseDisplayList(false);
    geometry->setUseVertexBufferObjects(true);
    geometry->setVertexArray(vertices);
    geometry->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
    geometry->setColorArray(colors, osg::Array::BIND_PER_VERTEX);
    geometry->addPrimitiveSet(new osg::DrawArrays(GL_QUAD_STRIP, 0, GLsizei(vertexCount)));
}

void Ribbon::createGeode()
{
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    program = new ShaderProgram(geode);
    game->setSharedStages(*program, "standard");
    geode->addDrawable(geometry);
    osg::StateSet* stateSet = geode->getOrCreateStateSet();
    stateSet->setMode(GL_BLEND, osg::StateAttribute::ON);
    stateSet->setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
    parent->addChild(geode);
}

void Ribbon::operator()(osg::Node* node, osg::NodeVisitor* visitor)
{
    if (node) {
        shift();
        append(static_cast<osg::MatrixTransform*>(node)->getMatrix());
    }
    traverse(node, visitor);
}

void Ribbon::shift()
{
    for (unsigned int i = 3; i < vertexCount; i += 2) {
        (*vertices)[i - 3] = (*vertices)[i - 1];
        (*vertices)[i - 2] = (*vertices)[i];
        (*normals)[i - 3] = (*normals)[i - 1];
        (*normals)[i - 2] = (*normals)[i];
    }
}

void Ribbon::append(const osg::Matrixd& ballMatrix)
{
    const osg::Vec3d position = (ballMatrix * parent->getInverseMatrix()).getTrans();
    const osg::Vec3f velocity = game->linearVelocity(actorId);
    // The strip's width lies across the way, with a bias that settles its direction at rest.
    const float angle = std::atan2(1.0f - velocity.x(), -velocity.y());
    const osg::Matrixd placed = osg::Matrixd::rotate(double(angle), osg::Vec3d(0.0, 0.0, 1.0)) *
                                osg::Matrixd::translate(position);
    (*vertices)[vertexCount - 2] = osg::Vec3f(-halfWidth, 0.0f, 0.0f) * placed;
    (*vertices)[vertexCount - 1] = osg::Vec3f(halfWidth, 0.0f, 0.0f) * placed;
    vertices->dirty();

    // Moved along as well: no surface normal, but one that leans outwards from the board's middle.
    osg::Vec3f normal = osg::Vec3f(0.0f, 0.0f, 1.0f) * placed;
    normal.normalize();
    (*normals)[vertexCount - 2] = normal;
    (*normals)[vertexCount - 1] = normal;
    normals->dirty();
    geometry->dirtyBound();
}
