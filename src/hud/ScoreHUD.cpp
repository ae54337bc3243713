#include "hud/ScoreHUD.h"

ScoreHUD::ScoreHUD()
{
    setScore(0);
}

void ScoreHUD::setScore(int newScore)
{
    score = newScore;
    setText(std::to_string(score));
}
