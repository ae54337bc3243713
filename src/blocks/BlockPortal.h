#pragma once

#include "blocks/PortalShape.h"
#include "level/Block.h"

#include <osg/Vec3f>
#include <osg/ref_ptr>

#include <functional>

namespace osg {
class Cylinder;
class StateSet;
}  // namespace osg

class ShaderProgram;

/// A block with a mouth on one of its faces. A ball that comes up to it is pulled in and comes out
/// of another portal of the same link group, drawn anew for each crossing, its velocity turned
/// along. While it passes, the ball's own program draws it split over the two mouths, from uniforms
/// that this block sets on it. Events come inside the physics step, the frame task between steps.
class BlockPortal : public Block
{
public:
    enum PortalState : int {
        Idle = 0,
        Attracting = 1,  // the ball is near: not solid, the mouth pulls
        Sending = 2,     // the ball floats in; waits until it has passed the mouth
        Receiving = 3,   // not solid; waits for the sender
        Releasing = 4,   // the ball has been put here; waits until it has left
    };

    BlockPortal(Level& level, float x, float y, int saturation, int value, BlockGroup& group);

    /// Solid and idle, the ball under gravity and drawn in one piece.
    void reset() override;

    /// Of either of the two trigger shapes; which of them it was is not known.
    void onBallEnter(Ball* ball) override;
    void onBallLeave(Ball* ball) override;

    PortalState getState() const { return state; }

protected:
    ~BlockPortal() override;

private:
    class BallPortalShaderCallback;

    void createTriggers(const PortalShape& shape);
    void createSparks();
    void createMouth();

    void update();
    void attractBall();
    void checkBall();

    BlockPortal* pickReceiver() const;
    void activate();
    void showCrossing();
    void teleportBall();
    void releaseBall();

    /// One push on the ball, along this direction of the block's frame.
    void pushBall(const osg::Vec3f& localForce);
    osg::StateSet* ballState() const;

    const PortalFace orientation;
    PortalState state = Idle;
    BlockPortal* receiver = nullptr;  // not owned; null outside a crossing
    const float strength;
    osg::Vec3f mouthCenter;
    const osg::Vec3f direction;  // from the mouth into the block, in the block's frame
    std::function<void()> frameTask;
    osg::ref_ptr<osg::Cylinder> cylinder;
    osg::ref_ptr<ShaderProgram> particleProgram;
    osg::ref_ptr<ShaderProgram> mouthProgram;
    osg::ref_ptr<ShaderProgram> inlayProgram;
};
