#include "hand/LeapManager.h"

#include "support/SensorService.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

namespace {

constexpr int generousLimit = 30000;  // ms

class Counter : public Leap::Listener
{
public:
    void onFrame(const Leap::Controller&) override { ++frames; }
    void onExit(const Leap::Controller&) override { ++exits; }

    std::atomic<int> frames{0};
    std::atomic<int> exits{0};
};

bool eventually(const std::function<bool()>& condition)
{
    return holdsWithin(generousLimit, condition);
}

}  // namespace

TEST(LeapManager, IsOne)
{
    EXPECT_NE(LeapManager::instance(), nullptr);
    EXPECT_EQ(LeapManager::instance(), LeapManager::instance());
}

TEST(LeapManager, ReplacesTheListenerBefore)
{
    SensorService service;
    service.shows({PlayedHand()});
    Counter first;
    Counter second;
    LeapManager::setListener(&first);
    ASSERT_TRUE(service.hasClient());
    service.streams();
    ASSERT_TRUE(eventually([&] { return first.frames > 2; }));
    LeapManager::setListener(&second);
    EXPECT_EQ(first.exits, 1);
    const int framesOfFirst = first.frames;
    ASSERT_TRUE(eventually([&] { return second.frames > 2; }));
    EXPECT_EQ(first.frames, framesOfFirst);
    LeapManager::removeListener();
}

TEST(LeapManager, ForgetsAListenerThatEndsAndNoOther)
{
    SensorService service;
    service.shows({PlayedHand()});
    auto listener = std::make_unique<Counter>();
    Counter stranger;
    LeapManager::setListener(listener.get());
    ASSERT_TRUE(service.hasClient());
    service.streams();
    LeapManager::forget(&stranger);
    ASSERT_TRUE(eventually([&] { return listener->frames > 2; }));
    EXPECT_EQ(listener->exits, 0);
    LeapManager::forget(listener.get());
    EXPECT_EQ(listener->exits, 1);
    const int frames = listener->frames;
    Counter next;
    LeapManager::setListener(&next);
    EXPECT_EQ(listener->exits, 1);
    EXPECT_TRUE(eventually([&] { return next.frames > 2; }));
    EXPECT_EQ(listener->frames, frames);
    LeapManager::removeListener();
}

TEST(LeapManager, CallsNobodyAfterTheListenerIsRemoved)
{
    SensorService service;
    service.shows({PlayedHand()});
    Counter listener;
    LeapManager::setListener(&listener);
    ASSERT_TRUE(service.hasClient());
    service.streams();
    ASSERT_TRUE(eventually([&] { return listener.frames > 2; }));
    LeapManager::removeListener();
    const int frames = listener.frames;
    EXPECT_EQ(listener.exits, 1);
    QThread::msleep(50);
    EXPECT_EQ(listener.frames, frames);
    LeapManager::removeListener();
    EXPECT_EQ(listener.exits, 1) << "removing it again is nothing";
    // A listener set later takes over although the pointer of the one before was kept.
    Counter next;
    LeapManager::setListener(&next);
    EXPECT_EQ(listener.exits, 1) << "and it is not told again that it is over";
    EXPECT_TRUE(eventually([&] { return next.frames > 2; }));
    EXPECT_EQ(listener.frames, frames);
    LeapManager::removeListener();
}
