#pragma once

#include <QThread>

#include <memory>

namespace Leap {

class Session;

/// The thread that talks to the service, from construction to destruction or to the exit of the
/// process, whichever comes first.
class ServiceThread : public QThread
{
public:
    explicit ServiceThread(std::shared_ptr<Session> session);
    /// Waits for the thread, which never waits for a listener.
    ~ServiceThread() override;

    /// Has all these threads stopped by an exit handler. A controller may live in a handler that
    /// was registered before the network library made its own global objects; these die first, and
    /// the thread must not be using them any more. So the thread calls this when the library has
    /// made them: after the first attempt to connect, and after the first success.
    static void stopAtExit();

protected:
    void run() override;

private:
    std::shared_ptr<Session> session;
};

}  // namespace Leap
