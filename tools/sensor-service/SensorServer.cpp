#include "SensorServer.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QWebSocket>
#include <QWebSocketServer>

#include <algorithm>

namespace {

const QString servedPath = QStringLiteral("/v6.json");
// What nobody will ever read is not worth keeping.
constexpr int mostMessages = 1000;

}  // namespace

SensorServer::SensorServer(const Behaviour& behaviour_, QObject* parent)
    : QObject(parent),
      behaviour(behaviour_),
      handPlayer(behaviour_.framesPerSecond, behaviour_.pace),
      door(new QTcpServer(this)),
      server(new QWebSocketServer(QStringLiteral("sensor"), QWebSocketServer::NonSecureMode, this)),
      timer(this)
{
    timer.setTimerType(Qt::PreciseTimer);
    timer.setInterval(1000 / behaviour.framesPerSecond);
    connect(&timer, &QTimer::timeout, this, &SensorServer::sendFrame);
    connect(door, &QTcpServer::newConnection, this, &SensorServer::open);
    connect(server, &QWebSocketServer::newConnection, this, &SensorServer::accept);
}

SensorServer::~SensorServer()
{
    close();
}

bool SensorServer::listen(quint16 port)
{
    return door->listen(QHostAddress::LocalHost, port);
}

void SensorServer::close()
{
    door->close();
    server->close();
    const std::vector<Client> all = clients;
    for (const Client& client : all)
        forget(client.socket);
}

quint16 SensorServer::port() const
{
    return door->serverPort();
}

QString SensorServer::errorString() const
{
    return door->errorString();
}

void SensorServer::sendFrame()
{
    emit frameDue();
    PlayedFrame frame = handPlayer.nextFrame();
    const bool someoneElseHasFocus = focusedCount() > 0;
    QString texts[2];  // without gestures and with them, once a client is to have one
    // Of a copy: to send may end a connection, and with it its place in the list.
    const std::vector<Client> all = clients;
    for (const Client& client : all) {
        if (!behaviour.mindsFocus || client.focused ||
            (client.background && !someoneElseHasFocus)) {
            frame.tellsGestures = client.gestures && behaviour.recognizesGestures;
            QString& text = texts[frame.tellsGestures ? 1 : 0];
            if (text.isEmpty())
                text = QString::fromUtf8(frameMessage(frame));
            client.socket->sendTextMessage(text);
        }
    }
    emit frameSent();
}

void SensorServer::stream(bool on)
{
    if (on)
        timer.start();
    else
        timer.stop();
}

void SensorServer::sendText(const QByteArray& text)
{
    const std::vector<Client> all = clients;
    for (const Client& client : all)
        client.socket->sendTextMessage(QString::fromUtf8(text));
}

void SensorServer::dropClients(int closeCode)
{
    const std::vector<Client> all = clients;
    for (const Client& client : all) {
        client.socket->close(static_cast<QWebSocketProtocol::CloseCode>(closeCode));
        forget(client.socket);
    }
}

int SensorServer::focusedCount() const
{
    return int(std::count_if(
        clients.begin(), clients.end(), [](const Client& client) { return client.focused; }));
}

// A frame must not wait until the client has answered to the one before, which takes it up to 40
// ms.
void SensorServer::open()
{
    while (QTcpSocket* socket = door->nextPendingConnection()) {
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        server->handleConnection(socket);
    }
}

void SensorServer::accept()
{
    while (QWebSocket* socket = server->nextPendingConnection()) {
        socket->setParent(this);
        if (socket->requestUrl().path() != servedPath) {
            socket->close(QWebSocketProtocol::CloseCodeGoingAway);
            socket->deleteLater();
            continue;
        }
        ++connections;
        Client client;
        client.socket = socket;
        clients.push_back(client);
        connect(
            socket, &QWebSocket::textMessageReceived, this,
            [this, socket](const QString& message) { obey(socket, message); });
        connect(socket, &QWebSocket::disconnected, this, [this, socket] { forget(socket); });
        if (behaviour.greets) {
            const QByteArray hello = behaviour.hello.isEmpty()
                                         ? helloMessage(behaviour.recognizesGestures)
                                         : behaviour.hello;
            socket->sendTextMessage(QString::fromUtf8(hello));
            socket->sendTextMessage(QString::fromUtf8(deviceMessage(true)));
        }
        emit clientsChanged();
    }
}

// By its bytes, as the most literal of the real services does: whoever is understood here is
// understood by all.
void SensorServer::obey(QWebSocket* socket, const QString& message)
{
    messages.append(message);
    if (messages.size() > mostMessages)
        messages.removeFirst();
    const auto client = std::find_if(clients.begin(), clients.end(),
                                     [&](const Client& one) { return one.socket == socket; });
    if (client == clients.end())
        return;
    if (message == QLatin1String("{\"enableGestures\":true}"))
        client->gestures = true;
    else if (message == QLatin1String("{\"enableGestures\":false}"))
        client->gestures = false;
    else if (message == QLatin1String("{\"background\":true}"))
        client->background = true;
    else if (message == QLatin1String("{\"background\":false}"))
        client->background = false;
    else if (message == QLatin1String("{\"focused\":true}"))
        takeFocus(socket);
    else if (message == QLatin1String("{\"focused\":false}"))
        client->focused = false;
    emit clientsChanged();
}

void SensorServer::forget(QWebSocket* socket)
{
    clients.erase(std::remove_if(clients.begin(), clients.end(),
                                 [&](const Client& client) { return client.socket == socket; }),
                  clients.end());
    socket->disconnect(this);
    socket->deleteLater();
    emit clientsChanged();
}

void SensorServer::takeFocus(QWebSocket* socket)
{
    for (Client& client : clients)
        client.focused = client.socket == socket;
}
