#include "GameFolder.h"
#include "program/ProgramWindow.h"
#include "program/Sight.h"
#include "support/LevelPicture.h"
#ifdef LEAP_IS_OWN
#include "support/SensorService.h"
#endif

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTcpServer>
#include <QThread>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int limit = 30000;  // milliseconds, for anything to happen

using Lines = std::vector<std::string>;

const std::string noDeviceLine = "FMOD error 51 - No sound output device could be opened.";

/// The real program in a folder of its own, whose data/ links to the true files.
class ProgramTest : public testing::Test
{
protected:
    ~ProgramTest() override
    {
        if (program.state() != QProcess::NotRunning) {
            program.kill();
            program.waitForFinished();
        }
    }

    void lacks(const QStringList& names)
    {
        for (const QString& name : names)
            ASSERT_TRUE(QFile::remove(folder.path() + "/" + name)) << name.toStdString();
    }

    void paints(int number, const LevelPicture& picture)
    {
        picture.image().save(folder.levelPath(number));
    }

    /// Starts it and waits for its window.
    void starts(const QString& path = ROLLIX_PROGRAM)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        // Whatever this machine has, it plays nothing.
        environment.insert("ALSOFT_DRIVERS", "none");
        environment.remove("QT_SCALE_FACTOR");
        program.setProcessEnvironment(environment);
        program.setWorkingDirectory(folder.path());
        program.start(path, QStringList());
        ASSERT_TRUE(program.waitForStarted());
        ASSERT_TRUE(waitsFor([this] { return window.find(program.processId()); }));
    }

    bool waitsFor(const std::function<bool()>& condition)
    {
        QElapsedTimer clock;
        clock.start();
        while (!condition()) {
            if (clock.elapsed() > limit)
                return false;
            QThread::msleep(20);
            program.waitForReadyRead(1);
        }
        return true;
    }

    /// All that it has said so far.
    Lines lines()
    {
        output += program.readAllStandardOutput();
        Lines result;
        for (const QByteArray& line : output.split('\n'))
            result.push_back(line.toStdString());
        result.pop_back();  // what comes after the last end of line
        return result;
    }

    /// The game's own lines without those of levels, sorted; the scene graph complains of broken
    /// shaders in words of its own.
    Lines complaints()
    {
        Lines result;
        for (const std::string& line : lines())
            if (line.rfind("I ", 0) == 0 || line.rfind("FMOD", 0) == 0)
                result.push_back(line);
        std::sort(result.begin(), result.end());
        return result;
    }

    bool says(const std::string& line, int times = 1)
    {
        return waitsFor([&] {
            const Lines all = lines();
            return std::count(all.begin(), all.end(), line) >= times;
        });
    }

    /// Closes the window and expects the program to end as it should.
    void closes()
    {
        window.close();
        ASSERT_TRUE(waitsFor([this] {
            program.waitForFinished(1);
            return program.state() == QProcess::NotRunning;
        }));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0);
    }

    const GameFolder folder{QDir(ROLLIX_SOURCE_DIR)};
    QProcess program;
    ProgramWindow window;
    QByteArray output;
};

TEST_F(ProgramTest, IsPlayedByKeysAndEndsWhenItsWindowIsClosed)
{
    paints(0, LevelPicture(11, 11, cells::floor).set(5, 5, cells::start));
    paints(1, LevelPicture(5, 5, cells::floor).set(2, 2, cells::start));
    starts();
    Sight sight;
    ASSERT_TRUE(waitsFor([&] {
        sight = lookAt(window.image());
        return sight.wood > 20000 && sight.red > 50 && sight.red < 2000 && sight.sky > 20000;
    })) << sight.wood
        << " of wood, " << sight.red << " of ball, " << sight.sky << " of sky";

    const double before = sight.redX;
    window.presses("Right");
    EXPECT_TRUE(waitsFor([&] {
        sight = lookAt(window.image());
        return sight.red > 30 && sight.redX > before + 30.0;
    })) << "the ball rolls to the right: from "
        << before << " to " << sight.redX;
    window.releases("Right");

    window.types("Escape");
    window.types("Escape");
    window.types("r");
    EXPECT_TRUE(says("reading level data/Rollix/level0.png", 2));
    window.types("plus");
    EXPECT_TRUE(says("reading level data/Rollix/level1.png"));
    window.types("minus");
    EXPECT_TRUE(says("reading level data/Rollix/level0.png", 3));
    window.types("minus");
    EXPECT_TRUE(says("reading level data/Rollix/level-1.png"));
    closes();
    EXPECT_EQ(
        lines(),
        (Lines{"reading level data/Rollix/level0.png", noDeviceLine,
               "reading level data/Rollix/level0.png", "reading level data/Rollix/level1.png",
               "reading level data/Rollix/level0.png", "reading level data/Rollix/level-1.png"}));
}

