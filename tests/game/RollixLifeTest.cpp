#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hand/LeapManager.h"
#include "level/Level.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <gtest/gtest.h>
#include <osg/observer_ptr>

#include <cstddef>
#include <cstring>
#include <memory>
#include <vector>

namespace {

/// Whoever still calls this game when it is gone finds nothing, where else it would find what by
/// chance is left of it.
class WipedGame : public Rollix
{
public:
    using Rollix::Rollix;

    // Not inlined: the compiler would see the usual one and miss its delete.
    [[gnu::noinline]] static void* operator new(std::size_t size) { return ::operator new(size); }
    static void operator delete(void* memory, std::size_t size)
    {
        std::memset(memory, 0, size);
        // Kept, so that nothing else comes to lie there, and known, so that it is no leak.
        static auto* const kept = new std::vector<void*>;
        kept->push_back(memory);
    }

protected:
    ~WipedGame() override
    {
        EXPECT_EQ(getViewerBase(), nullptr) << "it leaves a window that is half gone";
    }
};

TEST(RollixLife, BeginsWaitingForTheHandAndLeavesSensorAndWindowWithoutATrace)
{
    auto widget = std::make_unique<OsgViewerWidget>();
    auto* game = new WipedGame(widget.get());
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
    widget->removeView(game);
    EXPECT_FALSE(itself.valid());
    EXPECT_FALSE(level.valid());
    EXPECT_FALSE(scene.valid());

    // Nobody is there any more to hear of it.
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier);
    QCoreApplication::sendEvent(widget.get(), &press);
    EXPECT_FALSE(press.isAccepted());
    Leap::Listener next;
    LeapManager::setListener(&next);
    LeapManager::removeListener();
}

TEST(RollixLife, EndsWithItsWindow)
{
    auto widget = std::make_unique<OsgViewerWidget>();
    auto* game = new WipedGame(widget.get());
    widget->addView(game);
    const osg::observer_ptr<osg::View> itself(game);
    widget.reset();
    EXPECT_FALSE(itself.valid());
}

}  // namespace
