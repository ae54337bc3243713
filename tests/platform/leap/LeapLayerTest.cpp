#include "RawPeer.h"
#include "platform/leap/MessageParser.h"
#include "platform/leap/ServiceAddress.h"
#include "support/OutputCapture.h"
#include "support/SensorService.h"

#include <Leap.h>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

using Leap::Controller;
using Leap::Gesture;

namespace {

constexpr int generousLimit = 30000;  // ms

// What the game does, reduced to counting.
class Player : public Leap::Listener
{
public:
    void onConnect(const Controller& controller) override
    {
        controller.enableGesture(Gesture::TYPE_CIRCLE, true);
        controller.enableGesture(Gesture::TYPE_SCREEN_TAP, true);
        ++connects;
    }
    void onDisconnect(const Controller&) override { ++disconnects; }
    void onFrame(const Controller& controller) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        last = controller.frame(0);
        ++frames;
        for (int i = 0; i < last.gestures().count(); ++i) {
            const Gesture gesture = last.gestures()[i];
            if (gesture.type() == Gesture::TYPE_SCREEN_TAP)
                ++taps;
            else if (gesture.state() == Gesture::STATE_STOP)
                circles.push_back(Leap::CircleGesture(gesture));
        }
    }

    Leap::Frame lastFrame()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return last;
    }
    std::vector<Leap::CircleGesture> finishedCircles()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return circles;
    }

    std::atomic<int> connects{0};
    std::atomic<int> disconnects{0};
    std::atomic<int> frames{0};
    std::atomic<int> taps{0};

private:
    std::mutex mutex;
    Leap::Frame last;
    std::vector<Leap::CircleGesture> circles;
};

// A controller with a listener, for one test.
class Game
{
public:
    Game() { controller.addListener(player); }
    ~Game() { controller.removeListener(player); }

    bool eventually(const std::function<bool()>& condition)
    {
        return holdsWithin(generousLimit, condition);
    }

    Player player;
    Controller controller;
};

bool hasGesturesOn(SensorService& service)
{
    return holdsWithin(
        generousLimit,
        [&] { return service.received().contains(QStringLiteral("{\"enableGestures\":true}")); });
}

long residentKilobytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    file.open(QIODevice::ReadOnly);
    return file.readAll().split(' ').at(1).toLong() * 4;
}

const QByteArray hello = RawPeer::textFrame("{\"version\":6}");

QByteArray emptyFrame(int id)
{
    return "{\"id\":" + QByteArray::number(id) + ",\"timestamp\":" + QByteArray::number(id * 9000) +
           ",\"hands\":[]}";
}

// Whatever the first client gets, the decent service that follows at once is found.
void expectRecovery(const std::function<void(RawPeer&)>& script)
{
    RawPeer peer([&](RawPeer& self) {
        if (self.connectionCount() == 1) {
            script(self);
        } else if (self.shakesHands() && self.sends(hello)) {
            self.sends(RawPeer::textFrame(emptyFrame(77)));
            self.waitsForTheEnd();
        }
    });
    Leap::setServiceAddress(peer.url());
    Game game;
    EXPECT_TRUE(game.eventually([&] { return game.player.lastFrame().id() == 77; }));
}

}  // namespace

TEST(LeapLayer, ShowsTheHandsThatTheServiceSees)
{
    SensorService service;
    Game game;
    ASSERT_TRUE(service.hasClient());
    PlayedHand left;
    left.id = 8;
    left.isLeft = true;
    left.palm = {-90, 230, 5};
    left.pitch = 0.3f;
    service.shows({left, PlayedHand()});
    service.sendsFrames();
    ASSERT_TRUE(game.eventually([&] { return game.player.frames == 1; }));
    const Leap::HandList hands = game.player.lastFrame().hands();
    ASSERT_EQ(hands.count(), 2);
    EXPECT_EQ(hands[0].id(), 8);
    EXPECT_NEAR(hands[0].palmPosition().y, 230.0, 1e-3);
    EXPECT_NEAR(hands[0].direction().y, std::sin(0.3), 1e-4);
    EXPECT_NEAR(hands[1].palmNormal().y, -1.0, 1e-5);
    EXPECT_EQ(game.controller.frame(0).hands().count(), 2);
    EXPECT_FALSE(game.controller.frame(1).isValid());
}

