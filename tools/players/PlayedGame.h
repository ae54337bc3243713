#pragma once

#include "PlayerView.h"

#include <QImage>
#include <Qt>
#include <osg/Vec3d>

class OsgViewerWidget;
class Rollix;

/// The one game of the process, played tick by tick as fast as it can be worked out: after each
/// tick the process's clock goes on by as much, so that all timers keep their places. Nothing is
/// drawn in this process any more. The program must link PlayersClock, and have the game's data/
/// below a working directory whose level pictures it may overwrite.
class PlayedGame
{
public:
    static constexpr int ticksPerSecond = 50;

    PlayedGame(Rollix& playedGame, OsgViewerWidget& window);

    /// Loads a picture as the level `number`. Whatever is drawn by lot, and how far the rhythms of
    /// the ghosts have come by now, follows from the seed alone.
    void loads(const QImage& picture, unsigned int seed, unsigned int number = 0);

    void ticks(int count = 1);

    void presses(Qt::Key key);
    void releases(Qt::Key key);
    /// A frame of the sensor with one hand over it: it asks for a board whose upper side looks
    /// along `up` (world, unit length).
    void seesHand(const osg::Vec3d& up);

    /// Puts the ball on the flag or start cell at this place of the board as a fall would.
    void restartsAt(float x, float y);
    /// Plays on where a level has ended.
    void forgetsTheEnd();

    PlayerView view() const { return PlayerView::of(game); }
    GameState state() const;
    int lives() const;
    int coins() const;
    /// Lives lost in the last tick, the one that began the level anew included.
    int livesLost() const { return lost; }
    Rollix& rollix() const { return game; }

private:
    void countFrame();

    Rollix& game;
    OsgViewerWidget& widget;
    QImage loaded;
    unsigned int loadedNumber = 0;
    long long frames = 0;
    int lost = 0;
};
