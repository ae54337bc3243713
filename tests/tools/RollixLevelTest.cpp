// The program for authors of levels, started as they start it.

#include "GameFolder.h"
#include "support/LevelPicture.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

class RollixLevel : public ::testing::Test
{
protected:
    /// Runs it to its end, in a folder with the game's data/.
    void runs(const QStringList& arguments)
    {
        program.setProcessEnvironment(environment);
        program.setWorkingDirectory(workplace);
        program.start(ROLLIX_LEVEL_PROGRAM, arguments);
        ASSERT_TRUE(program.waitForFinished(60000));
        ASSERT_EQ(program.exitStatus(), QProcess::NormalExit);
        output = program.readAllStandardOutput().toStdString();
    }

    void hasNoDisplay()
    {
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(name);
    }

    QString paints(const LevelPicture& picture)
    {
        const QString file = folder.path() + "/mine.png";
        picture.image().save(file);
        return file;
    }

    const GameFolder folder{QDir(ROLLIX_SOURCE_DIR)};
    QString workplace = folder.path();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QProcess program;
    std::string output;
};

const LevelPicture soundLevel({"#####", "#S.G#", "#####"});

}  // namespace

TEST_F(RollixLevel, WantsToKnowWhatToDo)
{
    runs({});
    EXPECT_NE(program.exitCode(), 0);
    runs({"--help"});
    for (const char* command : {"check", "palette", "try", "view"})
        EXPECT_NE(output.find(command), std::string::npos) << output;
}

TEST_F(RollixLevel, NeedsNoDisplayToHelp)
{
    hasNoDisplay();
    for (const char* command : {"check", "palette", "try", "view"}) {
        SCOPED_TRACE(command);
        runs({command, "--help"});
        EXPECT_EQ(program.exitCode(), 0);
        EXPECT_NE(output.find("--help"), std::string::npos) << output;
    }
}

TEST_F(RollixLevel, ChecksPicturesWithoutADisplay)
{
    hasNoDisplay();
    runs({"check", paints(soundLevel)});
    EXPECT_EQ(program.exitCode(), 0) << output;
    runs({"check", "-q", paints(LevelPicture({"S."}))});
    EXPECT_EQ(program.exitCode(), 1) << output;
    runs({"check", folder.path() + "/nothing.png"});
    EXPECT_EQ(program.exitCode(), 2) << output;
}

TEST_F(RollixLevel, TakesAPhotographOfALevel)
{
    runs({"view", paints(soundLevel), "photograph.png", "--ticks", "2", "--crop", "400", "400"});
    EXPECT_EQ(program.exitCode(), 0) << output;
    const QImage photograph(folder.path() + "/photograph.png");
    ASSERT_EQ(photograph.size(), QSize(400, 400));
    int wood = 0;
    for (int y = 0; y < photograph.height(); ++y) {
        for (int x = 0; x < photograph.width(); ++x) {
            const QColor color = photograph.pixelColor(x, y);
            wood += color.red() > color.green() + 15 && color.green() > color.blue() + 15;
        }
    }
    EXPECT_GT(wood, 2000);
}

TEST_F(RollixLevel, TakesAPhotographOfTheSizeThatIsWantedAndTellsOfWhat)
{
    paints(soundLevel);
    runs({"view", "mine.png", "photograph.png", "--ticks", "2", "--size", "500", "350"});
    EXPECT_EQ(program.exitCode(), 0) << output;
    EXPECT_EQ(output, "mine.png: 5 x 3 cells, shown in photograph.png, 500 x 350 pixels\n");
    EXPECT_EQ(QImage(folder.path() + "/photograph.png").size(), QSize(500, 350));
}

TEST_F(RollixLevel, TriesNothingWithoutAPictureTheGamesFilesAndADisplay)
{
    runs({"try", "data/Bevan.ttf"});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(output, "data/Bevan.ttf: this is no picture that I can read\n");
    const QString picture = paints(soundLevel);
    workplace = "/";
    runs({"try", picture});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(output, "/data: the game's files are not here; start me in the folder that holds "
                      "data/\n");
    workplace = folder.path();
    hasNoDisplay();
    runs({"try", picture});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_NE(output.find("there is no display to draw on"), std::string::npos) << output;
}

TEST_F(RollixLevel, WritesAPalette)
{
    runs({"palette", "rollix.gpl"});
    EXPECT_EQ(program.exitCode(), 0) << output;
    EXPECT_EQ(output, "");
    QFile palette(folder.path() + "/rollix.gpl");
    ASSERT_TRUE(palette.open(QIODevice::ReadOnly));
    const QByteArray text = palette.readAll();
    EXPECT_TRUE(text.startsWith("GIMP Palette\nName: Rollix\n"));
    runs({"palette", "-"});
    EXPECT_EQ(output, text.toStdString());
    runs({"palette", "-", "--height", "2"});
    EXPECT_NE(output.find("\n0 255 64\tstart\n"), std::string::npos) << output;
    runs({"palette", "-", "--height", "3"});
    EXPECT_NE(program.exitCode(), 0);
    runs({"palette", "nowhere/rollix.gpl"});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(output, "nowhere/rollix.gpl: I cannot write this palette\n");
}

TEST_F(RollixLevel, SaysThatAPhotographNeedsADisplay)
{
    hasNoDisplay();
    runs({"view", paints(soundLevel), "photograph.png"});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(output, "there is no display to draw on (DISPLAY is empty or cannot be reached)\n");
}

TEST_F(RollixLevel, SaysThatAPhotographNeedsTheGamesFiles)
{
    workplace = "/";
    runs({"view", paints(soundLevel), folder.path() + "/photograph.png"});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(output, "/data: the game's files are not here; start me in the folder that holds "
                      "data/\n");
}

TEST_F(RollixLevel, SaysThatAPhotographNeedsALevel)
{
    runs({"view", "data/Bevan.ttf", "photograph.png"});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(output, "data/Bevan.ttf: this is no picture that I can read\n");
}
