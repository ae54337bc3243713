#pragma once

#include "base/WorldNumbers.h"
#include "level/Block.h"
#include "support/GameTest.h"

#include <osg/Geode>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>

#include <functional>
#include <vector>

/// Blocks of the true game, with a ball that is put where the test wants it.
class BlockTest : public GameTest
{
protected:
    ~BlockTest() override;

    template <typename Kind>
    Kind& blockAs(int column, int row) const
    {
        auto* block = dynamic_cast<Kind*>(blockAt(column, row));
        if (!block)
            ADD_FAILURE() << "no such block at column " << column << ", row " << row;
        return *block;
    }

    osg::Vec3d positionOf(const Block& block) const;

    /// Puts the ball there and keeps it from falling; its place is exact after this.
    void hovers(const osg::Vec3d& position);
    void hoversAbove(const Block& block, double distance);

    /// What the block hears when the ball begins to touch it.
    void touches(Block& block);

    /// Shapes of this kind that hang on the block, its own body included.
    template <typename Shape>
    std::vector<const Shape*> shapesOf(const Block& block) const
    {
        std::vector<const Shape*> shapes;
        for (const osg::ShapeDrawable* drawable : drawablesOf<osg::ShapeDrawable>(block))
            if (const auto* shape = dynamic_cast<const Shape*>(drawable->getShape()))
                shapes.push_back(shape);
        return shapes;
    }

    /// Drawables of this class below the block's transform, in drawing order.
    template <typename Kind>
    std::vector<const Kind*> drawablesOf(const Block& block) const
    {
        std::vector<const Kind*> found;
        for (const osg::Geode* geode : geodesOf(block)) {
            for (unsigned int i = 0; i < geode->getNumDrawables(); ++i)
                if (const auto* drawable = dynamic_cast<const Kind*>(geode->getDrawable(i)))
                    found.push_back(drawable);
        }
        return found;
    }

    std::vector<const osg::Geode*> geodesOf(const Block& block) const;

    /// The camera comes this near to a point of the world, until the end of the test.
    void looksAt(const osg::Vec3d& point, float distance);

    /// Where a point of the world stands in the frame.
    QPoint pixelOf(const osg::Vec3d& point) const;

    /// Serves timers, without a tick, until the condition holds; false if it never does.
    bool comesTrue(const std::function<bool()>& condition);
};

/// Pixels of a frame around a place, that many to each side.
QImage cutout(const QImage& frame, const QPoint& middle, int reach);

/// The frame's pixels whose red is well above their green and blue: the ball, for one.
int redPixels(const QImage& picture);

/// What a force of one tick adds to the ball's speed.
constexpr double speedOfForce(double force)
{
    return force * world::secondsPerTick / world::ballMass;
}
