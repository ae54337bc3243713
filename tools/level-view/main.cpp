#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hand/HandCamera.h"
#include "support/FrameGrab.h"

#include <CLI/CLI.hpp>
#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QThread>

#include <iostream>
#include <vector>

namespace {

constexpr int millisecondsPerTick = 20;
const QSize windowSize(800, 600);

struct Wish
{
    std::string level;
    std::string picture;
    int ticks = 50;
    std::vector<float> center;
    float distance = 0.0f;
    float height = 0.0f;
    std::vector<int> crop;
};

/// The game's data/ with one level in it; everything else is linked.
bool fillFolder(const QDir& folder, const QString& level)
{
    const QDir source(QDir::current().filePath("data"));
    if (!folder.mkpath("data/Rollix"))
        return false;
    for (const QString part : {"", "Rollix/"}) {
        for (const QFileInfo& file : QDir(source.filePath(part)).entryInfoList(QDir::Files)) {
            if (!file.fileName().startsWith("level"))
                QFile::link(file.absoluteFilePath(),
                            folder.filePath("data/" + part + file.fileName()));
        }
    }
    return QFile::copy(level, folder.filePath("data/Rollix/level0.png"));
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

int takePicture(const Wish& wish)
{
    const QString target = QDir::current().absoluteFilePath(QString::fromStdString(wish.picture));
    const QTemporaryDir folder;
    if (!fillFolder(QDir(folder.path()), QString::fromStdString(wish.level))) {
        std::cout << wish.level << ": I cannot read this level" << std::endl;
        return 1;
    }
    QDir::setCurrent(folder.path());

    // As in the game itself, neither widget nor game is ever deleted.
    auto* widget = new OsgViewerWidget;
    auto* game = new Rollix(widget);
    widget->addView(game);
    widget->resize(windowSize);
    widget->show();
    GameLoop::attach(game);
    aim(*game, wish);
    const FrameGrab grab(game->getCamera());
    play(wish.ticks);
    if (!middleOf(grab.image(), wish.crop).save(target)) {
        std::cout << wish.picture << ": I cannot write this picture" << std::endl;
        return 1;
    }
    return 0;
}

}  // namespace

// Shows a level as the game draws it, for those who write about levels. Run it where data/ is.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Wish wish;
    CLI::App options("Loads a picture of a level, lets the game run for a while and saves what it "
                     "shows. To be started in the folder that holds data/.");
    options.add_option("level", wish.level, "The picture of the level")->required();
    options.add_option("picture", wish.picture, "Where to save what the game shows")->required();
    options.add_option("--ticks", wish.ticks, "How long it runs before, 50 a second")
        ->capture_default_str();
    options.add_option("--center", wish.center, "Point of the world to look at")->expected(3);
    options.add_option("--distance", wish.distance, "The camera's distance along the ground");
    options.add_option("--height", wish.height, "The camera's height");
    options.add_option("--crop", wish.crop, "Width and height of the frame's middle to save")
        ->expected(2);
    CLI11_PARSE(options, argc, argv);
    return takePicture(wish);
}
