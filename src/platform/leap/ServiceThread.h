#pragma once

#include <QThread>

#include <memory>

namespace Leap {

class Session;

/// The thread that talks to the service, from construction to destruction, or to the exit of the
/// process when the main thread made it: a controller may live in an exit handler, which is too
/// late for a thread that uses the network.
class ServiceThread : public QThread
{
public:
    explicit ServiceThread(std::shared_ptr<Session> session);
    /// Waits for the thread, which never waits for a listener.
    ~ServiceThread() override;

protected:
    void run() override;

private:
    std::shared_ptr<Session> session;
};

}  // namespace Leap
