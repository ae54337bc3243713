#pragma once

#include <string>

namespace Leap {

/// The WebSocket address of the tracking service, for every controller of the process; a change
/// counts from the next attempt to connect on. Players need none but the built-in one: this is for
/// programs that bring a service of their own, as the tests do. Any thread.
void setServiceAddress(const std::string& url);
std::string serviceAddress();

}  // namespace Leap
