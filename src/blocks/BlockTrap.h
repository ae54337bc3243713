#pragma once

#include "level/Block.h"
#include "level/BlockOptions.h"

#include <QObject>
#include <QTimer>
#include <osg/Vec3d>
#include <osg/Vec3f>
#include <osg/ref_ptr>

#include <functional>

namespace osg {
class Cylinder;
class ShapeDrawable;
class Sphere;
}  // namespace osg

class ShaderProgram;

/// Four hazards, told apart by the pixel's saturation: a mine that blows the ball away and costs
/// lives by distance, a spring that throws it, a trapdoor that vanishes under it, and a well that
/// pulls it in. All but the well rest for ten seconds after they have acted and are then armed
/// again. Its timer's steps run on the main thread between the ticks, with the world lock held.
class BlockTrap : public QObject, public Block
{
    Q_OBJECT

public:
    BlockTrap(Level& level, float x, float y, int saturation, int value, BlockGroup& group);

    /// Sets a mine, spring or trapdoor off, unless it has been set off already.
    void onBallContact(Ball* ball) override;
    /// The well pulls for as long as the ball is inside its cube.
    void onBallEnter(Ball* ball) override;
    void onBallLeave(Ball* ball) override;

    /// Armed and at rest, whatever was under way.
    void reset() override;

    /// A trapdoor is there or it is not; none of its edges gives it away before.
    float presence() const override;

protected:
    ~BlockTrap() override;

private:
    void startTimer(int milliseconds, void (BlockTrap::*slot)());
    class BlockTrapdoorCallback;

    void createMine();
    void createWarning();
    void armMine();
    void explode();
    void fadeMine();

    void createSpring();
    void releaseSpring();

    void createTrapdoor();
    void armTrapdoor();
    void openTrapdoor();

    void createWell();
    void createWellSparks();
    void createWellDisc();
    void pullBall();
    void stopPulling();

    void setMineRadius(float radius);
    void setPlungerHeight(float plungerHeight);

    /// From this block's origin to the ball's middle, in the world frame.
    osg::Vec3d wayToBall() const;
    void pushBall(const osg::Vec3f& force);

    TrapKind kind;
    QTimer timer;
    double parameter;
    bool active = false;  // well: ball inside; trapdoor: open; mine: has exploded
    bool fired = false;
    std::function<void()> frameTask;
    osg::ref_ptr<osg::Cylinder> cylinder;            // the spring's plunger, the well's disc
    osg::ref_ptr<osg::Sphere> sphere;                // the mine
    osg::ref_ptr<osg::ShapeDrawable> shapeDrawable;  // of whichever there is
    osg::ref_ptr<ShaderProgram> particleProgram;
    osg::ref_ptr<ShaderProgram> shapeProgram;
    osg::ref_ptr<ShaderProgram> inlayProgram;
    osg::ref_ptr<BlockTrapdoorCallback> trapdoorCallback;
};
