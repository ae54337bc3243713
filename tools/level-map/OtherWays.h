#pragma once

#include "LevelMap.h"

#include <vector>

/// How much of a level can be rolled in more than one way.
struct OtherWays
{
    int stretches = 0;  // from one station to the next
    int twofold = 0;    // those that another way leads along
};

/// The stations are what the ball has to come to one after the other, the start first. A stretch
/// has another way if the next station is still in reach where the easiest way is closed somewhere
/// in between, from wall to wall, and a wall or a hole of some size lies between the two: then the
/// other one is a road of its own, not another track of the same road.
OtherWays otherWays(const LevelMap& map, const std::vector<CellPosition>& stations);
