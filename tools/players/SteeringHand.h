#pragma once

#include "Player.h"

/// A person with a hand over the sensor. Sees late; the hand follows what it wants with a lag,
/// trembles, and does not bend further than hands do. It goes through the game's own steering.
class SteeringHand : public Player
{
public:
    SteeringHand(PlayedGame& game, const LevelMap& map, unsigned int seed, int reaction);

protected:
    void move(const Intent& intent) override;

private:
    struct Wave
    {
        double frequency;  // Hz
        double phase;
        double amplitude;  // radians
    };

    void show(const osg::Vec2d& wantedTilt);
    osg::Vec2d tremor() const;

    std::mt19937 dice;
    std::vector<Wave> waves;
    osg::Vec2d hand;  // its tilt to the right and away from the player, radians
    double eagerness;
    double gentleTilt;
    int tick = 0;
};
