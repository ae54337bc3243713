#include "RawPeer.h"
#include "platform/leap/ServiceAddress.h"
#include "support/SensorService.h"

#include <Leap.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

// The game drops its controller in an exit handler that is older than everything the network
// library sets up, with the threads of the layer still at work. Each case is a process of its own.
namespace {

Leap::Controller* controller = nullptr;

class Counter : public Leap::Listener
{
public:
    void onFrame(const Leap::Controller&) override { ++frames; }
    std::atomic<int> frames{0};
};

Counter& counter()
{
    static Counter* const kept = new Counter;
    return *kept;
}

void makeControllerOfExitHandler()
{
    std::atexit([] {
        delete controller;
        controller = nullptr;
    });
    controller = new Leap::Controller;
    controller->addListener(counter());
}

[[noreturn]] void exitAfter(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    std::exit(0);
}

[[noreturn]] void exitWithoutAService(int milliseconds)
{
    Leap::setServiceAddress(SensorService::urlOfPort(1));
    makeControllerOfExitHandler();
    exitAfter(milliseconds);
}

[[noreturn]] void exitWithAHandInView()
{
    auto* service = new SensorService;
    service->shows({PlayedHand()});
    makeControllerOfExitHandler();
    if (!service->hasClient())
        std::_Exit(1);
    service->streams();
    if (!holdsWithin(20000, [] { return counter().frames > 10; }))
        std::_Exit(2);
    exitAfter(0);
}

[[noreturn]] void exitDuringAHandshake()
{
    auto* peer = new RawPeer([](RawPeer& self) { self.waitsForTheEnd(); });
    Leap::setServiceAddress(peer->url());
    makeControllerOfExitHandler();
    if (!holdsWithin(20000, [&] { return peer->connectionCount() > 0; }))
        std::_Exit(1);
    exitAfter(0);
}

}  // namespace

class LeapShutdownDeathTest : public ::testing::Test
{
protected:
    LeapShutdownDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_F(LeapShutdownDeathTest, ExitsCleanlyWithoutAService)
{
    for (const int milliseconds : {0, 1, 2, 3, 5, 10, 100, 700})
        EXPECT_EXIT(exitWithoutAService(milliseconds), testing::ExitedWithCode(0), "");
}

TEST_F(LeapShutdownDeathTest, ExitsCleanlyWithAHandInView)
{
    for (int round = 0; round < 5; ++round)
        EXPECT_EXIT(exitWithAHandInView(), testing::ExitedWithCode(0), "");
}

TEST_F(LeapShutdownDeathTest, ExitsCleanlyDuringAHandshake)
{
    EXPECT_EXIT(exitDuringAHandshake(), testing::ExitedWithCode(0), "");
}
