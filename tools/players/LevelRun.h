#pragma once

#include "LevelMap.h"
#include "PlayedGame.h"

#include <osg/Vec2d>

#include <string>
#include <vector>

struct RunWish
{
    std::string player = "perfect";
    unsigned int seed = 1;
    int reaction = 0;  // ticks; 0 for what the seed says
    int limit = 180 * PlayedGame::ticksPerSecond;
};

/// One run of a level, from its start until it is won, the last life is lost or the time is up.
struct RunResult
{
    bool won = false;
    int ticks = 0;
    int livesLost = 0;
    int coins = 0;
    std::vector<CellPosition> losses;  // where the ball was last over a floor before it fell
    std::vector<osg::Vec2d> track;     // the ball's place on the board, one a tick

    double seconds() const { return double(ticks) / PlayedGame::ticksPerSecond; }
};

RunResult runLevel(PlayedGame& game, const QImage& picture, const RunWish& wish);

/// All coins that a level has to give in one round.
int coinsOf(const LevelMap& map);
