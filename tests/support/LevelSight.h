#pragma once

#include "LevelMap.h"

#include <map>
#include <utility>

class Block;
class Board;

/// What a player sees move in a level: ghosts that fade and come back, elevators on their way.
class LevelSight
{
public:
    /// Of a loaded level; both have to outlive this.
    LevelSight(const Board& board, const LevelMap& map);

    /// Once a tick, before anything is asked.
    void look();

    /// How far an elevator stands above its home, in world units along the board's vertical.
    double shift(const CellPosition& cell) const;
    bool moves(const CellPosition& cell) const;

    /// Whether a ghost carries the ball; true for everything else.
    bool isSolid(const CellPosition& cell) const;
    /// Ticks since a ghost has changed; very many before its first change.
    int ticksSinceChange(const CellPosition& cell) const;

private:
    struct Seen
    {
        double shift = 0.0;
        bool moving = false;
        bool solid = true;
        int ticks = 1000000;
    };

    void lookAt(const Block& block, Seen& now) const;
    const Seen& at(const CellPosition& cell) const;

    const Board& board;
    std::vector<std::pair<const Block*, Seen*>> watched;
    std::map<std::pair<int, int>, Seen> seen;
};
