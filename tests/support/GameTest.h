#pragma once

#include "support/LevelPicture.h"

#include <Qt>
#include <gtest/gtest.h>
#include <osg/Matrixd>
#include <osg/Vec3f>

#include <functional>
#include <string>

class Ball;
class Block;
class Board;
class Level;
class OsgViewerWidget;
class Rollix;

/// A real widget, game and level in one process, driven by hand: nothing ticks unless the test
/// ticks. The game runs in a folder of its own whose data/ holds the true files, but no level
/// pictures other than those that the test draws.
class GameTest : public ::testing::Test
{
public:
    GameTest();
    ~GameTest() override;

    /// Makes the picture level `number` and loads it.
    void loads(const LevelPicture& picture, unsigned int number = 0);
    /// Writes a file below the game's folder, as "data/Rollix/level7.png".
    void writes(const LevelPicture& picture, unsigned int number);
    std::string folder() const;

    /// The whole tick, rendering included; what it draws is nothing unless drawing is on.
    void ticks(int count = 1);
    /// Ticks until the condition holds; false if it does not within `limit` ticks.
    bool ticksUntil(const std::function<bool()>& condition, int limit);
    /// Lets time pass and serves timers, without a tick. In this and the next two, time is what a
    /// ManualClock shows: it costs none.
    void waits(int milliseconds);
    /// Ticks at the game's own pace while timers are served, for so much time.
    void plays(int milliseconds);
    /// As plays(), until the condition holds; false if it does not within `limit` milliseconds.
    bool playsUntil(const std::function<bool()>& condition, int limit);

    void presses(Qt::Key key);
    void releases(Qt::Key key);
    void holds(Qt::Key key, int tickCount);
    /// Goes to the line of the menu that is up, and picks it, by keys; false if there is none.
    bool picks(const std::string& line);

    /// What the frame shows from now on: the scene, or nothing but the background (the default,
    /// which makes a tick cheap).
    void draws(bool on);
    /// The frame of one more tick, 800 x 600, drawing on for it. Without `advance` it
    /// shows the world as it is.
    QImage frame(bool advance = true);

    /// The board's tilt against the vertical.
    double tiltDegrees() const;
    osg::Matrixd boardPose() const;
    osg::Vec3d ballPosition() const;
    osg::Vec3f ballVelocity() const;
    /// Puts the ball there, in world coordinates, at this velocity, at the next tick.
    void putsBall(const osg::Vec3d& position, const osg::Vec3f& velocity = osg::Vec3f());

    /// The block of a cell, by picture column and row; null if there is none.
    Block* blockAt(int column, int row) const;

    Rollix& game;
    OsgViewerWidget& widget;
    Level& level() const;
    Board& board() const;
    Ball& ball() const;

private:
    int pictureWidth = 0;
    int pictureHeight = 0;
};
