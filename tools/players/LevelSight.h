#pragma once

#include "LevelMap.h"
#include "PlayerView.h"

#include <deque>
#include <map>
#include <utility>
#include <vector>

class Block;
class Rollix;

/// What a player sees of a level, as late as eyes are: ball and board, ghosts that fade and come
/// back, elevators on their way.
class LevelSight
{
public:
    /// Of the level that the game shows now. The map has to outlive this. Everything is told as it
    /// was `delay` ticks ago.
    LevelSight(Rollix& game, const LevelMap& map, int delay);

    /// Once a tick, before anything is asked.
    void look();

    int delay() const { return lateness; }
    /// What was seen of ball and board, and in the tick before.
    const PlayerView& view() const { return glimpses.front().view; }
    const PlayerView& viewBefore() const { return previous; }

    /// The start or flag where the ball would come back to.
    CellPosition checkpoint() const { return glimpses.front().checkpoint; }

    /// How far an elevator stands above its home, in world units along the board's vertical.
    double shift(const CellPosition& cell) const;
    bool moves(const CellPosition& cell) const;
    /// Ticks since an elevator came to rest or was seen first.
    int ticksAtRest(const CellPosition& cell) const;

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
        int atRest = 0;
        int ticks = 1000000;
    };
    struct Glimpse
    {
        PlayerView view;
        CellPosition checkpoint;
        std::vector<Seen> blocks;
    };

    Seen lookAt(const Block& block, const Seen& before, const osg::Matrixd& toBoard) const;
    const Seen& at(const CellPosition& cell) const;

    Rollix& game;
    const LevelMap& map;
    const int lateness;
    std::vector<const Block*> watched;
    std::map<std::pair<int, int>, std::size_t> indices;
    std::deque<Glimpse> glimpses;  // the oldest first
    PlayerView previous;
};
