#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hand/LeapManager.h"
#include "level/Level.h"

#include <gtest/gtest.h>
#include <osg/observer_ptr>

#include <memory>

namespace {

TEST(RollixLife, BeginsWaitingForTheHandAndEndsWithoutATrace)
{
    auto widget = std::make_unique<OsgViewerWidget>();
    auto* game = new Rollix(widget.get());
    widget->addView(game);
    EXPECT_EQ(game->state, GameState::WaitingForRest);
    EXPECT_EQ(game->level->number, 0u);

    widget->resize(320, 240);
    widget->show();
    GameLoop::attach(game);
    for (int i = 0; i < 3; ++i)
        GameLoop::instance()->tick();

    const osg::observer_ptr<osg::View> itself(game);
    const osg::observer_ptr<Level> level(game->level.get());
    const osg::observer_ptr<osg::Node> scene(game->getSceneData());
    GameLoop::attach(nullptr);
    LeapManager::removeListener();
    widget->removeView(game);
    EXPECT_FALSE(itself.valid());
    EXPECT_FALSE(level.valid());
    EXPECT_FALSE(scene.valid());
}

}  // namespace
