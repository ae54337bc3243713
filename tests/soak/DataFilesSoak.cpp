#include "program/ProgramWindow.h"
#include "soak/Soak.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>

namespace {

constexpr int shortForm = 12;   // files spoiled, of all that there are
constexpr int limit = 60000;    // ms, for anything to happen
constexpr int mostLines = 400;  // of complaints: each once, whatever is missing

enum class Spoiling { Missing, Empty, Half, Another };
constexpr const char* spoilingNames[] = {"missing", "empty", "cut in half", "another file"};
constexpr int spoilings = 4;

class DataFilesSoak : public testing::Test
{
protected:
    static QStringList dataFiles()
    {
        QStringList files;
        for (const QString& folder : {QString("data/"), QString("data/Rollix/")})
            for (const QString& name :
                 QDir(QString(ROLLIX_SOURCE_DIR "/") + folder).entryList(QDir::Files))
                files << folder + name;
        return files;
    }

    static QByteArray contentOf(const QString& name)
    {
        QFile file(QString(ROLLIX_SOURCE_DIR "/") + name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// The true files, but for one.
    static void bring(const QDir& folder, const QStringList& files, int spoiledOne, Spoiling how)
    {
        folder.mkpath("data/Rollix");
        for (int i = 0; i < files.size(); ++i) {
            if (i != spoiledOne) {
                QFile::link(QString(ROLLIX_SOURCE_DIR "/") + files[i], folder.filePath(files[i]));
                continue;
            }
            if (how == Spoiling::Missing)
                continue;
            const QByteArray whole = contentOf(files[i]);
            QFile file(folder.filePath(files[i]));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            if (how == Spoiling::Half)
                file.write(whole.left(whole.size() / 2));
            else if (how == Spoiling::Another)
                file.write(contentOf(files[(i + files.size() / 2) % files.size()]));
        }
    }

    static bool waitsFor(QProcess& program, const std::function<bool()>& condition)
    {
        QElapsedTimer clock;
        clock.start();
        while (!condition()) {
            if (clock.elapsed() > limit || program.state() == QProcess::NotRunning)
                return condition();
            QThread::msleep(10);
            program.waitForReadyRead(1);
        }
        return true;
    }

    /// Starts the game there, loads two levels, closes it.
    static void plays(const QString& folder)
    {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ALSOFT_DRIVERS", "none");
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.setWorkingDirectory(folder);
        program.start(ROLLIX_PROGRAM, QStringList());
        ProgramWindow window;
        QByteArray output;
        const auto says = [&](const QByteArray& line) {
            return waitsFor(
                program,
                [&] {
                    output += program.readAll();
                    return output.contains(line);
                });
        };
        ASSERT_TRUE(waitsFor(program, [&] { return window.find(program.processId()); }));
        window.presses("Right");
        window.types("plus");
        EXPECT_TRUE(says("reading level data/Rollix/level1.png"));
        window.releases("Right");
        window.types("plus");
        EXPECT_TRUE(says("reading level data/Rollix/level2.png"));
        window.close();
        EXPECT_TRUE(waitsFor(program, [&] {
            program.waitForFinished(1);
            return program.state() == QProcess::NotRunning;
        }));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0);
        output += program.readAll();
        EXPECT_LT(output.count('\n'), mostLines) << output.right(2000).toStdString();
        program.kill();
        program.waitForFinished();
    }
};

TEST_F(DataFilesSoak, MayEachBeMissingEmptyCutInHalfOrAnotherFile)
{
    const QStringList files = dataFiles();
    ASSERT_FALSE(files.isEmpty());
    const int all = int(files.size()) * spoilings;
    const int count = std::min(soakCount(shortForm), all);
    Progress progress("data files", count);
    for (int i = 0; i < count; ++i) {
        // Evenly over all of them, however few are asked for.
        const int which = int(qint64(i) * all / count);
        const auto how = Spoiling(which % spoilings);
        const QString& name = files[which / spoilings];
        SCOPED_TRACE(name.toStdString() + ' ' + spoilingNames[int(how)]);
        QTemporaryDir folder;
        bring(QDir(folder.path()), files, which / spoilings, how);
        plays(folder.path());
        progress.at(i + 1, name.toStdString());
    }
    std::cout << count << " starts, of " << files.size() << " files in " << spoilings << " ways"
              << std::endl;
}

}  // namespace
