#pragma once

#include "LevelMap.h"
#include "PlayedHand.h"
#include "support/GameTest.h"
#include "support/KeyPlayer.h"

#include <QImage>
#include <osg/Vec2d>
#include <osg/Vec3d>

#include <vector>

/// A player with a hand and eyes, and no other way into the game: required flags in the order of
/// their distance, then the goal.
class TiltPlayer
{
public:
    TiltPlayer(const GameTest& test, const QImage& picture);

    /// How the hand is to be held at this tick.
    PlayedHand hand();
    /// The hand that lies as the board does.
    PlayedHand restingHand() const;

private:
    osg::Vec3d up() const;
    PlayedHand leading(const osg::Vec2d& tilt) const;
    CellPosition nearest(const std::vector<CellPosition>& cells, const CellPosition& from) const;
    osg::Vec2d tiltTowards(const CellPosition& target, const PlayerView& view) const;

    const GameTest& test;
    LevelMap map;
    KeyPlayer planner;
    std::vector<CellPosition> flags;
    std::vector<CellPosition> goals;
};
