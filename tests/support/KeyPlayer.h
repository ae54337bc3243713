#pragma once

#include "LevelMap.h"

#include <Qt>
#include <osg/Matrixd>
#include <osg/Vec2d>
#include <osg/Vec3d>

#include <functional>
#include <map>
#include <vector>

/// What a player sees at a tick.
struct PlayerView
{
    osg::Vec3d ball;      // world
    osg::Vec3d velocity;  // world, units a second of simulation
    osg::Matrixd board;   // board to world
};

/// A player with eyes and four keys: it sees the ball and the board, knows the level from its
/// picture, and decides at every tick which arrow keys are down. It has no other way into the game.
/// It follows a way cell by cell and brakes at each corner.
class KeyPlayer
{
public:
    using KeyAction = std::function<void(Qt::Key)>;

    KeyPlayer(const LevelMap& map, KeyAction press, KeyAction release);

    /// How fast it lets the ball roll, units a second of simulation.
    void setSpeed(double unitsPerSecond) { speed = unitsPerSecond; }
    /// Steps that it does not take though the ball could; asked at every plan.
    void setFilter(const LevelMap::StepFilter& filter) { allowed = filter; }
    /// Steps that it takes only where there is no other way.
    void setCare(const LevelMap::StepFilter& filter) { careful = filter; }
    /// How deep an edge it rolls over.
    void setDrop(double height) { drop = height; }

    /// Rolls on along the way for one tick; the ball is in its first cell. With a way of one cell
    /// it comes to rest in the middle of that.
    void follow(const std::vector<CellPosition>& way, const PlayerView& view);
    /// Holds the ball where it is for one tick.
    void hold(const PlayerView& view);
    /// Holds the board as it is for one tick, whatever the ball does.
    void keepStill(const PlayerView& view);
    /// Steers by hand: the ball shall have this velocity on the board.
    void steer(const osg::Vec2d& wantedVelocity, const PlayerView& view);
    void letGo();

    /// The way that it would take; empty if there is none.
    std::vector<CellPosition> wayTo(const CellPosition& target, const CellPosition& from) const;

    CellPosition cellOf(const PlayerView& view) const;
    osg::Vec3d onBoard(const PlayerView& view) const;

private:
    void press(Qt::Key key, bool down);
    void drive(double error, Qt::Key towards, Qt::Key away);
    osg::Vec3d turnOf(const osg::Vec3d& up);

    const LevelMap& map;
    KeyAction pressKey;
    KeyAction releaseKey;
    LevelMap::StepFilter allowed;
    LevelMap::StepFilter careful;
    double speed = 2.5;
    double drop = 0.05;
    double largestTilt = 0.2;  // sine of the angle
    std::map<Qt::Key, bool> down;
    osg::Vec3d lastUp{0.0, 0.0, 1.0};
};
