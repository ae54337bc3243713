#include "RawPeer.h"

#include <QCryptographicHash>

#include <arpa/inet.h>
#include <chrono>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int pollInterval = 5;  // ms

}  // namespace

RawPeer::RawPeer(std::function<void(RawPeer&)> script_) : script(std::move(script_))
{
    listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listening, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(listening, 16) != 0 ||
        getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        qFatal("no free port for a bare peer");
    port = ntohs(address.sin_port);
    thread = std::thread([this] { serve(); });
}

RawPeer::~RawPeer()
{
    over = true;
    thread.join();
    close(listening);
}

std::string RawPeer::url() const
{
    return "ws://127.0.0.1:" + std::to_string(port) + "/v6.json";
}

bool RawPeer::shakesHands()
{
    QByteArray request;
    char buffer[1024];
    while (!request.contains("\r\n\r\n")) {
        const ssize_t count = recv(client, buffer, sizeof buffer, 0);
        if (count == 0 || over)
            return false;
        if (count > 0)
            request.append(buffer, int(count));
        else
            waits(1);
    }
    const QByteArray name = "Sec-WebSocket-Key: ";
    const int at = request.indexOf(name) + name.size();
    const QByteArray key = request.mid(at, request.indexOf("\r\n", at) - at);
    // The fixed text that every WebSocket server adds.
    const QByteArray accept = QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11",
                                                       QCryptographicHash::Sha1)
                                  .toBase64();
    return sends("HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                 "Sec-WebSocket-Accept: " +
                 accept + "\r\n\r\n");
}

bool RawPeer::sends(const QByteArray& bytes)
{
    int sent = 0;
    while (sent < bytes.size() && !over) {
        const ssize_t count =
            send(client, bytes.constData() + sent, std::size_t(bytes.size() - sent), MSG_NOSIGNAL);
        if (count > 0) {
            sent += int(count);
        } else if (errno == EAGAIN) {
            pollfd full{client, POLLOUT, 0};
            poll(&full, 1, pollInterval);
        } else {
            return false;
        }
    }
    return !over;
}

QByteArray RawPeer::textFrame(const QByteArray& text)
{
    QByteArray frame(1, char(0x81));
    if (text.size() < 126) {
        frame.append(char(text.size()));
    } else {
        frame.append(char(126));
        frame.append(char(text.size() >> 8));
        frame.append(char(text.size() & 0xff));
    }
    return frame + text;
}

void RawPeer::waitsForTheEnd()
{
    char buffer[1024];
    while (!over) {
        const ssize_t count = recv(client, buffer, sizeof buffer, 0);
        if (count == 0 || (count < 0 && errno != EAGAIN))
            return;
        pollfd silent{client, POLLIN, 0};
        poll(&silent, 1, pollInterval);
    }
}

void RawPeer::waits(int milliseconds)
{
    for (int i = 0; i < milliseconds && !over; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void RawPeer::serve()
{
    while (!over) {
        pollfd waiting{listening, POLLIN, 0};
        if (poll(&waiting, 1, pollInterval) <= 0)
            continue;
        client = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (client < 0)
            continue;
        ++connections;
        script(*this);
        close(client);
        client = -1;
    }
}
