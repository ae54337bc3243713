#include "HandGameTest.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hand/LeapManager.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/OutputCapture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <future>

namespace {

constexpr int generousLimit = 20000;  // ms
constexpr int recoveryLimit = 4000;   // ms: the layer promises two seconds on a quiet machine
constexpr long memoryLimit = 3000;    // kB; the frames of a flood are some 10 MB of text
constexpr float steep = 0.5f;         // radians of the hand
constexpr int framesOfAWave = 100;

/// Thirty, unless the environment wants a longer one.
int wavesOfTheFlood()
{
    bool given = false;
    const int waves = qEnvironmentVariableIntValue("ROLLIX_FLOOD_WAVES", &given);
    return given ? waves : 30;
}

long residentKilobytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    file.open(QIODevice::ReadOnly);
    return file.readAll().split(' ').at(1).toLong() * 4;
}

/// All that goes to both outputs while it lives.
class Silence
{
public:
    Silence() { testing::internal::CaptureStderr(); }
    ~Silence()
    {
        if (!ended)
            ends();
    }
    std::string ends()
    {
        ended = true;
        return output.text() + testing::internal::GetCapturedStderr();
    }

private:
    OutputCapture output;
    bool ended = false;
};

}  // namespace

class HandServiceTest : public HandGameTest
{
public:
    /// Sends frames of a hand, and the last of another, to a game that is busy meanwhile; the
    /// number of frames that it then serves.
    std::size_t servesOfAWave(float roll, float lastRoll)
    {
        witness.forgets();
        std::int64_t last = 0;
        {
            const GameLoop::Lock worldLock;
            for (int i = 1; i <= framesOfAWave; ++i) {
                const bool isLast = i == framesOfAWave;
                const PlayedFrame frame = nextFrame({rolledHand(isLast ? lastRoll : roll)});
                last = frame.id;
                service.sendsText(frameMessage(frame));
            }
            EXPECT_TRUE(
                holdsWithin(generousLimit, [&] { return witness.newestArrived() == last; }));
        }
        EXPECT_TRUE(witness.waitsForFrame(last));
        return witness.served().size();
    }

    /// Whether the hand is in command again, within a time that leaves a loaded machine some air.
    bool commandsAgainWithin(int milliseconds)
    {
        QElapsedTimer clock;
        clock.start();
        const bool does = holdsWithin(milliseconds, [&] {
            ticks();
            return game.state == GameState::Playing && boardTurn().y() < -0.1;
        });
        RecordProperty("recovery", int(clock.elapsed()));
        return does;
    }
};

TEST_F(HandServiceTest, IsHeardByAGameThatWasThereBefore)
{
    LeapManager::setListener(&game);
    service.stops();
    ASSERT_TRUE(holdsWithin(generousLimit, [&] { return service.clientCount() == 0; }));
    ticks(5);
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    service.shows({flatHand()});
    service.streams();
    std::string said;
    bool plays = false;
    {
        Silence silence;
        ASSERT_TRUE(service.comesBack());
        plays = holdsWithin(recoveryLimit, [&] {
            ticks();
            return game.state == GameState::Playing;
        });
        said = silence.ends();
    }
    EXPECT_TRUE(plays);
    EXPECT_EQ(said, "");
}

TEST_F(HandServiceTest, MayComeAndGoInPlay)
{
    loads({"S"});
    service.shows({flatHand()});
    service.streams();
    ASSERT_TRUE(holdsWithin(generousLimit, [&] { return game.state == GameState::Playing; }));
    bool commands = false;
    std::string said;
    GameState gone = GameState::Initial;
    osg::Vec3d kept;
    {
        Silence silence;
        service.stops();
        // After its last frames comes an empty one.
        EXPECT_TRUE(witness.waitsForFrame(-1));
        witness.forgets();
        game.setAngularVelocity(board().getId(), osg::Vec3f(0.0f, 0.3f, 0.0f), true);
        ticks(5);
        gone = game.state;
        kept = boardTurn();
        service.shows({rolledHand(0.24f)});
        service.comesBack();
        commands = commandsAgainWithin(recoveryLimit);
        said = silence.ends();
    }
    EXPECT_EQ(gone, GameState::Playing);
    EXPECT_GT(kept.y(), 0.2) << "nobody stops the board";
    EXPECT_TRUE(commands);
    EXPECT_EQ(said, "");
}

TEST_F(HandServiceTest, LeavesTheGameToTheKeysWhenItIsGone)
{
    startsPlay();
    std::string said;
    {
        Silence silence;
        service.stops();
        holds(Qt::Key_Right, 10);
        said = silence.ends();
    }
    EXPECT_GT(tiltDegrees(), 2.0);
    EXPECT_EQ(game.state, GameState::Playing);
    EXPECT_EQ(said, "");
    EXPECT_TRUE(service.comesBack());
}

