#pragma once

#include "hud/TextHUD.h"

/// A number in decimal: the coins of the level.
class ScoreHUD : public TextHUD
{
public:
    ScoreHUD();

    void setScore(int score);

protected:
    ~ScoreHUD() override = default;

    int score = 0;
};
