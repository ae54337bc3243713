#pragma once

#include "LevelMap.h"
#include "support/GameTest.h"
#include "support/KeyPlayer.h"
#include "support/LevelSight.h"

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

/// One run of a level by a player with four keys: required flags in the order of their distance,
/// then the goal, within the level's five lives. It knows the rules: it presses a button when a
/// block of its group bars the way, waits for ghosts and elevators, and keeps off mines.
class Playthrough
{
public:
    using Pace = std::function<void()>;

    /// Plays `picture` as level `number` of the test's game. The player believes the level to be as
    /// `belief` shows it. After each tick `pace` lets the tick's time pass.
    Playthrough(GameTest& test, unsigned int number, const QImage& picture, const QImage& belief,
                Pace pace);
    /// The true picture of level `number`, as it comes with the game.
    Playthrough(GameTest& test, unsigned int number, const Pace& pace);

    static QImage truePicture(unsigned int number);

    /// Plays until the level is completed (true), or failed or longer than `limit` ticks under way
    /// (false).
    bool finishes(int limit);

    int ticksPlayed() const { return played; }
    int livesLost() const { return lost; }

private:
    using Way = std::vector<CellPosition>;

    void tick();
    bool over() const;
    PlayerView view() const;
    void noteTouchedCell(const PlayerView& now);
    void play(const PlayerView& now);

    Way wayToTarget(const CellPosition& here) const;
    Way shortestWay(const CellPosition& here, const std::vector<CellPosition>& targets) const;
    Way wayToButtonFor(const CellPosition& barrier, const CellPosition& here) const;
    /// The part of the way that is open now.
    Way openPart(const Way& way);
    bool mayStep(const CellPosition& from, const CellPosition& to);
    bool mayEnterGhost(const CellPosition& from, const CellPosition& to);
    bool waitsForButton(const CellPosition& cell) const;
    void touch(const CellPosition& cell);
    bool hasRested(const CellPosition& cell) const;

    GameTest& test;
    LevelMap map;
    KeyPlayer keys;
    std::unique_ptr<LevelSight> sight;
    Pace letTimePass;
    std::vector<CellPosition> flags;
    std::vector<CellPosition> goals;
    std::map<std::pair<int, int>, int> restsUntil;  // tick, by cell
    int weightlessUntil = 0;                        // tick
    CellPosition last{-1, -1};
    int played = 0;
    int lost = 0;
    int limit = 0;
};
