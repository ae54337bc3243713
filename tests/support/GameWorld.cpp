#include "support/GameWorld.h"

#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "support/LevelPicture.h"

#include <QCoreApplication>
#include <QDir>

namespace {

void linkFiles(const QDir& source, const QString& target)
{
    for (const QFileInfo& file : source.entryInfoList(QDir::Files)) {
        if (!file.fileName().startsWith("level"))
            QFile::link(file.absoluteFilePath(), target + "/" + file.fileName());
    }
}

}  // namespace

GameFolder::GameFolder()
{
    const QDir source(QString(ROLLIX_SOURCE_DIR) + "/data");
    const QDir target(folder.path());
    target.mkpath("data/Rollix");
    linkFiles(source, target.filePath("data"));
    linkFiles(QDir(source.filePath("Rollix")), target.filePath("data/Rollix"));
    QDir::setCurrent(folder.path());
}

const QSize GameWorld::windowSize(800, 600);

GameWorld& GameWorld::instance()
{
    // The folder goes at exit; widget and game stay, as they do in the program.
    static GameWorld theWorld;
    return theWorld;
}

GameWorld::GameWorld()
{
    LevelPicture({"S"}).image().save("data/Rollix/level0.png");
    widget = new OsgViewerWidget;
    game = new Rollix(widget);
    widget->addView(game);
    widget->resize(windowSize);
    widget->show();
    GameLoop::attach(game);
    QCoreApplication::processEvents();
}
