#include "level/BlockStandard.h"

BlockStandard::BlockStandard(Level& owner, float cellX, float cellY, int saturation, int value,
                             BlockGroup& linkGroup)
    : Block(owner, cellX, cellY, saturation, value, linkGroup, false, "Standard")
{
}

BlockStandard::~BlockStandard() = default;
