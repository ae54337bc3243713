#include "PlayedWorld.h"

#include "ManualClock.h"
#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hand/LeapManager.h"

#include <QDir>

namespace {

void linkData(const QDir& home, const QDir& folder)
{
    const QDir source(home.filePath("data"));
    folder.mkpath("data/Rollix");
    for (const QString part : {"", "Rollix/"}) {
        for (const QFileInfo& file : QDir(source.filePath(part)).entryInfoList(QDir::Files)) {
            if (!file.fileName().startsWith("level"))
                QFile::link(file.absoluteFilePath(),
                            folder.filePath("data/" + part + file.fileName()));
        }
    }
}

}  // namespace

PlayedWorld::PlayedWorld(const QString& home)
{
    linkData(QDir(home), QDir(folder.path()));
    QDir::setCurrent(folder.path());
    ManualClock::stop();
    // As in the game itself, neither widget nor game is ever deleted.
    auto* widget = new OsgViewerWidget;
    auto* game = new Rollix(widget);
    // The hands that count here are played.
    LeapManager::removeListener();
    widget->addView(game);
    GameLoop::attach(game);
    played = std::make_unique<PlayedGame>(*game, *widget);
}
