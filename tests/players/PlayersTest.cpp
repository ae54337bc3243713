#include "Played.h"
#include "PlayersClock.h"
#include "Processes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <fstream>

namespace {

PlayWish wishFor(const std::string& player, int runs)
{
    PlayWish wish;
    wish.pictures = {levelFile(0)};
    wish.player = player;
    wish.runs = runs;
    return wish;
}

int exitCodeOf(PlayWish wish)
{
    wish.home = ROLLIX_SOURCE_DIR;
    std::ostringstream answer;
    std::ostringstream progress;
    return playPictures(wish, answer, progress);
}

std::string emptyPicture(const QTemporaryDir& folder)
{
    QImage picture(5, 5, QImage::Format_ARGB32);
    picture.fill(Qt::black);
    const QString file = folder.filePath("level.png");
    picture.save(file);
    return file.toStdString();
}

}  // namespace

TEST(Processes, GiveBackWhatEachHasFound)
{
    std::vector<std::size_t> progress;
    const std::vector<std::string> results = inProcesses(
        5, 2, [](std::size_t i) { return std::string(100000, char('a' + i)); },
        [&](std::size_t done) { progress.push_back(done); });
    ASSERT_EQ(results.size(), 5u);
    for (std::size_t i = 0; i < results.size(); ++i)
        EXPECT_EQ(results[i], std::string(100000, char('a' + i)));
    EXPECT_EQ(progress, (std::vector<std::size_t>{1, 2, 3, 4, 5}));
}

TEST(Processes, GiveNothingForOneThatCrashes)
{
    const std::vector<std::string> results = inProcesses(
        2, 2,
        [](std::size_t i) {
            if (i == 0)
                std::_Exit(3);
            return std::string("fine");
        },
        [](std::size_t) {});
    EXPECT_EQ(results, (std::vector<std::string>{"", "fine"}));
}

TEST(Players, PlayOnAClockThatTheyMove)
{
    const std::vector<std::string> seen = inProcesses(
        1, 1,
        [](std::size_t) {
            PlayersClock::stop();
            return std::string(PlayersClock::isSeenByLibraries() ? "seen" : "unseen");
        },
        [](std::size_t) {});
    EXPECT_EQ(seen[0], "seen");
}

TEST(Players, BeginEachRunAtAFullMinute)
{
    const std::vector<std::string> seen = inProcesses(
        1, 1,
        [](std::size_t) {
            PlayersClock::stop();
            timespec time{};
            clock_gettime(CLOCK_MONOTONIC, &time);
            return std::to_string(time.tv_sec % 60) + " " + std::to_string(time.tv_nsec);
        },
        [](std::size_t) {});
    EXPECT_EQ(seen[0], "0 0") << "or timers that are rounded go off earlier in some runs";
}

TEST(Players, PlayTheSameRunForTheSameSeed)
{
    for (const char* player : {"taps", "hand"}) {
        const auto once = played(wishFor(player, 3))[0]["runs"];
        EXPECT_EQ(played(wishFor(player, 3))[0]["runs"], once) << player;
        EXPECT_NE(once[0]["seconds"], once[1]["seconds"]) << "people differ";
    }
}

TEST(Players, AreSlowerTheLaterTheySee)
{
    for (const char* player : {"taps", "hand"}) {
        PlayWish quick = wishFor(player, 3);
        quick.reaction = 0.16;
        PlayWish slow = wishFor(player, 3);
        slow.reaction = 0.4;
        EXPECT_NE(played(quick)[0]["runs"], played(slow)[0]["runs"]) << player;
    }
}

TEST(PlayReport, EndsWithOneWhereALevelIsNotWonAsOftenAsAsked)
{
    const QTemporaryDir folder;
    PlayWish wish = wishFor("perfect", 1);
    EXPECT_EQ(exitCodeOf(wish), 0);
    wish.pictures = {levelFile(0), emptyPicture(folder)};
    wish.limit = 2.0;
    EXPECT_EQ(exitCodeOf(wish), 1);
    wish.atLeast = 0.0;
    EXPECT_EQ(exitCodeOf(wish), 0);
}

TEST(PlayReport, EndsWithTwoAtWhatIsNoPicture)
{
    PlayWish wish = wishFor("perfect", 1);
    wish.pictures = {ROLLIX_SOURCE_DIR "/README.md"};
    EXPECT_EQ(exitCodeOf(wish), 2);
}

TEST(PlayReport, DrawsTheWayOfTheBall)
{
    const QTemporaryDir folder;
    PlayWish wish = wishFor("perfect", 1);
    wish.track = folder.filePath("track.png").toStdString();
    ASSERT_EQ(exitCodeOf(wish), 0);
    const QImage track(QString::fromStdString(wish.track));
    ASSERT_FALSE(track.isNull());
    int light = 0;
    for (int y = 0; y < track.height(); ++y)
        for (int x = 0; x < track.width(); ++x)
            light += qGray(track.pixel(x, y)) > 150 ? 1 : 0;
    EXPECT_GT(light, 50);
}

TEST(PlayReport, TellsWhereKeysThrowTheBallAndWhatRandomOnesCost)
{
    PlayWish wish = wishFor("perfect", 1);
    wish.firstTouch = true;
    wish.toddler = true;
    const auto level = played(wish)[0];
    EXPECT_EQ(level["first_touch"]["of"], 12);
    EXPECT_EQ(level["after_falls"]["of"].get<int>() % 12, 0);
    EXPECT_GE(level["toddler"].get<double>(), 0.0);
}
