#pragma once

#include "HandPlayer.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <vector>

class QTcpServer;
class QWebSocket;
class QWebSocketServer;

/// Plays the tracking service on 127.0.0.1: greets, obeys the clients' settings, and sends what the
/// player's hands do to those that have the focus. On the thread that made it.
class SensorServer : public QObject
{
    Q_OBJECT

public:
    struct Behaviour
    {
        int framesPerSecond = 100;
        /// Tells its gestures to clients that ask for them, as older services do. Newer ones do
        /// not, and their clients have only the moving finger to go by.
        bool recognizesGestures = true;
        /// Of the player's finger.
        double pace = 1.0;
        bool greets = true;
        /// Off, every client gets the frames, whatever window is active.
        bool mindsFocus = true;
        QByteArray hello;  // sent instead of the right one, unless empty
    };

    explicit SensorServer(const Behaviour& behaviour, QObject* parent = nullptr);
    ~SensorServer() override;

    /// Port 0 takes any that is free. False when the port is taken; errorString tells why.
    bool listen(quint16 port);
    void close();
    quint16 port() const;
    QString errorString() const;

    HandPlayer& player() { return handPlayer; }
    /// Makes the next frame and sends it.
    void sendFrame();
    /// Sends frames on a timer of its own.
    void stream(bool on);

    /// To every client, whether it has the focus or not.
    void sendText(const QByteArray& text);
    void dropClients(int closeCode);

    int clientCount() const { return int(clients.size()); }
    int focusedCount() const;
    qint64 connectionCount() const { return connections; }
    /// All that clients said, in order.
    QStringList received() const { return messages; }

signals:
    void clientsChanged();
    /// The last moment to say what the hands do in the next frame.
    void frameDue();
    void frameSent();

private:
    struct Client
    {
        QWebSocket* socket = nullptr;
        bool gestures = false;
        bool focused = false;
        bool background = false;
    };

    void open();
    void accept();
    void obey(QWebSocket* socket, const QString& message);
    void forget(QWebSocket* socket);
    void takeFocus(QWebSocket* socket);

    Behaviour behaviour;
    HandPlayer handPlayer;
    // Children, which move to another thread along with their parent.
    QTcpServer* door;
    QWebSocketServer* server;
    QTimer timer;
    std::vector<Client> clients;
    qint64 connections = 0;
    QStringList messages;
};