TEST_F(HandServiceTest, HasItsNewestFrameWinWhileTheGameIsBusy)
{
    startsPlay();
    witness.forgets();
    constexpr int frames = 50;
    std::int64_t first = 0;
    std::int64_t last = 0;
    GameLoop::lock();
    for (int i = 1; i <= frames; ++i) {
        const float roll = i == frames ? 0.3f : -0.3f;
        const PlayedFrame frame = nextFrame({rolledHand(roll)});
        service.sendsText(frameMessage(frame));
        if (i == 1) {
            first = frame.id;
            ASSERT_TRUE(
                holdsWithin(generousLimit, [&] { return witness.newestArrived() == first; }));
        }
        last = frame.id;
    }
    const bool arrived =
        holdsWithin(generousLimit, [&] { return witness.newestArrived() == last; });
    EXPECT_TRUE(witness.served().empty()) << "a frame waits for the world lock";
    GameLoop::unlock();
    ASSERT_TRUE(arrived);
    ASSERT_TRUE(witness.waitsForFrame(last));
    // The one that was waiting at the lock and the newest: what lies between is out of date.
    const std::vector<FrameWitness::Served> served = witness.served();
    EXPECT_LE(served.size(), 2u);
    EXPECT_NEAR(commandedTurn().y(), -0.6, 1e-3);
}

TEST_F(HandServiceTest, KeepsATapOfAFrameThatWasNeverServed)
{
    startsPlay();
    GameLoop::lock();
    std::int64_t last = 0;
    for (int i = 0; i < 20; ++i) {
        PlayedFrame frame = nextFrame({flatHand()});
        if (i == 10)
            frame.gestures = {tap()};
        service.sendsText(frameMessage(frame));
        last = frame.id;
    }
    const bool arrived =
        holdsWithin(generousLimit, [&] { return witness.newestArrived() == last; });
    GameLoop::unlock();
    ASSERT_TRUE(arrived);
    ASSERT_TRUE(witness.waitsForFrame(last));
    EXPECT_EQ(game.state, GameState::PauseMenu);
}

TEST_F(HandServiceTest, MovesTheBoardByTheNewestPoseAndKeepsItsMemoryThroughAFlood)
{
    loads({"S"});
    startsPlay();
    long memory = 0;
    float roll = steep;
    for (int wave = 0; wave < wavesOfTheFlood(); ++wave) {
        SCOPED_TRACE(wave);
        // The one that waits for the world, and the newest.
        EXPECT_LE(servesOfAWave(-roll, roll), 2u);
        ticks();
        EXPECT_LT(boardTurn().y() * roll, 0.0) << "in the next tick";
        ticks(5);
        putsBall({0.0, 0.0, 6.0});
        roll = -roll;
        if (wave == 3)
            memory = residentKilobytes();
    }
    EXPECT_EQ(game.state, GameState::Playing);
    EXPECT_LT(residentKilobytes() - memory, memoryLimit);
}

TEST_F(HandServiceTest, IsHeardBetweenTicksThatLeaveNoTime)
{
    // The drawing of a slow machine: the next tick is due before the last one is over.
    service.shows({flatHand()});
    service.streams();
    ASSERT_TRUE(holdsWithin(
        generousLimit, [&] { return game.state == GameState::Playing; }));
    GameLoop::Task draws = [] {
        QThread::msleep(25);
    };
    GameLoop::addFrameTask(&draws);
    constexpr int slowTicks = 60;
    ticks();
    witness.forgets();
    for (int i = 0; i < slowTicks; ++i) {
        ticks();
        QCoreApplication::processEvents();
    }
    const std::size_t heard = witness.served().size();
    GameLoop::removeFrameTask(&draws);
    ticks();
    EXPECT_GE(heard, std::size_t(slowTicks / 2)) << "frames in " << slowTicks << " ticks";
}

TEST_F(HandServiceTest, IsNotHeardAnyMoreWhenTheGameStopsListening)
{
    service.shows({flatHand()});
    service.streams();
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(witness.waitsForFrames(3));
        LeapManager::removeListener();
        const std::size_t heard = witness.served().size();
        QThread::msleep(15);
        EXPECT_EQ(witness.served().size(), heard);
        witness.forgets();
        LeapManager::setListener(&witness);
    }
}

TEST_F(HandServiceTest, EndsAfterTheFrameThatWaitsForTheWorldAndWithNoOther)
{
    startsPlay();
    witness.forgets();
    GameLoop::lock();
    const PlayedFrame frame = nextFrame({rolledHand(0.3f)});
    service.sendsText(frameMessage(frame));
    const bool arrived =
        holdsWithin(generousLimit, [&] { return witness.newestArrived() == frame.id; });
    // As the sensor is closed, its last frame stands at the lock that this thread holds.
    std::future<void> removed =
        std::async(std::launch::async, [] { LeapManager::removeListener(); });
    service.sendsText(frameMessage(nextFrame({rolledHand(-0.3f)})));
    QThread::msleep(20);
    const std::size_t servedWhileLocked = witness.served().size();
    GameLoop::unlock();
    ASSERT_TRUE(arrived);
    ASSERT_EQ(removed.wait_for(std::chrono::milliseconds(generousLimit)),
              std::future_status::ready);
    EXPECT_EQ(servedWhileLocked, 0u);
    const std::vector<FrameWitness::Served> served = witness.served();
    QThread::msleep(20);
    EXPECT_EQ(witness.served().size(), served.size());
    EXPECT_LE(served.size(), 1u);
}
