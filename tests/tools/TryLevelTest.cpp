// `rollix-level try`, as an author uses it: the game beside a paint program.

#include "GameFolder.h"
#include "program/ProgramWindow.h"
#include "support/LevelPicture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>

#include <functional>

namespace {

constexpr int limit = 30000;  // milliseconds, for anything to happen

class TryLevel : public testing::Test
{
protected:
    ~TryLevel() override
    {
        if (program.state() != QProcess::NotRunning) {
            program.terminate();
            program.waitForFinished();
        }
    }

    void saves(const LevelPicture& picture) { picture.image().save(file); }

    void starts()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ALSOFT_DRIVERS", "none");
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.setWorkingDirectory(folder.path());
        program.start(ROLLIX_LEVEL_PROGRAM, {"try", "mine.png"});
        ASSERT_TRUE(waitsFor([this] { return game() > 0 && window.find(game()); })) << text();
        scratch = QFileInfo(QString("/proc/%1/cwd").arg(game())).symLinkTarget();
    }

    /// The process that it has started; 0 for none.
    qint64 game() const
    {
        const QString process = QString::number(program.processId());
        QFile children("/proc/" + process + "/task/" + process + "/children");
        return children.open(QIODevice::ReadOnly)
                   ? children.readAll().simplified().split(' ').first().toLongLong()
                   : 0;
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

    std::string text()
    {
        output += program.readAll();
        return output.toStdString();
    }

    bool says(const QByteArray& part, int times = 1)
    {
        return waitsFor([&] {
            text();
            return output.count(part) >= times;
        });
    }

    bool ends()
    {
        return waitsFor([this] {
            program.waitForFinished(1);
            return program.state() == QProcess::NotRunning;
        });
    }

    const GameFolder folder{QDir(ROLLIX_SOURCE_DIR)};
    const QString file = folder.path() + "/mine.png";
    QProcess program;
    ProgramWindow window;
    QString scratch;
    QByteArray output;
};

const QByteArray reading = "reading level data/Rollix/level0.png";

}  // namespace

TEST_F(TryLevel, ShowsWhatIsSavedMeanwhileAndLeavesNothingBehind)
{
    saves(LevelPicture({"S.G"}));
    starts();
    ASSERT_TRUE(says(reading)) << text();
    EXPECT_NE(text().find("mine.png is level 0 of the game"), std::string::npos) << text();
    EXPECT_TRUE(says("3 x 1 cells"));

    saves(LevelPicture({"S..."}));
    EXPECT_TRUE(says("saved; R in the game shows it")) << text();
    EXPECT_TRUE(says("warning: there is no goal")) << text();
    EXPECT_EQ(QImage(scratch + "/data/Rollix/level0.png").width(), 4);
    window.types("r");
    EXPECT_TRUE(says(reading, 2)) << text();

    // As programs do that never leave half a file behind.
    LevelPicture({"S...G"}).image().save(folder.path() + "/new.png");
    ASSERT_TRUE(QFile::remove(file) && QFile::rename(folder.path() + "/new.png", file));
    EXPECT_TRUE(says("saved; R in the game shows it", 2)) << text();
    EXPECT_EQ(QImage(scratch + "/data/Rollix/level0.png").width(), 5);

    EXPECT_NE(scratch, folder.path());
    window.close();
    EXPECT_TRUE(ends());
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_FALSE(QFileInfo::exists(scratch));
    EXPECT_TRUE(QFileInfo::exists(file));
}

TEST_F(TryLevel, LeavesNothingBehindWhenItIsStopped)
{
    saves(LevelPicture({"S.G"}));
    starts();
    ASSERT_TRUE(says(reading)) << text();
    const qint64 started = game();
    program.terminate();
    EXPECT_TRUE(ends());
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_FALSE(QFileInfo::exists(scratch));
    EXPECT_FALSE(QFileInfo::exists(QString("/proc/%1").arg(started)));
}
