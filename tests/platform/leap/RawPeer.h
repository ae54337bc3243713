#pragma once

#include <QByteArray>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

/// A bare TCP listener that does to its clients what no decent WebSocket server would.
class RawPeer
{
public:
    /// Serves one client after the other with the script, on a thread of its own; when the script
    /// returns, the connection is closed.
    explicit RawPeer(std::function<void(RawPeer&)> script);
    ~RawPeer();
    RawPeer(const RawPeer&) = delete;
    RawPeer& operator=(const RawPeer&) = delete;

    std::string url() const;
    int connectionCount() const { return connections; }

    // For the script.

    /// Reads the client's opening and answers it rightly; false when the client went away.
    bool shakesHands();
    /// False when the client went away or the test is over.
    bool sends(const QByteArray& bytes);
    /// A whole text message with its header; of up to 64 KB in one frame.
    static QByteArray textFrame(const QByteArray& text);
    /// Returns when the client has gone or the test is over; what it says meanwhile is lost.
    void waitsForTheEnd();
    void waits(int milliseconds);

private:
    void serve();

    std::function<void(RawPeer&)> script;
    int listening = -1;
    std::atomic<int> client{-1};
    std::uint16_t port = 0;
    std::atomic<bool> over{false};
    std::atomic<int> connections{0};
    std::thread thread;
};
