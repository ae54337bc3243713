// Where to start reading:
//   a frame begins in GameLoop::tick (frame/GameLoop.cpp), every 20 ms, and is over when it ends;
//   the game is built once, by the constructor in game/Rollix.cpp, which loads level 0;
//   a level is made by the constructor of Level (level/Level.cpp); Board::load reads its picture,
//   and level/LevelPixel.h tells what the colour of a pixel means;
//   every block is a Block (level/Block.h): its body comes from there, its ways from its own class;
//   a hand's pose becomes a tilt in game/RollixHand.cpp, a held key in Rollix::update;
//   the physics world is PhysxScene (physics/), reached through GameObject::game();
//   what PhysX reports comes in at Rollix::onContact and onTrigger;
//   platform/ stands in for libraries that a distribution does not carry.

#include "base/DataFolder.h"
#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hand/LeapManager.h"
#include "sound/FmodManager.h"

#include <QApplication>
#include <QIcon>

namespace {

QIcon windowIcon()
{
    QIcon icon;
    for (const char* size : {"16", "32", "48", "64", "128"})
        icon.addFile(QString(":/rollix-%1.png").arg(size));
    return icon;
}

}  // namespace

int main(int argc, char** argv)
{
    DataFolder::enter();
    // Nothing of this is deleted: the process ends with the world alive, and only the sensor, which
    // calls from a thread of its own, and the sound are stopped.
    new QApplication(argc, argv);
    QApplication::setDesktopFileName("rollix");
    QApplication::setWindowIcon(windowIcon());
    auto* widget = new OsgViewerWidget;
    auto* game = new Rollix(widget);
    {
        // A hand may already be at work on the scene that this goes through.
        const GameLoop::Lock worldLock;
        widget->addView(game);
    }
    widget->show();
    GameLoop::start(game);
    QApplication::exec();

    LeapManager::removeListener();
    FmodManager::shutdown();
    return 0;
}
