// The hand's program and the game's, both as they are, played by the mouse of the display.

#include "GameFolder.h"
#include "program/ProgramWindow.h"
#include "program/Sight.h"
#include "support/LevelPicture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QThread>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>

namespace {

constexpr int limit = 30000;  // milliseconds, for anything to happen
constexpr quint16 servicePort = 6437;
const QByteArray takenLine = "A hand or a sensor's service is here already: port 6437 is taken.\n";

bool isPortFree()
{
    return QTcpServer().listen(QHostAddress::LocalHost, servicePort);
}

/// A program in a folder of its own, killed when nobody waits for its end.
class Program
{
public:
    ~Program()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished();
        }
    }

    void starts(const GameFolder& folder, const QString& file, const QStringList& arguments = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ALSOFT_DRIVERS", "none");
        environment.remove("QT_SCALE_FACTOR");
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(folder.path());
        process.start(file, arguments);
        ASSERT_TRUE(process.waitForStarted());
    }

    bool hasEnded()
    {
        process.waitForFinished(1);
        return process.state() == QProcess::NotRunning;
    }

    qint64 id() const { return process.processId(); }

    /// The process that it has started; 0 without one.
    qint64 child() const
    {
        QFile file(QString("/proc/%1/task/%1/children").arg(id()));
        return file.open(QIODevice::ReadOnly) ? file.readAll().simplified().toLongLong() : 0;
    }

    QProcess process;
};

class HandProgramTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(isPortFree()) << "a sensor service has the port; stop it for this test";
        ASSERT_TRUE(folder.isFilled());
        LevelPicture(11, 11, cells::floor)
            .set(5, 5, cells::start)
            .image()
            .save(folder.levelPath(0));
    }

    ~HandProgramTest() override
    {
        if (broughtGame != 0)
            kill(pid_t(broughtGame), SIGKILL);
    }

    bool waitsFor(const std::function<bool()>& condition)
    {
        QElapsedTimer clock;
        clock.start();
        while (!condition()) {
            if (clock.elapsed() > limit)
                return false;
            QThread::msleep(20);
        }
        return true;
    }

    /// The hand alone or beside a game.
    void startsHand(const QStringList& arguments = {})
    {
        hand.starts(folder, ROLLIX_HAND_PROGRAM, arguments);
        ASSERT_TRUE(waitsFor([this] { return handWindow.find(hand.id()); }));
    }

    void startsBoth()
    {
        startsHand();
        ASSERT_TRUE(waitsFor([this] { return gameWindow.find(hand.child()); }));
        broughtGame = hand.child();
        seesBall();
    }

    void startsGame()
    {
        game.starts(folder, ROLLIX_PROGRAM);
        ASSERT_TRUE(waitsFor([this] { return gameWindow.find(game.id()); }));
        seesBall();
    }

    void seesBall()
    {
        EXPECT_TRUE(waitsFor([this] {
            sight = lookAt(gameWindow.image());
            return sight.red > 50 && sight.red < 4000;
        }));
    }

    static void mouse(const QStringList& words) { QProcess::execute("xdotool", words); }

    /// Takes the pointer by a click in the middle of the hand's picture.
    void takesPointer()
    {
        mouse({"mousemove", "--window", QString::number(handWindow.id()), "150", "100"});
        mouse({"click", "1"});
    }

    /// So many pixels, far beyond the screen.
    void movesRight(int pixels)
    {
        constexpr int step = 100;
        QStringList words;
        for (int i = 0; i < pixels / step; ++i)
            words << "mousemove_relative"
                  << "--" << QString::number(step) << "0"
                  << "sleep"
                  << "0.02";
        mouse(words);
    }

    void expectBallRollsRight()
    {
        const double before = sight.redX;
        EXPECT_TRUE(waitsFor([&] {
            sight = lookAt(gameWindow.image());
            return sight.red > 30 && sight.redX > before + 30.0;
        })) << "from "
            << before << " to " << sight.redX;
    }

    const GameFolder folder{QDir(ROLLIX_SOURCE_DIR)};
    Program hand;
    Program game;
    qint64 broughtGame = 0;
    ProgramWindow handWindow;
    ProgramWindow gameWindow;
    Sight sight;
};

}  // namespace

TEST_F(HandProgramTest, PlaysTheGameBesideItByAPointerWithoutEdges)
{
    startsBoth();
    takesPointer();
    movesRight(2600);
    expectBallRollsRight();

    // The keys are the game's though the hand has the focus.
    mouse({"key", "r"});
    EXPECT_TRUE(waitsFor([this] {
        hand.process.waitForReadyRead(1);
        return hand.process.peek(10000).count("reading level data/Rollix/level0.png") == 2;
    }));

    gameWindow.close();
    ASSERT_TRUE(waitsFor([this] { return hand.hasEnded(); }));
    broughtGame = 0;
    EXPECT_EQ(hand.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(hand.process.exitCode(), 0);
    EXPECT_TRUE(isPortFree());
}

TEST_F(HandProgramTest, LeavesTheGameOnTheKeysWhenItIsClosed)
{
    startsBoth();
    handWindow.close();
    ASSERT_TRUE(waitsFor(isPortFree));
    EXPECT_EQ(hand.child(), broughtGame);
    gameWindow.presses("Right");
    expectBallRollsRight();
    gameWindow.releases("Right");
    gameWindow.close();
    ASSERT_TRUE(waitsFor([this] { return hand.hasEnded(); }));
    broughtGame = 0;
    EXPECT_EQ(hand.process.exitCode(), 0);
}

TEST_F(HandProgramTest, ChangesNothingWhenItIsStartedTwiceAndEndsWhenTheGameCrashes)
{
    startsBoth();
    Program second;
    second.starts(folder, ROLLIX_HAND_PROGRAM);
    ASSERT_TRUE(waitsFor([&] { return second.hasEnded(); }));
    EXPECT_EQ(second.process.exitCode(), 1);
    EXPECT_EQ(second.process.readAllStandardOutput(), takenLine);
    EXPECT_EQ(hand.child(), broughtGame);
    EXPECT_FALSE(hand.hasEnded());

    kill(pid_t(broughtGame), SIGABRT);
    ASSERT_TRUE(waitsFor([this] { return hand.hasEnded(); }));
    broughtGame = 0;
    EXPECT_EQ(hand.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(hand.process.exitCode(), 1);
    EXPECT_TRUE(hand.process.readAllStandardOutput().endsWith("The game has crashed.\n"));
}

TEST_F(HandProgramTest, JoinsAGameThatIsThereAndWaitsForOneThatComesLater)
{
    startsGame();
    startsHand();
    takesPointer();
    movesRight(2600);
    expectBallRollsRight();
    EXPECT_EQ(hand.child(), 0) << "one game is enough";

    game.process.kill();
    ASSERT_TRUE(waitsFor([this] { return game.hasEnded(); }));
    EXPECT_FALSE(hand.hasEnded());
    startsGame();
    mouse({"click", "2"});
    QThread::msleep(500);
    movesRight(2600);
    expectBallRollsRight();

    handWindow.close();
    ASSERT_TRUE(waitsFor([this] { return hand.hasEnded(); }));
    EXPECT_FALSE(game.hasEnded());
}
