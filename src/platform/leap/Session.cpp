#include "platform/leap/Session.h"

#include "platform/leap/FrameData.h"

#include <algorithm>
#include <utility>

namespace Leap {

namespace {

constexpr std::size_t mostGesturesKept = 64;

unsigned int bitOf(Gesture::Type type)
{
    return type < 0 ? 0u : 1u << unsigned(type);
}

}  // namespace

bool Session::addListener(Listener& listener)
{
    const Lock lock(mutex);
    if (find(listener))
        return false;
    Entry entry;
    entry.listener = &listener;
    // Only what comes from now on: the newest frame may be from long ago.
    entry.frame = servedNumber;
    entries.push_back(entry);
    changed.notify_all();
    return true;
}

bool Session::removeListener(Listener& listener)
{
    bool known = false;
    bool initialised = false;
    {
        Lock lock(mutex);
        if (const Entry* entry = find(listener)) {
            known = true;
            initialised = entry->initialised;
            entries.erase(entries.begin() + (entry - entries.data()));
        }
        if (!onServingThread())
            changed.wait(lock, [&] { return inCall != &listener; });
    }
    if (initialised)
        listener.onExit(Controller(shared_from_this()));
    return known;
}

Frame Session::frame() const
{
    const Lock lock(mutex);
    return Frame(onServingThread() && inCall ? served : newest);
}

void Session::enableGesture(Gesture::Type type, bool enable)
{
    const Lock lock(mutex);
    gestureTypes = enable ? gestureTypes | bitOf(type) : gestureTypes & ~bitOf(type);
    if (gesturesChanged)
        gesturesChanged();
}

void Session::connected()
{
    const Lock lock(mutex);
    connection = ++connections;
    changed.notify_all();
}

void Session::disconnected()
{
    const Lock lock(mutex);
    connection = 0;
    focused = false;
    markAllServed();
    if (newest)
        publishNewest(FrameData());
    changed.notify_all();
}

void Session::setFocused(bool focused_)
{
    const Lock lock(mutex);
    focused = focused_;
    changed.notify_all();
}

void Session::publish(FrameData frame)
{
    const Lock lock(mutex);
    auto& gestures = frame.gestures;
    gestures.erase(std::remove_if(gestures.begin(), gestures.end(),
                                  [this](const GestureData& gesture) {
                                      return !(gestureTypes & bitOf(gesture.type));
                                  }),
                   gestures.end());
    keepGestures(frame);
    publishNewest(std::move(frame));
    changed.notify_all();
}

bool Session::wantsGestures() const
{
    const Lock lock(mutex);
    return gestureTypes != 0;
}

void Session::whenGesturesChange(std::function<void()> function)
{
    const Lock lock(mutex);
    gesturesChanged = std::move(function);
}

void Session::run()
{
    Lock lock(mutex);
    servingThread = std::this_thread::get_id();
    const Controller controller(shared_from_this());
    while (!stopped)
        if (!serveOne(lock, controller))
            changed.wait(lock);
    servingThread = std::thread::id();
}

void Session::stop()
{
    const Lock lock(mutex);
    stopped = true;
    changed.notify_all();
}

Session::Entry* Session::find(const Listener& listener)
{
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
        return entry.listener == &listener;
    });
    return found == entries.end() ? nullptr : &*found;
}

// Tells one listener one thing; false when all of them know everything.
bool Session::serveOne(Lock& lock, const Controller& controller)
{
    const bool roundIsOver =
        std::all_of(entries.begin(), entries.end(),
                    [this](const Entry& entry) { return entry.frame == servedNumber; });
    if (roundIsOver && newest) {
        served = newest;
        servedNumber = newestNumber;
    }
    for (Entry& entry : entries) {
        if (const Callback callback = nextCall(entry)) {
            call(lock, *entry.listener, callback, controller);
            return true;
        }
    }
    return false;
}

// What to tell next. It is written down as told before the call is made, because the call may
// change the list of listeners.
Session::Callback Session::nextCall(Entry& entry)
{
    if (!entry.initialised) {
        entry.initialised = true;
        return &Listener::onInit;
    }
    // Also when a new connection came before the loss of the old one could be told.
    const bool otherConnection = entry.connection != connection;
    if (entry.focused && (otherConnection || !focused)) {
        entry.focused = false;
        return &Listener::onFocusLost;
    }
    if (otherConnection && entry.connection != 0) {
        entry.connection = 0;
        return &Listener::onDisconnect;
    }
    if (otherConnection) {
        entry.connection = connection;
        return &Listener::onConnect;
    }
    if (focused && !entry.focused) {
        entry.focused = true;
        return &Listener::onFocusGained;
    }
    if (entry.frame != servedNumber) {
        entry.frame = servedNumber;
        return &Listener::onFrame;
    }
    return nullptr;
}

void Session::call(Lock& lock, Listener& listener, Callback callback, const Controller& controller)
{
    inCall = &listener;
    lock.unlock();
    (listener.*callback)(controller);
    lock.lock();
    inCall = nullptr;
    changed.notify_all();
}

void Session::publishNewest(FrameData frame)
{
    newest = std::make_shared<const FrameData>(std::move(frame));
    ++newestNumber;
    if (entries.empty())
        markAllServed();
}

// Whatever waits in the mailbox is not delivered any more.
void Session::markAllServed()
{
    servedNumber = newestNumber;
    for (Entry& entry : entries)
        entry.frame = servedNumber;
}

bool Session::onServingThread() const
{
    return std::this_thread::get_id() == servingThread;
}

// A frame that nobody saw hands on what was reported in it alone.
void Session::keepGestures(FrameData& frame) const
{
    if (!newest || newestNumber == servedNumber)
        return;
    std::vector<GestureData> all;
    for (const GestureData& gesture : newest->gestures)
        if (gesture.state == Gesture::STATE_STOP)
            all.push_back(gesture);
    all.insert(all.end(), frame.gestures.begin(), frame.gestures.end());
    if (all.size() > mostGesturesKept)
        all.resize(mostGesturesKept);
    frame.gestures = std::move(all);
}

}  // namespace Leap
