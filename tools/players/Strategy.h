#pragma once

#include "LevelSight.h"
#include "WayFinder.h"

#include <osg/Vec2d>

#include <map>
#include <utility>
#include <vector>

/// What the player wants to happen now.
struct Intent
{
    osg::Vec2d velocity;      // of the ball on the board, units a second
    bool keepsBoard = false;  // rather than that: the board is to stay as it is
    bool climbs = false;      // up a ramp, which needs all the tilt there is
    bool rolls = false;       // on along the way; no braking before the end of it
};

/// How a player likes to go.
struct Temper
{
    double speed = 2.5;         // units a second on a free way
    double waitingSpeed = 1.2;  // towards a place where it has to stop
    double careSpeed = 2.5;     // beside a hole
    double caution = 0.3;       // what it costs to be beside one, in cells of a detour
    int patience = 0;           // ticks to spare that it wants when something is about to change
};

/// The plan of a player who has had a good look at the level: flags that must be passed in the
/// order of their distance, then the goal. It knows the rules: it presses a button when a block of
/// its group bars the way, waits for ghosts and elevators, and keeps off mines.
class Strategy
{
public:
    /// The map has to outlive this.
    Strategy(const LevelMap& map, const Temper& temper);

    /// Once a tick. `expectedBall` is where the player believes it to be now, on the board.
    Intent decide(const LevelSight& sight, const osg::Vec3d& expectedBall);

private:
    bool flies(const LevelSight& sight, const CellPosition& over, const osg::Vec3d& ball) const;
    void noteTouchedCell(const CellPosition& here, const osg::Vec3d& ball);
    const Way& wayToTarget(const CellPosition& here);
    Way wayToButtonFor(const CellPosition& barrier, const CellPosition& here,
                       const std::vector<CellPosition>& shut) const;
    std::vector<CellPosition> shutWith(const LevelSight& sight, const CellPosition& barrier) const;
    bool waitsForButton(const LevelSight& sight, const CellPosition& cell) const;
    /// The part of the way that is open now.
    Way openPart(const LevelSight& sight, const Way& way) const;
    bool mayStep(const LevelSight& sight, const Way& way, std::size_t step) const;
    bool mayEnterGhost(const LevelSight& sight, const Way& way, std::size_t step) const;
    bool mayUseElevator(const LevelSight& sight, const CellPosition& from,
                        const CellPosition& to) const;
    void leanOn(const LevelSight& sight, const CellPosition& here, const CellPosition& next,
                Intent& intent) const;
    bool isSpentSpring(const CellPosition& cell) const;
    Way wayOff(const CellPosition& spring);
    std::vector<CellPosition> edgesAbove(const CellPosition& cell) const;
    void touch(const CellPosition& cell);
    bool hasRested(const CellPosition& cell) const;
    Intent follow(const Way& way, const osg::Vec3d& ball, bool stops) const;

    const LevelMap& map;
    const Temper temper;
    WayFinder finder;
    std::vector<CellPosition> flags;
    std::vector<CellPosition> goals;
    std::map<std::pair<int, int>, int> restsUntil;  // tick, by cell
    int weightlessUntil = 0;                        // tick
    CellPosition last{-1, -1};
    int tick = 0;

    Way planned;
    CellPosition plannedFrom{-1, -1};
    std::size_t plannedFlags = 0;
    bool plannedOnSpent = false;
};
