#include "GameWorld.h"

#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"

#include <QCoreApplication>

const QSize GameWorld::windowSize(800, 600);

GameWorld::GameWorld(const QDir& home, const QImage& firstLevel, GameFolder::Shaders shaders)
    : folder(home, shaders)
{
    folder.enter();
    firstLevel.save(folder.levelPath(0));
    widget = new OsgViewerWidget;
    game = new Rollix(widget);
    widget->addView(game);
    widget->resize(windowSize);
    widget->show();
    GameLoop::attach(game);
    QCoreApplication::processEvents();
}
