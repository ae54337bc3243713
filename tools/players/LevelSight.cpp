#include "LevelSight.h"

#include "game/Rollix.h"
#include "level/Block.h"
#include "level/BlockCheckpoint.h"
#include "level/Board.h"
#include "level/Level.h"

#include <osg/MatrixTransform>

#include <cmath>

namespace {

// World units in a tick. Blocks that are fixed to the board lag behind it when it trembles.
constexpr double visibleMove = 0.015;

}  // namespace

LevelSight::LevelSight(Rollix& watchedGame, const LevelMap& levelMap, int delay)
    : game(watchedGame), map(levelMap), lateness(delay), previous(PlayerView::of(game))
{
    for (const osg::ref_ptr<Block>& block : game.level->board->getBlocks()) {
        const CellPosition cell = map.cellAt(double(block->x), double(block->y));
        if (map.is(cell, BlockKind::Ghost) || map.is(cell, BlockKind::Elevator)) {
            indices[{cell.column, cell.row}] = watched.size();
            watched.push_back(block.get());
        }
    }
    look();
}

void LevelSight::look()
{
    if (!glimpses.empty())
        previous = glimpses.front().view;
    Glimpse now;
    now.view = PlayerView::of(game);
    now.checkpoint = {-1, -1};
    if (const BlockCheckpoint* flag = game.level->checkpoint)
        now.checkpoint = map.cellAt(double(flag->x), double(flag->y));
    const osg::Matrixd toBoard = osg::Matrixd::inverse(now.view.board);
    for (std::size_t i = 0; i < watched.size(); ++i) {
        const Seen before = glimpses.empty() ? Seen() : glimpses.back().blocks[i];
        now.blocks.push_back(lookAt(*watched[i], before, toBoard));
    }
    glimpses.push_back(std::move(now));
    if (int(glimpses.size()) > lateness + 1)
        glimpses.pop_front();
}

LevelSight::Seen LevelSight::lookAt(const Block& block, const Seen& before,
                                    const osg::Matrixd& toBoard) const
{
    Seen now;
    const osg::Matrixd onBoard = block.getTransform()->getMatrix() * toBoard;
    now.shift = onBoard.getTrans().z() - double(block.height) * 0.5;
    now.moving = std::abs(now.shift - before.shift) > visibleMove;
    now.atRest = now.moving ? 0 : before.atRest + 1;
    if (const osg::StateSet* state = block.getTransform()->getStateSet()) {
        if (const osg::Uniform* opaque = state->getUniform("a_Opaque"))
            opaque->get(now.solid);
    }
    now.ticks = now.solid == before.solid ? before.ticks + 1 : 0;
    return now;
}

const LevelSight::Seen& LevelSight::at(const CellPosition& cell) const
{
    static const Seen still;
    const auto entry = indices.find({cell.column, cell.row});
    return entry == indices.end() ? still : glimpses.front().blocks[entry->second];
}

double LevelSight::shift(const CellPosition& cell) const
{
    return at(cell).shift;
}

bool LevelSight::moves(const CellPosition& cell) const
{
    return at(cell).moving;
}

int LevelSight::ticksAtRest(const CellPosition& cell) const
{
    return at(cell).atRest;
}

bool LevelSight::isSolid(const CellPosition& cell) const
{
    return at(cell).solid;
}

int LevelSight::ticksSinceChange(const CellPosition& cell) const
{
    return at(cell).ticks;
}
