#pragma once

#include <osg/Callback>
#include <osg/Geometry>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>

class Rollix;
class ShaderProgram;

/// The ball's trail: a flat strip on the board, at each frame one pair of vertices longer at its
/// head and one shorter at its tail. It hangs under the board's transform and so tilts with it; an
/// update callback on the ball's transform feeds it. It is never reset: after a jump of the ball it
/// spans the jump and closes within 25 frames. A paused game keeps on closing it.
class Ribbon : public osg::NodeCallback
{
public:
    /// Installs itself on `target`, the ball's transform, whose actor is `actorId`. `parent` is the
    /// board's transform.
    Ribbon(const osg::Vec3f& color, osg::Node* target, unsigned int actorId, Rollix* game,
           osg::MatrixTransform* parent);

    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override;

protected:
    ~Ribbon() override;

private:
    void createGeometry(const osg::Vec3f& color);
    void createGeode();
    void shift();
    void append(const osg::Matrixd& ballMatrix);

    osg::ref_ptr<osg::Geometry> geometry;
    osg::ref_ptr<osg::MatrixTransform> parent;
    const float halfWidth;
    const unsigned int vertexCount;
    const unsigned int actorId;
    Rollix* game;
    osg::ref_ptr<ShaderProgram> program;
    osg::ref_ptr<osg::Vec3Array> vertices;
    osg::ref_ptr<osg::Vec3Array> normals;
};
