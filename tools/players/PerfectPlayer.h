#pragma once

#include "Player.h"

/// Sees at once, decides at every tick which arrow keys are down, and never trembles. What it
/// cannot win, nobody can.
class PerfectPlayer : public Player
{
public:
    PerfectPlayer(PlayedGame& game, const LevelMap& map);

    void letGo() override;

protected:
    void move(const Intent& intent) override;

private:
    void press(Qt::Key key, bool down);
    void drive(double error, Qt::Key towards, Qt::Key away);

    std::map<Qt::Key, bool> down;
};
