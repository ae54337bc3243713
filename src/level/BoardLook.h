#pragma once

#include "level/ShadeField.h"

#include <osg/Callback>
#include <osg/Image>
#include <osg/StateSet>
#include <osg/Uniform>
#include <osg/ref_ptr>

#include <vector>

class Block;
class Level;
class Relief;

/// How the board's wood lies under the lamp: hands its shaders the grain, the shade map and the
/// ball's place. It works when the board is about to be drawn, so that a world which nobody looks
/// at costs nothing.
class BoardLook : public osg::NodeCallback
{
public:
    /// For a level whose blocks all stand; as a cull callback of the board's root, whose state it
    /// also furnishes.
    BoardLook(Level& level, const Relief& relief, osg::StateSet& rootState);

    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override;

private:
    struct Standing
    {
        Block* block;  // not owned: the board's
        int column;
        int row;
    };

    void setUpShadeMap(osg::StateSet& rootState);
    void findBlocks(const Relief& relief);
    void lookAtBlocks();
    void setPlaces(const osg::Matrixd& worldToView);

    Level& level;
    ShadeField field;
    std::vector<Standing> dynamicBlocks;
    std::vector<Block*> hovering;
    osg::ref_ptr<osg::Image> shadeMap;
    osg::ref_ptr<osg::Uniform> eyeToBoard;
    osg::ref_ptr<osg::Uniform> lampOnBoard;
    osg::ref_ptr<osg::Uniform> upOnBoard;
    osg::ref_ptr<osg::Uniform> ballOnBoard;
    osg::Vec3f lamp;  // in board coordinates
    bool seen = false;
};
