// Games of their own, each of which is the first of its process.

#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hand/LeapManager.h"
#include "support/SensorService.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

/// A game under such hands from its first moment on, which no tick has been of yet.
void hearsBeforeItsFirstTick(const std::vector<PlayedHand>& hands, GameState expected)
{
    SensorService service;
    service.shows(hands);
    service.streams();
    auto widget = std::make_unique<OsgViewerWidget>();
    auto* game = new Rollix(widget.get());
    {
        const GameLoop::Lock worldLock;
        widget->addView(game);
    }
    EXPECT_TRUE(holdsWithin(20000, [&] { return game->state == expected; }));
    widget->resize(320, 240);
    widget->show();
    GameLoop::attach(game);
    for (int i = 0; i < 3; ++i)
        GameLoop::instance()->tick();
    EXPECT_EQ(game->state, expected);
    GameLoop::attach(nullptr);
    LeapManager::removeListener();
    widget->removeView(game);
}

TEST(RollixLife, HearsAHandBeforeItsFirstTick)
{
    hearsBeforeItsFirstTick({PlayedHand()}, GameState::Playing);
}

TEST(RollixLife, HearsTwoHandsBeforeItsFirstTick)
{
    PlayedHand second;
    second.id = 2;
    second.palm.setX(100.0f);
    hearsBeforeItsFirstTick({PlayedHand(), second}, GameState::CameraControl);
}

}  // namespace
