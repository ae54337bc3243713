#include "platform/leap/Session.h"

#include "platform/leap/FrameData.h"
#include "support/SensorService.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using Leap::Controller;
using Leap::FrameData;
using Leap::Gesture;
using Leap::Session;

namespace {

constexpr int generousLimit = 20000;  // ms

FrameData frameNumber(std::int64_t id)
{
    FrameData frame;
    frame.id = id;
    return frame;
}

FrameData frameWithTap(std::int64_t id, Gesture::State state = Gesture::STATE_STOP)
{
    FrameData frame = frameNumber(id);
    Leap::GestureData tap;
    tap.id = id;
    tap.type = Gesture::TYPE_SCREEN_TAP;
    tap.state = state;
    frame.gestures.push_back(tap);
    return frame;
}

// Notes its calls in one word each, and can be held inside onFrame.
class Recorder : public Leap::Listener
{
public:
    void onInit(const Controller&) override { note("init"); }
    void onConnect(const Controller&) override { note("connect"); }
    void onDisconnect(const Controller&) override { note("disconnect"); }
    void onExit(const Controller&) override { note("exit"); }
    void onFocusGained(const Controller&) override { note("focus"); }
    void onFocusLost(const Controller&) override { note("blur"); }
    void onFrame(const Controller& controller) override
    {
        const Leap::Frame frame = controller.frame(0);
        {
            const std::lock_guard<std::mutex> lock(mutex);
            frames.push_back(frame.id());
            for (int i = 0; i < frame.gestures().count(); ++i)
                gestures.push_back(frame.gestures()[i].id());
        }
        ++entered;
        while (held)
            std::this_thread::yield();
        sameAtEnd = controller.frame(0).id() == frame.id();
        if (during)
            during(controller);
        ++left;
    }

    std::vector<std::int64_t> seenFrames()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return frames;
    }
    std::vector<std::int64_t> seenGestures()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return gestures;
    }
    std::string calls()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return words;
    }

    std::atomic<bool> held{false};
    std::atomic<int> entered{0};
    std::atomic<int> left{0};
    std::atomic<bool> sameAtEnd{false};
    std::function<void(const Controller&)> during;

private:
    void note(const char* word)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        words += (words.empty() ? "" : " ") + std::string(word);
    }

    std::mutex mutex;
    std::vector<std::int64_t> frames;
    std::vector<std::int64_t> gestures;
    std::string words;
};

class SessionTest : public ::testing::Test
{
protected:
    SessionTest() : thread([this] { session->run(); })
    {
        session->enableGesture(Gesture::TYPE_SCREEN_TAP, true);
    }
    ~SessionTest() override
    {
        session->stop();
        thread.join();
    }

    bool eventually(const std::function<bool()>& condition)
    {
        return holdsWithin(generousLimit, condition);
    }

    std::shared_ptr<Session> session = std::make_shared<Session>();
    std::thread thread;
};

}  // namespace

TEST_F(SessionTest, DeliversOnAThreadOfItsOwn)
{
    Recorder listener;
    std::atomic<bool> elsewhere{false};
    const auto here = std::this_thread::get_id();
    listener.during = [&](const Controller&) {
        elsewhere = std::this_thread::get_id() != here;
    };
    session->addListener(listener);
    session->publish(frameNumber(1));
    ASSERT_TRUE(eventually([&] { return listener.left == 1; }));
    EXPECT_TRUE(elsewhere);
    session->removeListener(listener);
}

TEST_F(SessionTest, DropsAllButTheNewestWhileAListenerIsBusy)
{
    Recorder listener;
    listener.held = true;
    session->addListener(listener);
    session->publish(frameNumber(1));
    ASSERT_TRUE(eventually([&] { return listener.entered == 1; }));
    for (int id = 2; id <= 1000; ++id)
        session->publish(frameNumber(id));
    EXPECT_EQ(session->frame().id(), 1000) << "outside a call, frame(0) is the newest";
    listener.held = false;
    ASSERT_TRUE(eventually([&] { return listener.left == 2; }));
    session->removeListener(listener);
    EXPECT_EQ(listener.seenFrames(), (std::vector<std::int64_t>{1, 1000}));
}

