#pragma once

#include "support/GameTest.h"
#include "support/KeyPlayer.h"
#include "support/LevelMap.h"

#include <vector>

/// One run of a level that comes with the game by a player with four keys: required flags in the
/// order of their distance, then the goal, within the level's five lives.
class Playthrough
{
public:
    /// Loads the true picture of level `number` into the test's game.
    Playthrough(GameTest& test, unsigned int number);

    /// Plays until the level is completed (true), or failed or too long under way (false).
    bool finishes();

    int ticksPlayed() const { return played; }
    int falls() const { return fallen; }

    KeyPlayer& player() { return keys; }

private:
    bool over() const;
    PlayerView view() const;
    void tick();
    bool nextTarget(CellPosition& target) const;

    GameTest& test;
    QImage picture;
    LevelMap map;
    KeyPlayer keys;
    std::vector<CellPosition> flags;
    std::vector<CellPosition> goals;
    int played = 0;
    int fallen = 0;
};