TEST(LeapLayer, GreetsInTheFormsThatTheMostLiteralServiceUnderstands)
{
    SensorService service;
    {
        Controller nobodyWantsGestures;
        ASSERT_TRUE(service.hasClient());
        EXPECT_EQ(service.received(),
                  (QStringList{"{\"enableGestures\":false}", "{\"background\":false}",
                               "{\"optimizeHMD\":false}", "{\"focused\":true}"}));
        nobodyWantsGestures.enableGesture(Gesture::TYPE_CIRCLE);
        ASSERT_TRUE(holdsWithin(generousLimit, [&] { return service.received().size() == 5; }));
        EXPECT_EQ(service.received().last(), "{\"enableGestures\":true}");
        nobodyWantsGestures.enableGesture(Gesture::TYPE_SCREEN_TAP);
        service.dropsClients();
        ASSERT_TRUE(holdsWithin(generousLimit, [&] { return service.received().size() == 9; }));
        EXPECT_EQ(service.received().mid(5),
                  (QStringList{"{\"enableGestures\":true}", "{\"background\":false}",
                               "{\"optimizeHMD\":false}", "{\"focused\":true}"}));
    }
}

TEST(LeapLayer, GivesTheFocusBackWithTheWindows)
{
    SensorService service;
    Game game;
    ASSERT_TRUE(service.hasClient());
    ASSERT_TRUE(
        hasGesturesOn(service));  // which is the last thing that the game asks for by itself
    emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
    ASSERT_TRUE(game.eventually(
        [&] { return service.received().last() == QLatin1String("{\"focused\":false}"); }));
    service.sendsFrames();
    emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    ASSERT_TRUE(service.hasClient());
    EXPECT_EQ(game.player.frames, 0);
    service.sendsFrames();
    EXPECT_TRUE(game.eventually([&] { return game.player.frames == 1; }));
}

TEST(LeapLayer, TakesGesturesFromAServiceThatTellsThem)
{
    SensorService service;
    Game game;
    ASSERT_TRUE(service.hasClient());
    ASSERT_TRUE(hasGesturesOn(service));
    service.shows({PlayedHand()});
    service.taps();
    service.playsToTheEnd();
    ASSERT_TRUE(game.eventually([&] { return game.player.taps == 1; }));
    service.circles(1.5, true);
    service.circles(2.0, false);
    service.playsToTheEnd();
    ASSERT_TRUE(game.eventually([&] { return game.player.finishedCircles().size() == 2; }));
    const auto circles = game.player.finishedCircles();
    EXPECT_NEAR(circles[0].progress(), 1.5, 1e-4);
    EXPECT_LT(circles[0].pointable().direction().angleTo(circles[0].normal()), 1.5707964f);
    EXPECT_NEAR(circles[1].progress(), 2.0, 1e-4);
    EXPECT_GT(circles[1].pointable().direction().angleTo(circles[1].normal()), 1.5707964f);
    EXPECT_EQ(game.player.taps, 1) << "each movement is reported by one of the two only";
}

TEST(LeapLayer, RecognisesGesturesItselfForAServiceThatDoesNot)
{
    SensorServer::Behaviour newer;
    newer.recognizesGestures = false;
    SensorService service(newer);
    Game game;
    ASSERT_TRUE(service.hasClient());
    ASSERT_TRUE(hasGesturesOn(service));
    service.shows({PlayedHand()});
    service.taps();
    service.playsToTheEnd();
    ASSERT_TRUE(game.eventually([&] { return game.player.taps == 1; }));
    service.circles(1.5, true);
    service.circles(2.0, false);
    service.playsToTheEnd();
    service.sendsFrames(30);
    ASSERT_TRUE(game.eventually([&] { return game.player.finishedCircles().size() == 2; }));
    const auto circles = game.player.finishedCircles();
    EXPECT_NEAR(circles[0].progress(), 1.5, 0.2);
    EXPECT_LT(circles[0].pointable().direction().angleTo(circles[0].normal()), 1.5707964f);
    EXPECT_NEAR(circles[1].progress(), 2.0, 0.2);
    EXPECT_GT(circles[1].pointable().direction().angleTo(circles[1].normal()), 1.5707964f);
    EXPECT_EQ(game.player.taps, 1);
}

