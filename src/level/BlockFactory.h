#pragma once

#include "level/Block.h"
#include "level/LevelPixel.h"

#include <functional>

using BlockFactory =
    std::function<Block*(Level&, float x, float y, int saturation, int value, BlockGroup& group)>;

/// The creator of a kind; empty for BlockKind::None. It is defined where all kinds are known, so
/// that the board makes blocks without knowing any.
BlockFactory blockFactoryOf(BlockKind kind);
