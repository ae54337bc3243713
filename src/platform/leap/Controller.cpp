#include "platform/leap/Leap.h"
#include "platform/leap/ServiceRunner.h"
#include "platform/leap/Session.h"

#include <utility>

namespace Leap {

Controller::Controller()
    : session(std::make_shared<Session>()), runner(std::make_shared<ServiceRunner>(session))
{
}

Controller::Controller(std::shared_ptr<Session> session_) : session(std::move(session_)) {}

Controller::~Controller() = default;
Controller::Controller(const Controller&) = default;
Controller& Controller::operator=(const Controller&) = default;

bool Controller::addListener(Listener& listener)
{
    return session->addListener(listener);
}

bool Controller::removeListener(Listener& listener)
{
    return session->removeListener(listener);
}

Frame Controller::frame(int history) const
{
    return history == 0 ? session->frame() : Frame();
}

void Controller::enableGesture(Gesture::Type type, bool enable) const
{
    session->enableGesture(type, enable);
}

}  // namespace Leap
