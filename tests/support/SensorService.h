#pragma once

#include "SensorServer.h"

#include <QThread>

#include <functional>
#include <memory>
#include <vector>

/// A tracking service on a port of this machine, a free one unless told otherwise, on a thread of
/// its own, so that a test may block. While it lives, every controller of the process finds it;
/// afterwards they find none.
class SensorService
{
public:
    static constexpr quint16 anyPort = 0;

    SensorService() : SensorService(SensorServer::Behaviour()) {}
    explicit SensorService(const SensorServer::Behaviour& behaviour, quint16 port = anyPort);
    ~SensorService();
    SensorService(const SensorService&) = delete;
    SensorService& operator=(const SensorService&) = delete;

    /// Waits until a client has the focus; false if none takes it within a generous limit.
    bool hasClient();

    /// What the following frames show.
    void shows(const std::vector<PlayedHand>& hands);
    /// Sends so many frames at once.
    void sendsFrames(int count = 1);
    void streams(bool on = true);
    /// The movements of HandPlayer; they take place in the frames sent from now on.
    void taps();
    void circles(double turns, bool clockwise = true);
    /// Sends frames until the movements are over.
    void playsToTheEnd();

    void sendsText(const QByteArray& text);
    void dropsClients(int closeCode = 1000);
    /// Goes away, as a service that is stopped does, and comes back at the same port.
    void stops();
    bool comesBack();

    QStringList received();
    int clientCount();
    qint64 connectionCount();
    quint16 port() const { return servedPort; }
    static std::string urlOfPort(quint16 port);

private:
    void onServer(const std::function<void(SensorServer&)>& work);

    QThread thread;
    std::unique_ptr<SensorServer> server;
    quint16 servedPort = 0;
};

/// Waits without an event loop; false if the condition does not hold within the limit.
bool holdsWithin(int milliseconds, const std::function<bool()>& condition);
