#pragma once

#include "Player.h"

#include <deque>

/// A person at the keys. Sees late, knows what it has pressed since, and taps: one finger an axis,
/// each tap of 40 ms and more, then a rest.
class TapPlayer : public Player
{
public:
    TapPlayer(PlayedGame& game, const LevelMap& map, unsigned int seed, int reaction);

    void letGo() override;

protected:
    void move(const Intent& intent) override;

private:
    /// The two keys of an axis and the finger over them.
    struct Finger
    {
        Qt::Key positive;
        Qt::Key negative;
        int pressed = 0;             // ticks that the tap still lasts
        int direction = 0;           // of the tap
        int rest = 0;                // ticks until it can tap again
        int idle = 0;                // ticks that it could have tapped in
        std::deque<int> since = {};  // what it did in the ticks that the eyes have not seen yet
    };

    void move(Finger& finger, double wantedTilt, double tilt, double turn);
    void tap(Finger& finger, int direction, int ticks);
    void release(Finger& finger);
    double tiltToCome(const Finger& finger, double tilt, double turn) const;

    std::mt19937 dice;
    Finger across{Qt::Key_Right, Qt::Key_Left};
    Finger along{Qt::Key_Up, Qt::Key_Down};
    double eagerness;   // share of the missing speed that it goes for
    double gentleTilt;  // sine
};
