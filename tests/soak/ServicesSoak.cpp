#include "HandGameTest.h"
#include "game/Rollix.h"
#include "hand/LeapManager.h"
#include "level/Level.h"
#include "platform/leap/RawPeer.h"
#include "platform/leap/ServiceAddress.h"
#include "soak/Soak.h"

#include <QCoreApplication>

#include <atomic>
#include <functional>
#include <iostream>
#include <vector>

namespace {

constexpr int shortForm = 18;          // services
constexpr int secondsPerService = 20;  // limit until the next one has been asked
constexpr double leeway = 8.0;         // MB

QByteArray greeting()
{
    return RawPeer::textFrame("{\"serviceVersion\":\"2.3.1+0\",\"version\":6}");
}

QByteArray aFrame()
{
    return RawPeer::textFrame(frameMessage(PlayedFrame()));
}

using Script = std::function<void(RawPeer&)>;

/// What can go wrong with a service, from the first byte to the last.
std::vector<Script> endings()
{
    const auto handshake = [](const char* bytes) {
        return [bytes](RawPeer& peer) {
            peer.sends(bytes);
        };
    };
    const auto greeted = [](const QByteArray& last) {
        return [last](RawPeer& peer) {
            if (peer.shakesHands() && peer.sends(greeting()) && peer.sends(aFrame()))
                peer.sends(last);
        };
    };
    const QByteArray frame = aFrame();
    return {
        [](RawPeer&) {},
        handshake("HTTP/1.1 101 Swit"),
        handshake("HTTP/1.1 404 Not Found\r\n\r\n"),
        handshake("SSH-2.0-something\r\n"),
        [](RawPeer& peer) { peer.shakesHands(); },
        [](RawPeer& peer) { peer.shakesHands() && peer.sends(greeting().left(1)); },
        [](RawPeer& peer) { peer.shakesHands() && peer.sends(greeting().left(10)); },
        [](RawPeer& peer) { peer.shakesHands() && peer.sends(RawPeer::textFrame("{}")); },
        [](RawPeer& peer) { peer.shakesHands() && peer.sends(RawPeer::textFrame("\xff\xfe")); },
        [](RawPeer& peer) { peer.shakesHands() && peer.sends(greeting()); },
        greeted(QByteArray()),
        greeted(frame.left(1)),
        greeted(frame.left(3)),
        greeted(frame.left(frame.size() / 2)),
        greeted(QByteArray(100, char(0xff))),
        greeted(QByteArray("\x82\x02xx", 4)),                                 // binary
        greeted(QByteArray("\x88\x02\x03\xe8", 4)),                           // a decent close
        greeted(QByteArray("\x81\x7f\x7f\xff\xff\xff\xff\xff\xff\xff", 10)),  // endless
    };
}

class ServicesSoak : public HandGameTest
{
};

TEST_F(ServicesSoak, MayBreakOffInEveryStateAndTheNextOneIsHeard)
{
    const int count = soakCount(shortForm);
    const std::vector<Script> scripts = endings();
    loads({"S"});
    service.stops();
    int served = 0;
    double early = 0.0;
    {
        Progress progress("services", count);
        std::atomic<int> next{0};
        RawPeer peer([&](RawPeer& self) { scripts[std::size_t(next++) % scripts.size()](self); });
        Leap::setServiceAddress(peer.url());
        for (; served < count; served = peer.connectionCount()) {
            const double begin = trueSeconds();
            const int before = peer.connectionCount();
            while (peer.connectionCount() == before) {
                plays(20);
                ASSERT_LT(trueSeconds() - begin, secondsPerService) << "after service " << before;
            }
            if (early == 0.0 && peer.connectionCount() > count / 10)
                early = residentMegabytes();
            progress.at(peer.connectionCount());
        }
    }
    const double late = residentMegabytes();
    EXPECT_LT(late - early, leeway);
    Leap::setServiceAddress(SensorService::urlOfPort(service.port()));
    service.shows({flatHand()});
    service.streams();
    ASSERT_TRUE(service.comesBack());
    EXPECT_TRUE(
        playsUntil([&] { return game.state == GameState::Playing; }, secondsPerService * 1000));
    std::cout << served << " services in " << scripts.size() << " ways, memory " << early
              << " MB after a tenth, " << late << " MB at the end; then a sound one was heard"
              << std::endl;
}

}  // namespace
