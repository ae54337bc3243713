#include "level/BlockFactory.h"

#include "blocks/BlockElevator.h"
#include "blocks/BlockGhost.h"
#include "blocks/BlockItem.h"
#include "blocks/BlockPortal.h"
#include "blocks/BlockTrap.h"
#include "level/BlockButton.h"
#include "level/BlockCheckpoint.h"
#include "level/BlockStandard.h"

namespace {

template <typename T>
T* createBlock(Level& level, float x, float y, int saturation, int value, BlockGroup& group)
{
    return new T(level, x, y, saturation, value, group);
}

}  // namespace

BlockFactory blockFactoryOf(BlockKind kind)
{
    // No default: a kind that is forgotten here is a warning of the compiler.
    switch (kind) {
    case BlockKind::None:
        break;
    case BlockKind::Standard:
        return createBlock<BlockStandard>;
    case BlockKind::Checkpoint:
        return createBlock<BlockCheckpoint>;
    case BlockKind::Button:
        return createBlock<BlockButton>;
    case BlockKind::Ghost:
        return createBlock<BlockGhost>;
    case BlockKind::Elevator:
        return createBlock<BlockElevator>;
    case BlockKind::Trap:
        return createBlock<BlockTrap>;
    case BlockKind::Item:
        return createBlock<BlockItem>;
    case BlockKind::Portal:
        return createBlock<BlockPortal>;
    }
    return BlockFactory();
}