#ifdef LEAP_IS_OWN
TEST_F(ProgramTest, IsPlayedByAHandAndEndsWhenItsWindowIsClosedUnderIt)
{
    constexpr quint16 servicePort = 6437;
    ASSERT_TRUE(QTcpServer().listen(QHostAddress::LocalHost, servicePort))
        << "another sensor service has the port; stop it for this test";
    SensorServer::Behaviour behaviour;
    behaviour.framesPerSecond = 100;
    SensorService service(behaviour, servicePort);
    service.shows({PlayedHand()});
    service.streams();
    paints(0, LevelPicture(11, 11, cells::floor).set(5, 5, cells::start));
    starts();
    Sight sight;
    ASSERT_TRUE(waitsFor([&] {
        sight = lookAt(window.image());
        return sight.red > 50 && sight.red < 2000;
    }));
    const double before = sight.redX;
    PlayedHand tilted;
    tilted.roll = -0.24f;
    service.shows({tilted});
    EXPECT_TRUE(waitsFor([&] {
        sight = lookAt(window.image());
        return sight.red > 30 && sight.redX > before + 30.0;
    })) << "the ball rolls to the right: from "
        << before << " to " << sight.redX;
    closes();
    EXPECT_TRUE(waitsFor([&] { return service.clientCount() == 0; }));
    EXPECT_EQ(lines().front(), "reading level data/Rollix/level0.png");
}
#endif

TEST_F(ProgramTest, EndsWhenItIsClosedAtOnce)
{
    paints(0, LevelPicture({"S"}));
    starts();
    closes();
    EXPECT_EQ(lines(), (Lines{"reading level data/Rollix/level0.png", noDeviceLine}));
}

TEST_F(ProgramTest, EndsAsItShouldThoughTheSoundDoesNot)
{
    paints(0, LevelPicture({"S"}));
    starts(ROLLIX_FAILING_RELEASE);
    closes();
    EXPECT_EQ(lines(), (Lines{"reading level data/Rollix/level0.png", noDeviceLine,
                              "FMOD ERROR: System did not terminate properly!"}));
}

TEST_F(ProgramTest, GoesOnWithoutAFontAShaderAPictureAndASound)
{
    lacks({"data/Bevan.ttf", "data/Rollix/boardShader.frag", "data/wood.glsl",
           "data/Rollix/coins.png", "data/Rollix/wood.png", "data/Rollix/wood-ball-hit-3.mp3"});
    // Nothing to hit: no sound is asked for.
    paints(0, LevelPicture(1, 1));
    starts();
    for (int i = 2; i <= 4; ++i) {
        window.types("r");
        ASSERT_TRUE(says("reading level data/Rollix/level0.png", i));
    }
    closes();
    EXPECT_EQ(complaints(),
              (Lines{"FMOD error 18 - There is no such file.", noDeviceLine,
                     "I cannot read the font data/Bevan.ttf. I write with what I have.",
                     "I cannot read the image data/Rollix/coins.png. Imagine it.",
                     "I cannot read the image data/Rollix/wood.png. Imagine the grain.",
                     "I cannot read the shader data/Rollix/boardShader.frag. What it colours looks "
                     "odd now.",
                     "I cannot read the shader data/wood.glsl. What it colours looks odd now."}))
        << "each once, however many levels are loaded";
}

TEST_F(ProgramTest, RunsInAnEmptyFolder)
{
    ASSERT_TRUE(QDir(folder.path() + "/data").removeRecursively());
    starts();
    ASSERT_TRUE(says("reading level data/Rollix/level0.png"));
    window.types("r");
    ASSERT_TRUE(says("reading level data/Rollix/level0.png", 2));
    window.types("plus");
    ASSERT_TRUE(says("reading level data/Rollix/level1.png"));
    closes();
    std::map<std::string, int> counts;
    for (const std::string& line : complaints())
        ++counts[line];
    EXPECT_EQ(counts["FMOD error 18 - There is no such file."], 8) << "one for each hit";
    counts.erase("FMOD error 18 - There is no such file.");
    EXPECT_EQ(counts[noDeviceLine], 1);
    EXPECT_EQ(counts["I cannot read the shader data/Rollix/boardShader.vert. What it colours looks "
                     "odd now."],
              1);
    for (const auto& [line, count] : counts)
        EXPECT_EQ(count, 1) << line;
}

}  // namespace
