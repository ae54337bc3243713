#pragma once

#include "level/Block.h"

/// The wall and the floor of a maze: nothing but a shape, merged into the board. Under value 57 it
/// is an empty cell with an id.
class BlockStandard : public Block
{
public:
    BlockStandard(Level& level, float x, float y, int saturation, int value, BlockGroup& group);

protected:
    ~BlockStandard() override;
};