TEST(LeapLayer, KnowsTheFingerOfACircleThatEndsAsTheFingerIsLost)
{
    SensorService service;
    Game game;
    ASSERT_TRUE(service.hasClient());
    ASSERT_TRUE(hasGesturesOn(service));
    PlayedFrame frame;
    frame.id = 1;
    frame.hands = {PlayedHand()};
    PlayedGesture circle;
    circle.type = PlayedGesture::Type::Circle;
    circle.state = "update";
    circle.normal = {0, 0, 1};
    frame.gestures = {circle};
    service.sendsText(frameMessage(frame));
    frame.id = 2;
    frame.hands.clear();
    frame.gestures[0].state = "stop";
    service.sendsText(frameMessage(frame));
    ASSERT_TRUE(game.eventually([&] { return game.player.finishedCircles().size() == 1; }));
    const Leap::CircleGesture end = game.player.finishedCircles()[0];
    EXPECT_TRUE(end.pointable().isValid());
    EXPECT_GT(end.pointable().direction().angleTo(end.normal()), 1.5707964f);
}

TEST(LeapLayer, FindsAServiceThatComesLaterAndOneThatComesBack)
{
    SensorService service;
    service.stops();
    Game game;
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    EXPECT_EQ(game.player.connects, 0);
    ASSERT_TRUE(service.comesBack());
    int connects = 1;
    ASSERT_TRUE(game.eventually([&] { return game.player.connects == connects; }));
    for (const int closeCode : {1000, 1001, 1011}) {
        const qint64 before = service.connectionCount();
        QElapsedTimer time;
        time.start();
        service.dropsClients(closeCode);
        ASSERT_TRUE(game.eventually([&] { return service.connectionCount() > before; }));
        EXPECT_LT(time.elapsed(), 2000);
        ++connects;
        ASSERT_TRUE(game.eventually([&] { return game.player.connects == connects; }));
    }
    EXPECT_EQ(game.player.disconnects, 3);
    ASSERT_TRUE(service.hasClient());
    service.sendsFrames();
    EXPECT_TRUE(game.eventually([&] { return game.player.frames == 1; }));
}

TEST(LeapLayer, GoesOnWhenTheThreadThatMadeItHasEnded)
{
    SensorService service;
    std::unique_ptr<Game> game;
    std::thread([&] { game = std::make_unique<Game>(); }).join();
    ASSERT_TRUE(service.hasClient());
    service.sendsFrames();
    EXPECT_TRUE(game->eventually([&] { return game->player.frames == 1; }));
}

TEST(LeapLayer, GoesOnAfterEveryKindOfBrokenService)
{
    const std::vector<std::pair<const char*, std::function<void(RawPeer&)>>> services{
        {"closes at once",
         [](RawPeer&) {
         }},
        {"accepts and says nothing",
         [](RawPeer& peer) {
             peer.waitsForTheEnd();
         }},
        {"is no WebSocket",
         [](RawPeer& peer) {
             peer.sends("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nhi");
             peer.waitsForTheEnd();
         }},
        {"never ends its opening",
         [](RawPeer& peer) {
             peer.sends("HTTP/1.1 101 Switching Protocols\r\n");
             while (peer.sends("X-Filler: " + QByteArray(1000, 'x') + "\r\n")) {
             }
         }},
        {"talks rubbish",
         [](RawPeer& peer) {
             while (peer.sends(QByteArray(5000, '\x83'))) {
             }
         }},
        {"never greets",
         [](RawPeer& peer) {
             peer.shakesHands(), peer.waitsForTheEnd();
         }},
        {"greets with a frame",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(RawPeer::textFrame(emptyFrame(1)));
             peer.waitsForTheEnd();
         }},
        {"is too old",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(RawPeer::textFrame("{\"version\":5}"));
             peer.waitsForTheEnd();
         }},
        {"is too new",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(RawPeer::textFrame("{\"version\":7}"));
             peer.waitsForTheEnd();
         }},
        {"greets in text",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(RawPeer::textFrame("{\"version\":\"6\"}"));
             peer.waitsForTheEnd();
         }},
        {"goes silent after the greeting",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(hello);
             peer.waitsForTheEnd();
         }},
        {"sends a hundred bad messages",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(hello);
             for (int i = 0; i < 100; ++i)
                 peer.sends(RawPeer::textFrame("{\"id\":nan}"));
             peer.waitsForTheEnd();
         }},
        {"announces an endless frame",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(hello + QByteArray::fromHex("817f7fffffffffffffff"));
             while (peer.sends(QByteArray(65536, 'x'))) {
             }
         }},
        {"sends ten megabytes in pieces",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(hello + QByteArray::fromHex("017e8000") + QByteArray(0x8000, '['));
             for (int i = 0; i < 320; ++i)
                 peer.sends(QByteArray::fromHex("007e8000") + QByteArray(0x8000, '['));
             peer.waitsForTheEnd();
         }},
        {"sends what is no text",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(hello + QByteArray::fromHex("8204") + "\x01\x02\x03\x04");
             peer.waitsForTheEnd();
         }},
        {"sends broken text",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(hello + QByteArray::fromHex("8102c328"));
             peer.waitsForTheEnd();
         }},
        {"breaks off in a frame",
         [](RawPeer& peer) {
             peer.shakesHands();
             peer.sends(hello + RawPeer::textFrame(emptyFrame(1)).left(9));
         }},
    };
    OutputCapture output;
    for (const auto& [name, script] : services) {
        SCOPED_TRACE(name);
        expectRecovery(script);
    }
    EXPECT_EQ(output.text(), "");
}