TEST_F(SessionTest, ShowsOneFrameThroughoutACall)
{
    Recorder listener;
    listener.held = true;
    session->addListener(listener);
    session->publish(frameNumber(1));
    ASSERT_TRUE(eventually([&] { return listener.entered == 1; }));
    session->publish(frameNumber(2));
    listener.held = false;
    ASSERT_TRUE(eventually([&] { return listener.left == 2; }));
    EXPECT_TRUE(listener.sameAtEnd);
    session->removeListener(listener);
}

TEST_F(SessionTest, HandsOnTheTapsOfFramesThatNobodySaw)
{
    Recorder listener;
    listener.held = true;
    session->addListener(listener);
    session->publish(frameNumber(1));
    ASSERT_TRUE(eventually([&] { return listener.entered == 1; }));
    session->publish(frameWithTap(2));
    session->publish(frameWithTap(3, Gesture::STATE_UPDATE));
    session->publish(frameNumber(4));
    session->publish(frameWithTap(5));
    listener.held = false;
    ASSERT_TRUE(eventually([&] { return listener.left == 2; }));
    session->publish(frameNumber(6));
    ASSERT_TRUE(eventually([&] { return listener.left == 3; }));
    session->removeListener(listener);
    EXPECT_EQ(listener.seenGestures(), (std::vector<std::int64_t>{2, 5}));
}

TEST_F(SessionTest, KeepsABoundedNumberOfGestures)
{
    Recorder listener;
    listener.held = true;
    session->addListener(listener);
    session->publish(frameNumber(1));
    ASSERT_TRUE(eventually([&] { return listener.entered == 1; }));
    for (int id = 2; id <= 500; ++id)
        session->publish(frameWithTap(id));
    listener.held = false;
    ASSERT_TRUE(eventually([&] { return listener.left == 2; }));
    session->removeListener(listener);
    EXPECT_EQ(listener.seenGestures().size(), 64u);
}

TEST_F(SessionTest, KeepsNoGesturesForWhoComesLater)
{
    session->publish(frameWithTap(1));
    Recorder listener;
    session->addListener(listener);
    session->publish(frameNumber(2));
    ASSERT_TRUE(eventually([&] { return listener.left == 1; }));
    session->removeListener(listener);
    EXPECT_TRUE(listener.seenGestures().empty());
    EXPECT_EQ(listener.seenFrames(), (std::vector<std::int64_t>{2}));
}

TEST_F(SessionTest, ReportsOnlyTheTypesAskedFor)
{
    Recorder listener;
    session->addListener(listener);
    EXPECT_TRUE(session->wantsGestures());
    session->enableGesture(Gesture::TYPE_SCREEN_TAP, false);
    session->enableGesture(Gesture::TYPE_CIRCLE, true);
    session->publish(frameWithTap(1));
    ASSERT_TRUE(eventually([&] { return listener.left == 1; }));
    session->removeListener(listener);
    EXPECT_TRUE(listener.seenGestures().empty());
    session->enableGesture(Gesture::TYPE_CIRCLE, false);
    EXPECT_FALSE(session->wantsGestures());
}

TEST_F(SessionTest, ShowsEachGestureOnceToEachOfTwoListeners)
{
    Recorder slow;
    Recorder quick;
    slow.held = true;
    session->addListener(slow);
    session->addListener(quick);
    session->publish(frameWithTap(1));
    ASSERT_TRUE(eventually([&] { return slow.entered == 1; }));
    session->publish(frameWithTap(2));
    session->publish(frameWithTap(3));
    slow.held = false;
    ASSERT_TRUE(eventually([&] { return slow.left == 2 && quick.left == 2; }));
    session->removeListener(slow);
    session->removeListener(quick);
    EXPECT_EQ(slow.seenGestures(), (std::vector<std::int64_t>{1, 2, 3}));
    EXPECT_EQ(quick.seenGestures(), (std::vector<std::int64_t>{1, 2, 3}));
}

