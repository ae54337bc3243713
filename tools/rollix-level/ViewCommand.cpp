#include "ViewCommand.h"

#include "FrameGrab.h"
#include "GameWorld.h"
#include "base/DataFolder.h"
#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hand/HandCamera.h"

#include <CLI/CLI.hpp>
#include <QApplication>
#include <QThread>

#include <iostream>
#include <memory>
#include <sstream>
#include <vector>

namespace {

constexpr int millisecondsPerTick = 20;
constexpr int mostTicks = 30000;   // ten minutes
constexpr int largestSide = 8192;  // pixels

struct Wish
{
    std::string level;
    std::string picture;
    int ticks = 50;
    std::vector<float> center;
    float distance = 0.0f;
    float height = 0.0f;
    std::vector<int> size;
    std::vector<int> crop;
};

/// Keeps the game from telling of level 0, which nobody asked for. Its complaints are told.
class QuietGame
{
public:
    QuietGame() : before(std::cout.rdbuf(said.rdbuf())) {}
    ~QuietGame()
    {
        std::cout.rdbuf(before);
        for (std::string line; std::getline(said, line);)
            if (line.rfind("I ", 0) == 0)
                std::cout << line << std::endl;
    }

    QuietGame(const QuietGame&) = delete;
    QuietGame& operator=(const QuietGame&) = delete;

private:
    std::stringstream said;
    std::streambuf* before;
};

int refuse(const std::string& reason)
{
    std::cout << reason << std::endl;
    return 1;
}

/// Without a display Qt ends the program by abort(), with advice on plugins.
void endWithoutDisplay(QtMsgType type, const QMessageLogContext&, const QString&)
{
    if (type == QtFatalMsg)
        std::_Exit(
            refuse("there is no display to draw on (DISPLAY is empty or cannot be reached)"));
}

void aim(Rollix& game, const Wish& wish)
{
    if (wish.distance > 0.0f)
        game.handCamera->setDistance(wish.distance);
    if (wish.height > 0.0f)
        game.handCamera->setHeight(wish.height);
    if (!wish.center.empty())
        game.handCamera->setCenter(osg::Vec3f(wish.center[0], wish.center[1], wish.center[2]));
}

void play(int ticks)
{
    for (int i = 0; i < ticks; ++i) {
        GameLoop::instance()->tick();
        QCoreApplication::processEvents();
        QThread::msleep(millisecondsPerTick);
    }
}

QImage middleOf(const QImage& frame, const std::vector<int>& size)
{
    if (size.empty())
        return frame;
    return frame.copy((frame.width() - size[0]) / 2, (frame.height() - size[1]) / 2, size[0],
                      size[1]);
}

QImage photograph(const QDir& home, const QImage& level, const Wish& wish)
{
    const QuietGame quiet;
    const GameWorld world(home, level);
    if (!wish.size.empty())
        world.widget->resize(wish.size[0], wish.size[1]);
    aim(*world.game, wish);
    const FrameGrab grab(world.game->getCamera(), FrameGrab::Samples::All);
    play(wish.ticks);
    return middleOf(grab.image(), wish.crop);
}

int takePicture(const Wish& wish)
{
    const QImage level(QString::fromStdString(wish.level));
    if (level.isNull())
        return refuse(wish.level + ": this is no picture that I can read");
    const QDir home(QDir(QString::fromStdString(DataFolder::find().string())).absolutePath());
    if (!GameFolder(home).isFilled())
        return refuse(home.filePath("data").toStdString() +
                      ": the game's files are not here; start me in the folder that holds data/");

    const QtMessageHandler before = qInstallMessageHandler(endWithoutDisplay);
    int argumentCount = 1;
    char name[] = "rollix-level";
    char* arguments[] = {name, nullptr};
    QApplication application(argumentCount, arguments);
    qInstallMessageHandler(before);

    const QImage frame = photograph(home, level, wish);
    const QString target = home.absoluteFilePath(QString::fromStdString(wish.picture));
    if (!frame.save(target))
        return refuse(wish.picture + ": I cannot write this picture");
    std::cout << wish.level << ": " << level.width() << " x " << level.height()
              << " cells, shown in " << wish.picture << ", " << frame.width() << " x "
              << frame.height() << " pixels" << std::endl;
    return 0;
}

}  // namespace

void addViewCommand(CLI::App& program, int& result)
{
    CLI::App* command = program.add_subcommand(
        "view",
        "Loads a picture of a level, lets the game run for a while and saves what it shows. To be "
        "started in the folder that holds data/.");
    const auto wish = std::make_shared<Wish>();
    command->add_option("level", wish->level, "The picture of the level")->required();
    command->add_option("picture", wish->picture, "Where to save what the game shows")->required();
    command->add_option("--ticks", wish->ticks, "How long it runs before, 50 a second")
        ->capture_default_str()
        ->check(CLI::Range(1, mostTicks));
    command->add_option("--center", wish->center, "Point of the world to look at")->expected(3);
    command->add_option("--distance", wish->distance, "The camera's distance along the ground");
    command->add_option("--height", wish->height, "The camera's height");
    command->add_option("--size", wish->size, "Width and height of the window, in pixels")
        ->expected(2)
        ->check(CLI::Range(1, largestSide))
        ->default_str("800 600");
    command->add_option("--crop", wish->crop, "Width and height of the frame's middle to save")
        ->expected(2)
        ->check(CLI::Range(1, largestSide));
    command->callback([wish, &result] { result = takePicture(*wish); });
}
