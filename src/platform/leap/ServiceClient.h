#pragma once

#include "platform/leap/Conversation.h"

#include <QObject>
#include <QTimer>

#include <memory>

class QWebSocket;

namespace Leap {

/// Keeps a connection to the tracking service, on the thread that makes it, which runs an event
/// loop.
///
/// Whatever goes wrong (nobody listens, no greeting, a broken or a silent connection) leads to the
/// next attempt within two seconds, without a word: a player without a sensor is the usual case.
class ServiceClient : public QObject
{
    Q_OBJECT

public:
    explicit ServiceClient(std::shared_ptr<Session> session);
    ~ServiceClient() override;

private:
    void connectToService();
    void receive(const QString& text);
    void sendSettings();
    void sendSwitch(const char* name, bool on);
    Q_INVOKABLE void sendGestures();
    void setFocus(bool focus);
    void listenForPulse();
    void checkPulse();
    void reconnect();
    void dropSocket();

    std::shared_ptr<Session> session;
    std::unique_ptr<Conversation> conversation;
    QWebSocket* socket = nullptr;  // a child
    QTimer retry;
    QTimer deadline;  // for the greeting, from the start of an attempt
    QTimer pulse;
    bool heard = false;
    bool pinged = false;
    bool focus = true;
    bool gesturesSent = false;
};

}  // namespace Leap
