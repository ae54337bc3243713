#include "platform/leap/ServiceAddress.h"

#include <mutex>

namespace Leap {

namespace {

// The literal address: a name could be led elsewhere, and the service listens on IPv4 only.
constexpr const char* builtInAddress = "ws://127.0.0.1:6437/v6.json";

// Never destroyed, because the socket's thread may ask for it while the process exits.
struct Address
{
    std::mutex mutex;
    std::string url = builtInAddress;
};

Address& address()
{
    static Address* const kept = new Address;
    return *kept;
}

}  // namespace

void setServiceAddress(const std::string& url)
{
    const std::lock_guard<std::mutex> lock(address().mutex);
    address().url = url;
}

std::string serviceAddress()
{
    const std::lock_guard<std::mutex> lock(address().mutex);
    return address().url;
}

}  // namespace Leap
