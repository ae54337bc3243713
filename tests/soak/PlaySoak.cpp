#include "LevelMap.h"
#include "PlayedWorld.h"
#include "Player.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "platform/osgqt/GraphicsWindowQt.h"
#include "soak/Soak.h"
#include "support/OutputCapture.h"
#include "support/ResidentMemory.h"

#include <QCoreApplication>
#include <QDir>
#include <QKeyEvent>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <random>
#include <sstream>
#include <vector>

namespace {

constexpr int shortForm = 6000;          // ticks: two minutes of play
constexpr int ticksPerSounding = 15000;  // five minutes
constexpr int longestRun = 6000;         // ticks
constexpr int clumsyRun = 1500;          // ticks of somebody who presses anything
constexpr int runsPerClumsyOne = 4;
constexpr int ticksPerDisturbance = 300;
constexpr int ticksPerFrame = 50;
constexpr double leeway = 12.0;  // MB
constexpr double slower = 1.3;   // times, by the yardstick

/// Processor time of work that is always the same, s: other programs on the machine slow it as
/// well.
double yardstick()
{
    std::mt19937 same{1};
    std::vector<unsigned> numbers(200000);
    std::generate(numbers.begin(), numbers.end(), same);
    const double begin = processorSeconds();
    std::sort(numbers.begin(), numbers.end());
    return processorSeconds() - begin;
}

/// The campaign over and over, as a player would spend an hour with it.
class PlaySoak : public testing::Test
{
protected:
    PlaySoak() : world(QDir(ROLLIX_SOURCE_DIR)), game(world.game())
    {
        for (int number = 0;; ++number) {
            const QImage picture(QString(ROLLIX_SOURCE_DIR "/data/Rollix/level%1.png").arg(number));
            if (picture.isNull())
                break;
            levels.push_back(picture);
        }
        window().show();
    }

    bool isOver() const
    {
        return game.state() == GameState::LevelCompleted || game.state() == GameState::LevelFailed;
    }

    void types(Qt::Key key)
    {
        game.presses(key);
        game.releases(key);
    }

    /// One tick, now and then a drawn one. Those that are not are timed.
    void ticksOnce()
    {
        const bool drawn = ticked % ticksPerFrame == 0;
        if (drawn)
            window().setDone(false);
        const double begin = processorSeconds();
        game.ticks();
        if (!drawn)
            times.push_back(processorSeconds() - begin);
        ++ticked;
    }

    void disturbs()
    {
        switch (ticked / ticksPerDisturbance % 4) {
        case 0:
            types(Qt::Key_Escape);
            for (int i = 0; i < 10; ++i)
                ticksOnce();
            types(Qt::Key_Escape);
            break;
        case 1:
            window().resize(100 + int(random() % 500), 80 + int(random() % 400));
            break;
        case 2:
            types(Qt::Key_F11);
            break;
        default:
            types(Qt::Key_F11);
            window().resize(160, 120);
        }
        QCoreApplication::processEvents();
    }

    void playsWell(const QImage& picture)
    {
        const LevelMap map(picture);
        const auto player = makePlayer("perfect", game, map, 1);
        for (int i = 0; i < longestRun && !isOver(); ++i) {
            player->act();
            ticksOnce();
            if (ticked % ticksPerDisturbance == 0) {
                player->letGo();
                disturbs();
            }
        }
        player->letGo();
        won += game.state() == GameState::LevelCompleted;
    }

    void playsClumsily()
    {
        constexpr Qt::Key keys[] = {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right};
        for (int i = 0; i < clumsyRun && !isOver(); ++i) {
            if (random() % 12 == 0)
                game.presses(keys[random() % std::size(keys)]);
            if (random() % 12 == 0)
                game.releases(keys[random() % std::size(keys)]);
            ticksOnce();
            falls += game.livesLost();
        }
        for (const Qt::Key key : keys)
            game.releases(key);
    }

    OsgViewerWidget& window()
    {
        osg::GraphicsContext* context = game.rollix().getCamera()->getGraphicsContext();
        return *static_cast<OsgViewerWidget*>(
            static_cast<osgQt::GraphicsWindowQt*>(context)->getGLWidget());
    }

    PlayedWorld world{QDir()};
    PlayedGame& game;
    std::vector<QImage> levels;
    std::mt19937 random{7};
    std::vector<double> times;  // s of processor time, of the ticks of one run
    int ticked = 0;
    int won = 0;
    int falls = 0;
};

TEST_F(PlaySoak, OfTheWholeCampaignLeavesMemoryAndTickAsTheyWere)
{
    const int count = soakCount(shortForm);
    ASSERT_FALSE(levels.empty());
    std::vector<double> memory;
    std::map<std::size_t, double> firstTick;  // median by level, yardsticks
    std::map<std::size_t, double> lastTick;
    int runs = 0;
    {
        OutputCapture output;  // levels are announced
        Progress progress("ticks of play", count);
        for (; ticked < count; ++runs) {
            const std::size_t number = std::size_t(runs) % levels.size();
            times.clear();
            const double before = yardstick();
            game.loads(levels[number], unsigned(runs), unsigned(number));
            if (runs % runsPerClumsyOne == runsPerClumsyOne - 1) {
                playsClumsily();
                continue;
            }
            playsWell(levels[number]);
            std::nth_element(times.begin(), times.begin() + long(times.size() / 2), times.end());
            const double median = times[times.size() / 2] / (0.5 * (before + yardstick()));
            firstTick.emplace(number, median);
            lastTick[number] = median;
            if (std::size_t(ticked / ticksPerSounding) > memory.size())
                memory.push_back(residentMegabytes());
            std::ostringstream note;
            note << runs << " runs, " << won << " won, " << falls << " falls";
            progress.at(ticked, note.str());
        }
    }
    double first = 0.0;
    double last = 0.0;
    for (const auto& [number, median] : firstTick) {
        first += median;
        last += lastTick[number];
    }
    memory.push_back(residentMegabytes());
    EXPECT_LT(memory.back() - memory.front(), leeway);
    EXPECT_LT(last, first * slower);
    EXPECT_GT(won, 0);
    const double levelsPlayed = double(firstTick.size());
    std::cout << ticked << " ticks, " << runs << " runs over " << levels.size() << " levels, "
              << won << " won, " << falls << " falls of the clumsy one; memory " << memory.front()
              << " MB after five minutes, " << memory.back() << " MB at the end; median tick "
              << first / levelsPlayed * 1e3 << " thousandths of the yardstick at first, "
              << last / levelsPlayed * 1e3 << " at last" << std::endl;
}

}  // namespace
