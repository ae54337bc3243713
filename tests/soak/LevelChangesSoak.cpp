#include "game/Rollix.h"
#include "level/Level.h"
#include "soak/OddPictures.h"
#include "soak/Soak.h"
#include "support/Census.h"
#include "support/GameTest.h"
#include "support/OutputCapture.h"
#include "support/ResidentMemory.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <vector>

namespace {

constexpr int shortForm = 400;    // level changes
constexpr int oddWays = 170;      // odd pictures until the largest were seen
constexpr int oddPictures = 500;  // different ones
constexpr unsigned oddLevel = 999;
constexpr int soundings = 20;    // of memory, over the whole trial
constexpr double leeway = 12.0;  // MB; one level that stayed each time would be hundreds

class LevelChangesSoak : public GameTest
{
protected:
    /// Those that come with the game, under their own numbers.
    unsigned bringsTrueLevels()
    {
        unsigned number = 0;
        for (;; ++number) {
            const QString name = QString("data/Rollix/level%1.png").arg(number);
            QFile::remove(name);
            if (!QFile::copy(QString(ROLLIX_SOURCE_DIR "/") + name, name))
                return number;
        }
    }

    void bringsOddPicture(int number)
    {
        QFile file(QString("data/Rollix/level%1.png").arg(oddLevel));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(oddPicture(number));
    }

    /// As it is played: the level moves and is drawn, into the small window.
    void changesTo(unsigned number)
    {
        game.loadLevel(number);
        game.getCamera()->setCullMask(~0u);
        ticks(2);
        QCoreApplication::processEvents();
    }

    void taps(Qt::Key key)
    {
        presses(key);
        releases(key);
        plays(1000);
    }

    /// And what is said at either end of a level, and how few lives are left.
    void showsAllMenus()
    {
        taps(Qt::Key_Escape);
        taps(Qt::Key_Escape);
        game.levelCompleted();
        taps(Qt::Key_Return);
        taps(Qt::Key_Return);
        taps(Qt::Key_Up);  // which takes the message away
        while (game.state != GameState::LevelFailed) {
            level().changeLives(-1, true);
            plays(1000);
        }
        taps(Qt::Key_Return);
        taps(Qt::Key_Return);
        taps(Qt::Key_Up);
    }

    /// A mine or a goal beside the start may end an odd level at once: what is said then stays
    /// until a key is pressed in the next one. Texts go by and by, and what OpenGL holds of levels
    /// before is let go a little a frame.
    void settles()
    {
        changesTo(0);
        taps(Qt::Key_Up);
        changesTo(0);
        plays(5000);
    }
};

TEST_F(LevelChangesSoak, OverAllLevelsAndOddPicturesLeaveMemoryAndCountsAsTheyWere)
{
    const int count = soakCount(shortForm);
    const unsigned levels = bringsTrueLevels();
    ASSERT_GT(levels, 0u);
    std::vector<double> memory;
    Census before;
    double longestLoad = 0.0;
    int longestPicture = -1;
    {
        OutputCapture output;  // as many levels are announced
        Progress progress("level changes", count);
        // Shaders, letters and menus stay for the whole run once they are drawn: all count as
        // there before.
        for (unsigned number = 0; number < levels; ++number)
            changesTo(number);
        for (int odd = 0; odd < oddWays; ++odd) {
            bringsOddPicture(odd);
            changesTo(oddLevel);
        }
        showsAllMenus();
        settles();
        before = Census::of(game, widget);
        for (int i = 0; i < count; ++i) {
            const int odd = i / 2 % oddPictures;
            const double begin = processorSeconds();
            if (i % 2) {
                bringsOddPicture(odd);
                changesTo(oddLevel);
            } else {
                changesTo(unsigned(i / 2) % levels);
            }
            if (processorSeconds() - begin > longestLoad) {
                longestLoad = processorSeconds() - begin;
                longestPicture = i % 2 ? odd : -1;
            }
            if (i % std::max(1, count / soundings) == 0)
                memory.push_back(residentMegabytes());
            std::ostringstream note;
            note << int(memory.back()) << " MB";
            progress.at(i + 1, note.str());
        }
        settles();
    }
    EXPECT_EQ(Census::of(game, widget), before);
    const double after = residentMegabytes();
    // The first tenth fills the libraries' own caches.
    const double early = memory.at(memory.size() / 10 + 1);
    EXPECT_LT(after - early, leeway);
    std::cout << count << " changes over " << levels << " levels and "
              << std::min(oddPictures, count / 2) << " odd pictures, memory " << early
              << " MB after a tenth, " << after << " MB at the end; the longest took "
              << longestLoad << " s of processor time ("
              << (longestPicture < 0 ? "a true level"
                                     : "odd picture " + std::to_string(longestPicture))
              << ")" << std::endl;
}

}  // namespace
