#include "TryCommand.h"

#include "GameFolder.h"
#include "LevelReport.h"
#include "base/DataFolder.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QImage>
#include <QProcess>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QTimer>

#include <array>
#include <csignal>
#include <iostream>
#include <memory>
#include <unistd.h>

namespace {

constexpr int settleTime = 300;  // milliseconds: paint programs write in several steps

int refuse(const std::string& reason)
{
    std::cout << reason << std::endl;
    return 1;
}

/// Beside this program in a build, in the games' place when it is installed.
QString gameProgram()
{
    QString beside = QCoreApplication::applicationDirPath() + "/rollix";
    if (QFileInfo(beside).isExecutable())
        return beside;
    const QString onPath = QStandardPaths::findExecutable("rollix");
    return onPath.isEmpty() ? QStandardPaths::findExecutable("rollix", {"/usr/games"}) : onPath;
}

bool hasDisplay()
{
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(name))
            return true;
    return false;
}

std::array<int, 2> stopPipe{-1, -1};
volatile std::sig_atomic_t isStopped = 0;

void noteStop(int)
{
    isStopped = 1;
    const char anything = 0;
    // Nothing else is allowed in here, and nothing can be done if it fails.
    [[maybe_unused]] const ssize_t written = write(stopPipe[1], &anything, 1);
}

/// Ctrl-C and the like end the game first, so that the copy of its files goes away.
void endWithSignals(QProcess& game, std::unique_ptr<QSocketNotifier>& notifier)
{
    if (pipe(stopPipe.data()) != 0)
        return;
    notifier = std::make_unique<QSocketNotifier>(stopPipe[0], QSocketNotifier::Read);
    // By name: the signal's two overloads are private, and pointers to them cannot be told apart.
    QObject::connect(notifier.get(), SIGNAL(activated(int)), &game, SLOT(terminate()));
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(number, noteStop);
}

/// Tells of every saving what the level looks like then.
class SavingTeller
{
public:
    explicit SavingTeller(const QString& picture) : file(picture)
    {
        settle.setSingleShot(true);
        settle.setInterval(settleTime);
        watch();
        QObject::connect(&watcher, &QFileSystemWatcher::fileChanged, [this] { settle.start(); });
        // Many programs save by putting another file in its place.
        QObject::connect(
            &watcher, &QFileSystemWatcher::directoryChanged,
            [this] {
                if (QFileInfo(file).lastModified() != told)
                    settle.start();
            });
        QObject::connect(&settle, &QTimer::timeout, [this] { tell(); });
    }

private:
    void watch()
    {
        watcher.addPath(file);
        watcher.addPath(QFileInfo(file).path());
        told = QFileInfo(file).lastModified();
    }

    void tell()
    {
        watch();
        if (reportLevel(file.toStdString(), true, std::cout) < 2)
            std::cout << "saved; R in the game shows it" << std::endl;
    }

    QString file;
    QFileSystemWatcher watcher;
    QTimer settle;
    QDateTime told;
};

int play(const std::string& picture)
{
    const QString file = QFileInfo(QString::fromStdString(picture)).absoluteFilePath();
    const QDir home(QDir(QString::fromStdString(DataFolder::find().string())).absolutePath());
    const GameFolder folder(home);
    if (QImage(file).isNull())
        return refuse(picture + ": this is no picture that I can read");
    if (!folder.isFilled())
        return refuse(home.filePath("data").toStdString() +
                      ": the game's files are not here; start me in the folder that holds data/");
    if (!QFile::link(file, folder.levelPath(0)))
        return refuse(folder.path().toStdString() + ": I cannot write there");

    if (!hasDisplay())
        return refuse("there is no display to draw on (DISPLAY is empty)");

    int argumentCount = 1;
    char name[] = "rollix-level";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    const QString program = gameProgram();
    if (program.isEmpty())
        return refuse("the game is not here: no program called rollix beside me or on the PATH");

    QProcess game;
    game.setProcessChannelMode(QProcess::ForwardedChannels);
    game.setWorkingDirectory(folder.path());
    std::unique_ptr<QSocketNotifier> notifier;
    endWithSignals(game, notifier);
    const SavingTeller teller(file);
    QObject::connect(&game, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
                     &application, &QCoreApplication::quit);
    reportLevel(picture, true, std::cout);
    std::cout << picture << " is level 0 of the game that starts now; paint on, save it, and press "
              << "R there" << std::endl;
    game.start(program, QStringList());
    if (!game.waitForStarted())
        return refuse(program.toStdString() + ": I cannot start the game");
    QCoreApplication::exec();
    if (isStopped || (game.exitStatus() == QProcess::NormalExit && game.exitCode() == 0))
        return 0;
    return refuse("the game has not ended well; does it have a display?");
}

}  // namespace

void addTryCommand(CLI::App& program, int& result)
{
    CLI::App* command = program.add_subcommand(
        "try",
        "Starts the game on a picture, in a copy of its files that goes away at the end. Whenever "
        "the picture is saved, it is checked, and R in the game shows it.");
    const auto picture = std::make_shared<std::string>();
    command->add_option("picture", *picture, "The picture of the level")->required();
    command->callback([picture, &result] { result = play(*picture); });
}
