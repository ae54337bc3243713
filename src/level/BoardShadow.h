#pragma once

#include <osg/Callback>
#include <osg/StateSet>
#include <osg/Uniform>
#include <osg/ref_ptr>

class Board;
class Relief;

/// The board's shadow on the ground: hands the ground's shader a blurred picture of the board's
/// outline and the board's pose. Works when the ground is about to be drawn.
class BoardShadow : public osg::NodeCallback
{
public:
    /// As a cull callback of the ground, whose state it also furnishes.
    BoardShadow(const Board& board, const Relief& relief, osg::StateSet& groundState);

    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override;

private:
    const Board& board;
    osg::ref_ptr<osg::Uniform> worldToBoard;
};
