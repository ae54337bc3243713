#include "platform/leap/ServiceThread.h"

#include "platform/leap/ServiceClient.h"
#include "platform/leap/Session.h"

#include <QCoreApplication>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace Leap {

namespace {

// Never destroyed, because threads come and go until the very end of the process.
struct Registry
{
    std::mutex mutex;
    std::vector<ServiceThread*> threads;
};

Registry& registry()
{
    static Registry* const kept = new Registry;
    return *kept;
}

void stopAll()
{
    const std::lock_guard<std::mutex> lock(registry().mutex);
    for (ServiceThread* thread : registry().threads) {
        thread->quit();
        thread->wait();
    }
}

// Dies with the main thread, which is before any object of static storage does.
struct EndOfMainThread
{
    ~EndOfMainThread() { stopAll(); }
};

// The thread must not be using the global objects of the network library when they go, and it makes
// them as it goes along: no exit handler can be registered late enough to come before all of them.
// What is local to the main thread is destroyed before the first of them, and before all handlers.
void stopAllBeforeExit()
{
    const QCoreApplication* const application = QCoreApplication::instance();
    if (application && application->thread() == QThread::currentThread()) {
        thread_local EndOfMainThread end;
        static_cast<void>(end);
    }
}

}  // namespace

ServiceThread::ServiceThread(std::shared_ptr<Session> session_) : session(std::move(session_))
{
    setObjectName(QStringLiteral("sensor service"));
    stopAllBeforeExit();
    const std::lock_guard<std::mutex> lock(registry().mutex);
    registry().threads.push_back(this);
    start();
}

ServiceThread::~ServiceThread()
{
    {
        const std::lock_guard<std::mutex> lock(registry().mutex);
        auto& threads = registry().threads;
        threads.erase(std::remove(threads.begin(), threads.end(), this), threads.end());
    }
    quit();
    wait();
}

void ServiceThread::run()
{
    ServiceClient client(session);
    exec();
}

}  // namespace Leap
