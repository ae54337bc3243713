#include "PlayedWorld.h"

#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hand/LeapManager.h"

PlayedWorld::PlayedWorld(const QDir& home) : folder(home)
{
    folder.enter();
    clock.advanceToFullMinute();
    // As in the game itself, neither widget nor game is ever deleted.
    auto* widget = new OsgViewerWidget;
    auto* game = new Rollix(widget);
    // The hands that count here are played.
    LeapManager::removeListener();
    widget->addView(game);
    GameLoop::attach(game);
    played = std::make_unique<PlayedGame>(*game, *widget);
}
