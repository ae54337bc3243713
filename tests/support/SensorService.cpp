#include "support/SensorService.h"

#include "platform/leap/ServiceAddress.h"

#include <QElapsedTimer>

#include <condition_variable>
#include <mutex>

namespace {

constexpr int generousLimit = 20000;  // ms
constexpr int pollInterval = 2;       // ms
constexpr quint16 deadPort = 1;

}  // namespace

SensorService::SensorService(const SensorServer::Behaviour& behaviour, quint16 port)
{
    server = std::make_unique<SensorServer>(behaviour);
    server->moveToThread(&thread);
    thread.start();
    onServer([this, port](SensorServer& service) {
        if (!service.listen(port))
            qFatal("no port for the sensor service");
        servedPort = service.port();
    });
    Leap::setServiceAddress(urlOfPort(servedPort));
}

SensorService::~SensorService()
{
    Leap::setServiceAddress(urlOfPort(deadPort));
    // Sockets belong to the thread that serves them, and so does their end.
    onServer([this](SensorServer&) { server.reset(); });
    thread.quit();
    thread.wait();
}

bool SensorService::hasClient()
{
    return holdsWithin(
        generousLimit,
        [this] {
            int focused = 0;
            onServer([&](SensorServer& service) { focused = service.focusedCount(); });
            return focused > 0;
        });
}

void SensorService::shows(const std::vector<PlayedHand>& hands)
{
    onServer([&](SensorServer& service) { service.player().hands = hands; });
}

void SensorService::sendsFrames(int count)
{
    onServer([&](SensorServer& service) {
        for (int i = 0; i < count; ++i)
            service.sendFrame();
    });
}

void SensorService::streams(bool on)
{
    onServer([&](SensorServer& service) { service.stream(on); });
}

void SensorService::taps()
{
    onServer([](SensorServer& service) { service.player().tap(); });
}

void SensorService::circles(double turns, bool clockwise)
{
    onServer([&](SensorServer& service) { service.player().circle(turns, clockwise); });
}

void SensorService::playsToTheEnd()
{
    // A frame at a time: in between the service answers, else it would be taken for a hanging one.
    bool moves = true;
    while (moves)
        onServer([&](SensorServer& service) {
            if (service.player().isMoving())
                service.sendFrame();
            moves = service.player().isMoving();
        });
}

void SensorService::sendsText(const QByteArray& text)
{
    onServer([&](SensorServer& service) { service.sendText(text); });
}

void SensorService::dropsClients(int closeCode)
{
    onServer([&](SensorServer& service) { service.dropClients(closeCode); });
}

void SensorService::stops()
{
    onServer([](SensorServer& service) { service.close(); });
}

bool SensorService::comesBack()
{
    bool listens = false;
    onServer([&](SensorServer& service) { listens = service.listen(servedPort); });
    return listens;
}

QStringList SensorService::received()
{
    QStringList messages;
    onServer([&](SensorServer& service) { messages = service.received(); });
    return messages;
}

int SensorService::clientCount()
{
    int count = 0;
    onServer([&](SensorServer& service) { count = service.clientCount(); });
    return count;
}

qint64 SensorService::connectionCount()
{
    qint64 count = 0;
    onServer([&](SensorServer& service) { count = service.connectionCount(); });
    return count;
}

std::string SensorService::urlOfPort(quint16 port)
{
    return "ws://127.0.0.1:" + std::to_string(port) + "/v6.json";
}

// The handing over is locked and awaited by means that the thread sanitizer sees: it does not see
// into the event queue, and would call every use of the server a race.
void SensorService::onServer(const std::function<void(SensorServer&)>& work)
{
    std::mutex handover;
    std::unique_lock<std::mutex> lock(handover);
    std::condition_variable finished;
    bool done = false;
    SensorServer* const service = server.get();
    QMetaObject::invokeMethod(
        service,
        [&] {
            const std::lock_guard<std::mutex> lockHere(handover);
            work(*service);
            done = true;
            finished.notify_all();
        },
        Qt::QueuedConnection);
    finished.wait(lock, [&] { return done; });
}

bool holdsWithin(int milliseconds, const std::function<bool()>& condition)
{
    QElapsedTimer time;
    time.start();
    while (!condition()) {
        if (time.elapsed() > milliseconds)
            return false;
        QThread::msleep(pollInterval);
    }
    return true;
}
