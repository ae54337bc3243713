#include "support/GameWorld.h"

#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "support/LevelPicture.h"

#include <QCoreApplication>
#include <QDir>

namespace {

void fill(const QString& target, const QDir& source)
{
    for (const QFileInfo& file : source.entryInfoList(QDir::Files)) {
        const QString name = target + "/" + file.fileName();
        if (QStringList({"vert", "frag", "geom", "glsl"}).contains(file.suffix()))
            QFile::copy(file.absoluteFilePath(), name);
        else if (!file.fileName().startsWith("level"))
            QFile::link(file.absoluteFilePath(), name);
    }
}

}  // namespace

GameFolder::GameFolder()
{
    const QDir source(QString(ROLLIX_SOURCE_DIR) + "/data");
    const QDir target(folder.path());
    target.mkpath("data/Rollix");
    fill(target.filePath("data"), source);
    fill(target.filePath("data/Rollix"), QDir(source.filePath("Rollix")));
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