TEST_F(SessionTest, TellsOfTheConnectionBeforeTheFirstFrame)
{
    session->connected();
    session->setFocused(true);
    Recorder listener;
    listener.during = [&](const Controller&) {
        if (listener.left == 0)
            EXPECT_EQ(listener.calls(), "init connect focus");
    };
    session->addListener(listener);
    session->publish(frameNumber(1));
    ASSERT_TRUE(eventually([&] { return listener.left == 1; }));
    session->disconnected();
    ASSERT_TRUE(
        eventually([&] { return listener.calls() == "init connect focus blur disconnect"; }));
    session->removeListener(listener);
    EXPECT_EQ(listener.calls(), "init connect focus blur disconnect exit");
}

TEST_F(SessionTest, TellsOfALossThatWasOverBeforeItCouldBeTold)
{
    session->connected();
    Recorder listener;
    listener.held = true;
    session->addListener(listener);
    session->publish(frameNumber(1));
    ASSERT_TRUE(eventually([&] { return listener.entered == 1; }));
    session->disconnected();
    session->connected();
    listener.held = false;
    ASSERT_TRUE(eventually([&] { return listener.calls() == "init connect disconnect connect"; }));
    session->removeListener(listener);
}

TEST_F(SessionTest, ForgetsTheHandWithItsService)
{
    Recorder listener;
    listener.held = true;
    session->connected();
    session->addListener(listener);
    session->publish(frameNumber(1));
    ASSERT_TRUE(eventually([&] { return listener.entered == 1; }));
    session->publish(frameNumber(2));
    session->disconnected();
    EXPECT_EQ(session->frame().hands().count(), 0);
    listener.held = false;
    ASSERT_TRUE(eventually([&] { return listener.left == 2; }));
    EXPECT_EQ(listener.calls(), "init connect disconnect");
    session->removeListener(listener);
    constexpr std::int64_t emptyFrame = -1;
    EXPECT_EQ(listener.seenFrames(), (std::vector<std::int64_t>{1, emptyFrame}));
}

TEST_F(SessionTest, WaitsForTheCallInProgressBeforeAListenerIsGone)
{
    for (int round = 0; round < 50; ++round) {
        Recorder listener;
        listener.held = true;
        session->addListener(listener);
        session->publish(frameNumber(1));
        ASSERT_TRUE(eventually([&] { return listener.entered == 1; }));
        std::atomic<bool> removed{false};
        std::thread remover([&] {
            session->removeListener(listener);
            removed = true;
        });
        session->publish(frameNumber(2));
        EXPECT_FALSE(removed);
        listener.held = false;
        remover.join();
        const int calls = listener.left;
        EXPECT_EQ(calls, listener.entered);
        session->publish(frameNumber(3));
        EXPECT_EQ(listener.entered, calls);
    }
}

TEST_F(SessionTest, LetsAListenerRemoveItselfInACall)
{
    Recorder listener;
    std::atomic<bool> known{false};
    listener.during = [&](const Controller& controller) {
        Controller copy = controller;
        known = copy.removeListener(listener);
    };
    session->addListener(listener);
    session->publish(frameNumber(1));
    ASSERT_TRUE(eventually([&] { return listener.left == 1; }));
    EXPECT_TRUE(known);
    session->publish(frameNumber(2));
    Recorder other;
    session->addListener(other);
    session->publish(frameNumber(3));
    ASSERT_TRUE(eventually([&] { return other.left == 1; }));
    session->removeListener(other);
    EXPECT_EQ(listener.entered, 1);
    EXPECT_EQ(listener.calls(), "init exit");
}

TEST_F(SessionTest, KnowsEachListenerOnce)
{
    Recorder listener;
    EXPECT_TRUE(session->addListener(listener));
    EXPECT_FALSE(session->addListener(listener));
    EXPECT_TRUE(session->removeListener(listener));
    EXPECT_FALSE(session->removeListener(listener));
}
