#include "HandGameTest.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "level/Level.h"
#include "soak/Soak.h"
#include "support/OutputCapture.h"

#include <QCoreApplication>

#include <iostream>
#include <random>

namespace {

constexpr int shortForm = 15;  // s

class RacesSoak : public HandGameTest
{
protected:
    /// Hands anywhere, in any pose, with gestures now and then.
    void wavesAHand(std::mt19937& random)
    {
        std::uniform_real_distribution<float> angle(-0.7f, 0.7f);
        std::vector<PlayedHand> hands(random() % 8 == 0 ? 2 : random() % 8 != 1);
        for (PlayedHand& hand : hands) {
            // Half of the time as the board lies, so that play begins again.
            if (random() % 2)
                continue;
            hand.roll = angle(random);
            hand.pitch = angle(random);
        }
        service.shows(hands);
        if (random() % 10 == 0)
            service.taps();
        if (random() % 10 == 0)
            service.circles(1.2, random() % 2);
    }
};

/// What it finds, a thread sanitizer says.
TEST_F(RacesSoak, OfRandomHandsAndRandomKeysEndInAGameThatPlays)
{
    const int seconds = soakCount(shortForm);
    constexpr Qt::Key keys[] = {Qt::Key_Up,     Qt::Key_Down, Qt::Key_Left,  Qt::Key_Right,
                                Qt::Key_Escape, Qt::Key_R,    Qt::Key_Return};
    std::mt19937 random(20240229);
    loads(LevelPicture(7, 7, cells::floor).set(3, 3, cells::start).set(5, 3, cells::goal));
    writes(LevelPicture({"S.G"}), 1);
    service.shows({flatHand()});
    service.streams();
    int ticked = 0;
    {
        OutputCapture output;  // levels are announced
        Progress progress("races", seconds);
        const double begin = trueSeconds();
        for (; trueSeconds() - begin < seconds; ++ticked) {
            if (ticked % 10 == 0)
                wavesAHand(random);
            const Qt::Key key = keys[random() % std::size(keys)];
            if (random() % 6 == 0)
                presses(key);
            if (random() % 6 == 0)
                releases(key);
            if (random() % 500 == 0)
                widget.resize(40 + int(random() % 40), 30 + int(random() % 30));
            plays(20);
            progress.at(int(trueSeconds() - begin));
        }
    }
    service.shows({flatHand()});
    std::cout << seconds << " s, " << ticked << " ticks" << std::endl;
    game.loadLevel(1);
    EXPECT_TRUE(playsUntil([&] { return game.state == GameState::Playing; }, 20000));
}

}  // namespace
