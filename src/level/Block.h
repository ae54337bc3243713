#pragma once

#include "level/BlockShape.h"
#include "level/GameObject.h"
#include "level/Hovering.h"

#include <osg/Geode>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>

#include <string>
#include <vector>

namespace osg {
class Drawable;
}  // namespace osg

class Ball;
class Block;

/// The blocks whose pixels have one alpha: what a button signals and a portal sends to.
using BlockGroup = std::vector<osg::ref_ptr<Block>>;

/// What a non-empty pixel becomes: a cell of the board with a height, in some cases a slope, a body
/// and a place in a link group. A static block is merged into the board's actor and geode; a
/// dynamic one has an actor and a transform of its own, tied to the board by a joint. Its events
/// come on the main thread with the world lock held: those of the ball inside the physics step,
/// onSignal there or from a button's timer.
class Block : public GameObject
{
public:
    /// The ball touched this block's actor.
    virtual void onBallContact(Ball* ball);
    /// The ball entered a trigger shape of this block.
    virtual void onBallEnter(Ball* ball);
    /// A button of this link group fired.
    virtual void onSignal(Block* source);
    /// The ball left a trigger shape of this block.
    virtual void onBallLeave(Ball* ball);

    /// The block's own transform, or the board's for a static block; null for a block without body.
    osg::MatrixTransform* getTransform() const { return transform; }

    /// The upper face over the board as the level begins.
    CornerHeights corners() const;

    /// Whether one may see that the block can rise, sink or vanish: its edges part it from the
    /// wood round it. How far it stands above its place now, in units, and how much of it is there,
    /// 1 for all and 0 for nothing.
    virtual bool isRestless() const;
    virtual float lift() const;
    virtual float presence() const;

    /// What floats over the block now, in board coordinates.
    virtual std::vector<Hovering> hovering() const;

    /// Tells a dynamic block's wood which edges of its upper face end in the open: 1 for yes,
    /// towards +x, +y, -x and -y.
    void setOpenEdges(const osg::Vec4f& edges);

    /// Centre of the cell on the board, and the top of the cell over it: the high edge of a ramp.
    const float x;
    const float y;
    float height = 0.0f;

protected:
    /// `group` is the live vector in the board, which fills while the picture is read.
    /// `shaderGroup` is the kind's word: the scene group of its dynamic blocks.
    Block(Level& level, float x, float y, int saturation, int value, BlockGroup& group,
          bool dynamic, std::string shaderGroup);
    ~Block() override;

    /// Ties a dynamic block to the board where it is now; the board has to be level. Returns the
    /// joint's id.
    unsigned int fixToBoard();

    /// Height of the middle of the upper face over the block's own origin.
    float surfaceHeight() const;

    /// Simulation time of the frame in seconds, the clock of all animations.
    float frameTime() const;

    /// A new child of the block's transform that holds `drawable`.
    osg::ref_ptr<osg::Geode> addDecoration(osg::Drawable* drawable);

    /// The same for what is made of the board's wood: it is told where on the board it is.
    osg::ref_ptr<osg::Geode> addWoodenDecoration(osg::Drawable* drawable);

    float lowHeight = 0.0f;
    float highHeight = 0.0f;
    int slope = 0;
    BlockGroup* group;
    osg::ref_ptr<osg::MatrixTransform> transform;

private:
    osg::ref_ptr<osg::Geode> body;  // of a dynamic block

    void createShape(int value, bool dynamic, std::string shaderGroup);
    void createRamp(float low, float high, int direction, bool dynamic, std::string shaderGroup);
    void createCuboid(float top, bool dynamic, std::string shaderGroup);
    void createOwnTransform(osg::Drawable* drawable, const std::string& shaderGroup);
};
