#include "HandGameTest.h"
#include "TiltPlayer.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hud/MenuHUD.h"
#include "level/Level.h"

#include <QImage>

namespace {

constexpr int longestRun = 15000;  // ticks

}  // namespace

class HandWinsTest : public HandGameTest
{
public:
    void loadsTrueLevel(unsigned int number)
    {
        picture = QImage(QString(ROLLIX_SOURCE_DIR "/data/Rollix/level%1.png").arg(number));
        picture.save(QString("data/Rollix/level%1.png").arg(number));
        game.loadLevel(number);
        ticks();
    }

    bool finishes()
    {
        TiltPlayer player(game, picture);
        for (int tick = 0; tick < longestRun; ++tick) {
            if (game.state == GameState::LevelCompleted || game.state == GameState::LevelFailed)
                break;
            const PlayedHand hand = player.hand();
            sees({game.state == GameState::WaitingForRest ? player.restingHand() : hand});
            ticks();
        }
        return game.state == GameState::LevelCompleted;
    }

private:
    QImage picture;
};

TEST_F(HandWinsTest, TheFirstLevelAndGoesOnToTheSecond)
{
    loadsTrueLevel(1);
    loadsTrueLevel(0);
    ASSERT_TRUE(finishes());
    sees({flatHand()});
    ASSERT_TRUE(game.endMenu->isVisible());
    selects("Next Level");
    sees({flatHand()}, {tap()});
    ticks();
    EXPECT_EQ(level().number, 1u);
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    sees({flatHand()});
    EXPECT_EQ(game.state, GameState::Playing);
}
