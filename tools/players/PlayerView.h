#pragma once

#include "game/GameState.h"

#include <osg/Matrixd>
#include <osg/Vec3d>

class Rollix;

/// What a player sees at a tick.
struct PlayerView
{
    osg::Vec3d ball;      // world
    osg::Vec3d velocity;  // world, units a second of simulation
    osg::Matrixd board;   // board to world
    GameState state = GameState::Initial;

    static PlayerView of(Rollix& game);

    osg::Vec3d onBoard() const { return ball * osg::Matrixd::inverse(board); }
    /// The board's upward normal; its x and y are the sines of the tilts.
    osg::Vec3d up() const { return osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), board); }
};
