#include "support/LevelSight.h"

#include "level/Block.h"
#include "level/Board.h"

#include <osg/MatrixTransform>

#include <cmath>

namespace {

constexpr double visibleMove = 0.002;  // world units in a tick

}  // namespace

LevelSight::LevelSight(const Board& levelBoard, const LevelMap& map) : board(levelBoard)
{
    for (const osg::ref_ptr<Block>& block : board.getBlocks()) {
        const CellPosition cell = map.cellAt(block->x, block->y);
        if (map.is(cell, BlockKind::Ghost) || map.is(cell, BlockKind::Elevator))
            watched.emplace_back(block.get(), &seen[{cell.column, cell.row}]);
    }
}

void LevelSight::look()
{
    for (const auto& [block, now] : watched)
        lookAt(*block, *now);
}

void LevelSight::lookAt(const Block& block, Seen& now) const
{
    const Seen before = now;
    const osg::Matrixd onBoard = block.getTransform()->getMatrix() *
                                 osg::Matrixd::inverse(board.getTransform()->getMatrix());
    now.shift = onBoard.getTrans().z() - block.height * 0.5;
    now.moving = std::abs(now.shift - before.shift) > visibleMove;
    if (const osg::StateSet* state = block.getTransform()->getStateSet()) {
        if (const osg::Uniform* opaque = state->getUniform("a_Opaque"))
            opaque->get(now.solid);
    }
    now.ticks = now.solid == before.solid ? before.ticks + 1 : 0;
}

const LevelSight::Seen& LevelSight::at(const CellPosition& cell) const
{
    static const Seen still;
    const auto entry = seen.find({cell.column, cell.row});
    return entry == seen.end() ? still : entry->second;
}

double LevelSight::shift(const CellPosition& cell) const
{
    return at(cell).shift;
}

bool LevelSight::moves(const CellPosition& cell) const
{
    return at(cell).moving;
}

bool LevelSight::isSolid(const CellPosition& cell) const
{
    return at(cell).solid;
}

int LevelSight::ticksSinceChange(const CellPosition& cell) const
{
    return at(cell).ticks;
}
