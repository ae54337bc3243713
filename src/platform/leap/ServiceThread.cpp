#include "platform/leap/ServiceThread.h"

#include "platform/leap/ServiceClient.h"
#include "platform/leap/Session.h"

#include <algorithm>
#include <cstdlib>
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

}  // namespace

ServiceThread::ServiceThread(std::shared_ptr<Session> session_) : session(std::move(session_))
{
    setObjectName(QStringLiteral("sensor service"));
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

void ServiceThread::stopAtExit()
{
    std::atexit(stopAll);
}

void ServiceThread::run()
{
    ServiceClient client(session);
    exec();
}

}  // namespace Leap
