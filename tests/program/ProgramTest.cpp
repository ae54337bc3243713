#include "program/ProgramWindow.h"
#include "support/LevelPicture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

namespace {

constexpr int limit = 60000;  // milliseconds, for anything to happen

const QString noDeviceLine = "FMOD error 51 - No sound output device could be opened.";

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

    /// Links all run-time files into the folder, but for those that shall be missing.
    void brings(const QStringList& missing = {})
    {
        const QDir source(QString(ROLLIX_SOURCE_DIR) + "/data");
        const QDir target(folder.path());
        target.mkpath("data/Rollix");
        for (const QString& part : {QString(), QString("Rollix/")}) {
            for (const QFileInfo& file : QDir(source.filePath(part)).entryInfoList(QDir::Files)) {
                const QString name = "data/" + part + file.fileName();
                if (!missing.contains(name) && !file.fileName().startsWith("level"))
                    QFile::link(file.absoluteFilePath(), target.filePath(name));
            }
        }
    }

    void paints(int number, const LevelPicture& picture)
    {
        picture.image().save(folder.filePath(QString("data/Rollix/level%1.png").arg(number)));
    }

    /// Starts it and waits for its window.
    void starts()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        // Whatever this machine has, it plays nothing.
        environment.insert("ALSOFT_DRIVERS", "none");
        environment.remove("QT_SCALE_FACTOR");
        program.setProcessEnvironment(environment);
        program.setWorkingDirectory(folder.path());
        program.start(ROLLIX_PROGRAM, QStringList());
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

    QStringList lines()
    {
        output += program.readAllStandardOutput();
        return QString::fromUtf8(output).split('\n', Qt::SkipEmptyParts);
    }

    bool says(const QString& line, int times = 1)
    {
        return waitsFor([&] { return lines().count(line) >= times; });
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

    QTemporaryDir folder;
    QProcess program;
    ProgramWindow window;
    QByteArray output;
};

struct Sight
{
    int wood = 0;
    int red = 0;
    int sky = 0;
    double redX = 0.0;  // middle of the red, pixels
};

Sight lookAt(const QImage& image)
{
    Sight sight;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qRed(pixel) > 90 && qGreen(pixel) < 50 && qBlue(pixel) < 50) {
                ++sight.red;
                sight.redX += x;
            } else if (qRed(pixel) > qGreen(pixel) + 15 && qGreen(pixel) > qBlue(pixel) + 15) {
                ++sight.wood;
            } else if (qBlue(pixel) == 153 && qRed(pixel) == 51 && qGreen(pixel) == 51) {
                ++sight.sky;
            }
        }
    }
    if (sight.red > 0)
        sight.redX /= sight.red;
    return sight;
}

TEST_F(ProgramTest, IsPlayedByKeysAndEndsWhenItsWindowIsClosed)
{
    brings();
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
    EXPECT_EQ(lines(),
              (QStringList{"reading level data/Rollix/level0.png", noDeviceLine,
                           "reading level data/Rollix/level0.png",
                           "reading level data/Rollix/level1.png",
                           "reading level data/Rollix/level0.png",
                           "reading level data/Rollix/level-1.png"}));
}

TEST_F(ProgramTest, EndsWhenItIsClosedAtOnce)
{
    brings();
    paints(0, LevelPicture({"S"}));
    starts();
    closes();
    EXPECT_EQ(lines(), (QStringList{"reading level data/Rollix/level0.png", noDeviceLine}));
}

TEST_F(ProgramTest, GoesOnWithoutAFontAShaderAPictureAndASound)
{
    brings({"data/Bevan.ttf", "data/Rollix/boardShader.frag", "data/wood.glsl",
            "data/Rollix/coins.png", "data/Rollix/wood-ball-hit-3.mp3"});
    // Nothing to hit: no sound is asked for.
    paints(0, LevelPicture(1, 1));
    starts();
    for (int i = 2; i <= 4; ++i) {
        window.types("r");
        ASSERT_TRUE(says("reading level data/Rollix/level0.png", i));
    }
    closes();
    QStringList all = lines();
    all.removeAll("reading level data/Rollix/level0.png");
    all.sort();
    EXPECT_EQ(all, (QStringList{
                       noDeviceLine,
                       "FMOD error 18 - The file could not be found.",
                       "I cannot read the font data/Bevan.ttf. I write with what I have.",
                       "I cannot read the image data/Rollix/coins.png. Imagine it.",
                       "I cannot read the shader data/Rollix/boardShader.frag. What it colours "
                       "looks odd now.",
                       "I cannot read the shader data/wood.glsl. What it colours looks odd now.",
                   }))
        << all.join('\n').toStdString();
}

TEST_F(ProgramTest, RunsInAnEmptyFolder)
{
    starts();
    ASSERT_TRUE(says("reading level data/Rollix/level0.png"));
    window.types("r");
    ASSERT_TRUE(says("reading level data/Rollix/level0.png", 2));
    const int before = lines().size();
    window.types("plus");
    ASSERT_TRUE(says("reading level data/Rollix/level1.png"));
    closes();
    // Each of the eight sounds fails on its own, with the same words.
    std::map<QString, int> counts;
    for (const QString& line : lines())
        ++counts[line];
    for (const auto& [line, count] : counts) {
        if (line.startsWith("I cannot read"))
            EXPECT_EQ(count, 1) << line.toStdString();
    }
    EXPECT_LE(lines().size(), before + 1) << "nothing is complained of twice";
    EXPECT_EQ(counts[noDeviceLine], 1);
}

}  // namespace
