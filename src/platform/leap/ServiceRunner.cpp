#include "platform/leap/ServiceRunner.h"

#include "platform/leap/ServiceThread.h"
#include "platform/leap/Session.h"

#include <utility>

namespace Leap {

ServiceRunner::ServiceRunner(std::shared_ptr<Session> session_)
    : session(std::move(session_)),
      service(std::make_unique<ServiceThread>(session)),
      listeners([shared = session] { shared->run(); })
{
}

ServiceRunner::~ServiceRunner()
{
    service.reset();
    session->stop();
    if (listeners.get_id() == std::this_thread::get_id())
        listeners.detach();
    else
        listeners.join();
}

}  // namespace Leap