TEST(LeapLayer, WaitsForASlowHandshake)
{
    RawPeer peer([](RawPeer& self) {
        self.waits(800);
        if (self.shakesHands() && self.sends(hello)) {
            self.sends(RawPeer::textFrame(emptyFrame(1)));
            self.waitsForTheEnd();
        }
    });
    Leap::setServiceAddress(peer.url());
    Game game;
    EXPECT_TRUE(game.eventually([&] { return game.player.frames == 1; }));
    EXPECT_EQ(peer.connectionCount(), 1);
}

TEST(LeapLayer, PutsTogetherWhatArrivesInPieces)
{
    RawPeer peer([](RawPeer& self) {
        if (!self.shakesHands())
            return;
        // Two messages at once, then one byte by byte, then one in two parts around a ping.
        self.sends(hello + RawPeer::textFrame(emptyFrame(1)));
        for (const char byte : RawPeer::textFrame(emptyFrame(2))) {
            self.sends(QByteArray(1, byte));
            self.waits(1);
        }
        const QByteArray text = emptyFrame(3);
        self.sends(QByteArray::fromHex("0105") + text.left(5) + QByteArray::fromHex("890161") +
                   QByteArray::fromHex("80") + char(text.size() - 5) + text.mid(5));
        self.waitsForTheEnd();
    });
    Leap::setServiceAddress(peer.url());
    Game game;
    EXPECT_TRUE(game.eventually([&] { return game.player.lastFrame().id() == 3; }));
    EXPECT_EQ(peer.connectionCount(), 1);
}

TEST(LeapLayer, StaysWithAServiceThatIsOnlyQuiet)
{
    SensorService service;
    Game game;
    ASSERT_TRUE(service.hasClient());
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    EXPECT_EQ(service.connectionCount(), 1);
    service.sendsFrames();
    EXPECT_TRUE(game.eventually([&] { return game.player.frames == 1; }));
}

TEST(LeapLayer, ReadsAMessageOfAlmostAMegabyteAndDropsWhatIsMalformed)
{
    SensorService service;
    Game game;
    ASSERT_TRUE(service.hasClient());
    const QByteArray large = emptyFrame(5);
    service.sendsText("{\"id\":nan}");
    service.sendsText("{\"id\":4,\"timestamp\":1,\"hands\":" + QByteArray(5000, '[') + "}");
    service.sendsText(large + QByteArray(int(Leap::longestMessage) - large.size(), ' '));
    ASSERT_TRUE(game.eventually([&] { return game.player.frames == 1; }));
    EXPECT_EQ(game.player.lastFrame().id(), 5);
    EXPECT_EQ(service.connectionCount(), 1);
}

