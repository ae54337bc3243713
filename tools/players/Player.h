#pragma once

#include "PlayedGame.h"
#include "Strategy.h"

#include <memory>
#include <random>
#include <string>

/// Somebody who plays: decides at each tick what fingers or hand do, from what it sees, and has no
/// other way into the game.
class Player
{
public:
    /// `delay` in ticks: how late it sees.
    Player(PlayedGame& game, const LevelMap& map, const Temper& temper, int delay);
    virtual ~Player() = default;
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// Before each tick.
    void act();
    /// Takes its fingers off the keys.
    virtual void letGo() {}

protected:
    virtual void move(const Intent& intent) = 0;

    /// The velocity that is wanted, in the world.
    osg::Vec2d wantedVelocity(const Intent& intent) const;

    PlayedGame& game;
    LevelSight sight;

private:
    osg::Vec3d expectedBall() const;

    Strategy strategy;
};

/// The three that this program knows: "perfect", "taps" and "hand"; null for another name. What
/// differs between people follows from the seed. A reaction of 0 ticks leaves that to the seed too.
std::unique_ptr<Player> makePlayer(const std::string& name, PlayedGame& game, const LevelMap& map,
                                   unsigned int seed, int reaction = 0);
