#include "platform/leap/ServiceClient.h"

#include "platform/leap/MessageParser.h"
#include "platform/leap/ServiceAddress.h"
#include "platform/leap/Session.h"

#include <QAbstractSocket>
#include <QGuiApplication>
#include <QNetworkProxy>
#include <QUrl>
#include <QWebSocket>

#include <utility>

namespace Leap {

namespace {

// Together under two seconds: a service that has come up is found by then even if it came up in the
// middle of an attempt. A slow handshake of most of a second still gets through.
constexpr int retryInterval = 500;  // ms
constexpr int greetingTime = 1400;  // ms

// A service that hangs is noticed by its silence, which alone means nothing: without a hand in view
// it may send no frames. So it is asked once, and has as long again to answer. Up to three
// intervals pass until another one is tried, which is still under two seconds.
constexpr int pulseInterval = 650;  // ms

// More than one whole message, as the library reads the payload of a frame in one piece.
constexpr qint64 readBuffer = 2 * longestMessage;

}  // namespace

ServiceClient::ServiceClient(std::shared_ptr<Session> session_) : session(std::move(session_))
{
    retry.setSingleShot(true);
    retry.setInterval(retryInterval);
    deadline.setSingleShot(true);
    deadline.setInterval(greetingTime);
    pulse.setInterval(pulseInterval);
    connect(&retry, &QTimer::timeout, this, &ServiceClient::connectToService);
    connect(&deadline, &QTimer::timeout, this, &ServiceClient::reconnect);
    connect(&pulse, &QTimer::timeout, this, &ServiceClient::checkPulse);

    session->whenGesturesChange(
        [this] { QMetaObject::invokeMethod(this, "sendGestures", Qt::QueuedConnection); });
    // The service sends to one program at a time and does not tell who lost; so the focus is given
    // back with the window's, and taken again. Until a window was active nothing is given back:
    // without a window manager none may ever be.
    if (auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        // The signal comes from another thread, and the library has not told itself of this type.
        qRegisterMetaType<Qt::ApplicationState>();
        connect(application, &QGuiApplication::applicationStateChanged, this,
                [this](Qt::ApplicationState state) { setFocus(state == Qt::ApplicationActive); });
    }
    connectToService();
}

ServiceClient::~ServiceClient()
{
    session->whenGesturesChange(nullptr);
    dropSocket();
}

void ServiceClient::connectToService()
{
    conversation = std::make_unique<Conversation>(*session);
    socket = new QWebSocket(QString(), QWebSocketProtocol::VersionLatest, this);
    socket->setProxy(QNetworkProxy::NoProxy);
    socket->setMaxAllowedIncomingFrameSize(longestMessage);
    socket->setMaxAllowedIncomingMessageSize(longestMessage);
    socket->setReadBufferSize(readBuffer);
    connect(socket, &QWebSocket::textMessageReceived, this, &ServiceClient::receive);
    connect(socket, &QWebSocket::binaryMessageReceived, this, &ServiceClient::reconnect);
    connect(socket, &QWebSocket::pong, this, [this] { heard = true; });
    connect(socket, &QWebSocket::disconnected, this, &ServiceClient::reconnect);
    connect(socket, QOverload<QAbstractSocket::SocketError>::of(&QWebSocket::error), this,
            &ServiceClient::reconnect);
    deadline.start();
    socket->open(QUrl(QString::fromStdString(serviceAddress())));
}

void ServiceClient::receive(const QString& text)
{
    heard = true;
    const QByteArray bytes = text.toUtf8();
    switch (conversation->receive({bytes.constData(), std::size_t(bytes.size())})) {
    case Conversation::Verdict::GoOn:
        break;
    case Conversation::Verdict::Greeted:
        deadline.stop();
        sendSettings();
        listenForPulse();
        break;
    case Conversation::Verdict::Hopeless:
        reconnect();
        break;
    }
}

void ServiceClient::sendSettings()
{
    gesturesSent = session->wantsGestures();
    sendSwitch("enableGestures", gesturesSent);
    sendSwitch("background", false);
    sendSwitch("optimizeHMD", false);
    sendSwitch("focused", focus);
    session->setFocused(focus);
}

// One name a message and not a blank in it: there are services that compare the bytes.
void ServiceClient::sendSwitch(const char* name, bool on)
{
    socket->sendTextMessage(QStringLiteral("{\"%1\":%2}")
                                .arg(QLatin1String(name), QLatin1String(on ? "true" : "false")));
}

void ServiceClient::sendGestures()
{
    const bool wanted = session->wantsGestures();
    if (socket && conversation->isGreeted() && wanted != gesturesSent) {
        gesturesSent = wanted;
        sendSwitch("enableGestures", wanted);
    }
}

void ServiceClient::setFocus(bool focus_)
{
    focus = focus_;
    if (socket && conversation->isGreeted()) {
        sendSwitch("focused", focus);
        session->setFocused(focus);
        listenForPulse();
    }
}

// Without the focus silence is certain.
void ServiceClient::listenForPulse()
{
    heard = true;
    if (focus)
        pulse.start();
    else
        pulse.stop();
}

void ServiceClient::checkPulse()
{
    if (heard) {
        heard = false;
        pinged = false;
    } else if (pinged) {
        dropSocket();
        connectToService();
    } else {
        pinged = true;
        socket->ping();
    }
}

void ServiceClient::reconnect()
{
    dropSocket();
    retry.start();
}

void ServiceClient::dropSocket()
{
    deadline.stop();
    pulse.stop();
    if (!socket)
        return;
    // It may be one of its own signals that led here, so it cannot be deleted on the spot.
    socket->disconnect(this);
    socket->abort();
    socket->deleteLater();
    socket = nullptr;
    if (conversation->isGreeted())
        session->disconnected();
}

}  // namespace Leap
