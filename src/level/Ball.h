#pragma once

#include "level/GameObject.h"

#include <osg/Geode>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>

class Ground;
class Ribbon;
class ShaderProgram;

/// The player's piece: a small red sphere under gravity. It hangs under the level's root and not
/// under the board, because its pose is world pose. It notices nothing itself: contacts come to the
/// board and the ground.
class Ball : public GameObject
{
public:
    /// Puts itself on the level's checkpoint.
    explicit Ball(Level& level);

    /// Puts the ball at rest above the level's checkpoint, at the next step. Without a checkpoint
    /// it stays as it is. The checkpoint's board coordinates serve as world coordinates: the board
    /// is level, or is made so by the same restart.
    void reset() override;

    void hitGround(Ground* ground);

    /// Follows the actor. Its state set carries the uniforms of a portal crossing.
    osg::MatrixTransform* getTransform() const { return transform; }

protected:
    ~Ball() override;

private:
    void createSphere();
    void createShader();
    void createActor();

    osg::ref_ptr<osg::Geode> geode;
    osg::ref_ptr<osg::MatrixTransform> transform;
    osg::ref_ptr<Ribbon> ribbon;
    osg::ref_ptr<ShaderProgram> shader;
};
