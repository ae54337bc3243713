#pragma once

#include "LevelMap.h"
#include "LevelSight.h"
#include "PlayedHand.h"
#include "Strategy.h"

#include <osg/Vec2d>

class QImage;
class Rollix;

/// A player with a hand and eyes, and no other way into the game.
class TiltPlayer
{
public:
    /// Of the level that the game shows now, painted by this picture.
    TiltPlayer(Rollix& game, const QImage& picture);

    /// Once a tick: how the hand is to be held.
    PlayedHand hand();
    /// The hand that lies as the board did at the last look.
    PlayedHand restingHand() const;

private:
    PlayedHand leading(const osg::Vec2d& tilt) const;

    const LevelMap map;
    LevelSight sight;
    Strategy strategy;
};