TEST(LeapLayer, DeliversAFrameOnceAndGoesOnWhenTheServicesClockStartsAnew)
{
    SensorService service;
    Game game;
    ASSERT_TRUE(service.hasClient());
    service.sendsText("{\"id\":1,\"timestamp\":90000000,\"hands\":[]}");
    service.sendsText("{\"id\":1,\"timestamp\":90000000,\"hands\":[]}");
    ASSERT_TRUE(game.eventually([&] { return game.player.frames == 1; }));
    service.sendsText("{\"id\":2,\"timestamp\":10,\"hands\":[]}");
    ASSERT_TRUE(game.eventually([&] { return game.player.lastFrame().id() == 2; }));
    EXPECT_EQ(game.player.frames, 2);
}

TEST(LeapLayer, KeepsItsMemoryFlatUnderAFloodWhileTheListenerSleeps)
{
    class Sleeper : public Leap::Listener
    {
    public:
        void onFrame(const Controller&) override
        {
            inCall = true;
            while (asleep)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::atomic<bool> inCall{false};
        std::atomic<bool> asleep{true};
    } sleeper;

    PlayedFrame frame;
    frame.hands = {PlayedHand(), PlayedHand()};
    std::atomic<int> sent{0};
    RawPeer peer([&](RawPeer& self) {
        self.shakesHands();
        self.sends(hello);
        bool connected = true;
        while (connected) {
            frame.id = ++sent;
            frame.timestamp = frame.id * 9000;
            connected = self.sends(RawPeer::textFrame(frameMessage(frame)));
        }
    });
    Leap::setServiceAddress(peer.url());
    Controller controller;
    controller.addListener(sleeper);
    ASSERT_TRUE(holdsWithin(generousLimit, [&] { return sleeper.inCall && sent > 500; }));
    const long before = residentKilobytes();
    const int sentBefore = sent;
    ASSERT_TRUE(holdsWithin(generousLimit, [&] { return sent > sentBefore + 3000; }));
    // Three thousand frames of two hands are some 40 MB of text.
    EXPECT_LT(residentKilobytes() - before, 8000);
    EXPECT_EQ(peer.connectionCount(), 1);
    sleeper.asleep = false;
    controller.removeListener(sleeper);
}

TEST(LeapLayer, SaysNothingWithoutAService)
{
    Leap::setServiceAddress(SensorService::urlOfPort(1));
    testing::internal::CaptureStderr();
    OutputCapture output;
    {
        Game game;
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        EXPECT_EQ(game.player.connects, 0);
        EXPECT_EQ(game.player.frames, 0);
    }
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(LeapLayer, EndsAtOnceInWhateverStateItIs)
{
    const auto timeToEnd = [](int livesFor) {
        auto controller = std::make_unique<Controller>();
        std::this_thread::sleep_for(std::chrono::milliseconds(livesFor));
        QElapsedTimer time;
        time.start();
        controller.reset();
        return time.elapsed();
    };
    RawPeer peer([](RawPeer& self) { self.waitsForTheEnd(); });
    Leap::setServiceAddress(peer.url());
    for (const int livesFor : {0, 1, 20})
        EXPECT_LT(timeToEnd(livesFor), 1000);
    SensorService service;
    service.shows({PlayedHand()});
    service.streams();
    for (const int livesFor : {0, 1, 5, 20, 100})
        EXPECT_LT(timeToEnd(livesFor), 1000);
}

TEST(LeapLayer, SurvivesTheEndOfItsControllerInsideACall)
{
    SensorService service;
    service.shows({PlayedHand()});
    service.streams();
    auto controller = std::make_unique<Controller>();
    class Ender : public Leap::Listener
    {
    public:
        explicit Ender(std::unique_ptr<Controller>& victim_) : victim(victim_) {}
        void onFrame(const Controller& controller) override
        {
            if (victim) {
                victim->removeListener(*this);
                victim.reset();
                stillThere = controller.frame(0).isValid();
                done = true;
            }
        }
        std::unique_ptr<Controller>& victim;
        std::atomic<bool> stillThere{false};
        std::atomic<bool> done{false};
    } ender(controller);
    controller->addListener(ender);
    ASSERT_TRUE(holdsWithin(generousLimit, [&] { return ender.done.load(); }));
    EXPECT_TRUE(ender.stillThere);
}
