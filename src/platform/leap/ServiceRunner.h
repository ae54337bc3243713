#pragma once

#include <memory>
#include <thread>

namespace Leap {

class ServiceThread;
class Session;

/// The two threads behind a controller: one talks to the service, the other one calls the
/// listeners. Two, because a listener may take as long as it likes, and the service must be read
/// meanwhile.
class ServiceRunner
{
public:
    explicit ServiceRunner(std::shared_ptr<Session> session);
    /// Waits for both threads, except when it runs inside a listener's call: then that thread ends
    /// on its own after the call.
    ~ServiceRunner();
    ServiceRunner(const ServiceRunner&) = delete;
    ServiceRunner& operator=(const ServiceRunner&) = delete;

private:
    std::shared_ptr<Session> session;
    std::unique_ptr<ServiceThread> service;
    std::thread listeners;
};

}  // namespace Leap
