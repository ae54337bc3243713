#pragma once

#include "platform/leap/Leap.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace Leap {

/// What the thread of the socket and the thread of the listeners share: the newest frame, who wants
/// it, and what the service is known to do.
///
/// Frames go through a mailbox for one: a frame that finds another one waiting takes its place, so
/// that a slow listener costs freshness and never memory. Only the taps and the finished movements
/// of the frame that is dropped are kept, as each of them lives in a single frame.
class Session : public std::enable_shared_from_this<Session>
{
public:
    Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // For Controller, any thread.

    bool addListener(Listener& listener);
    bool removeListener(Listener& listener);
    Frame frame() const;
    void enableGesture(Gesture::Type type, bool enable);

    // For the socket's thread.

    void connected();
    /// Publishes an empty frame after the others, so that no hand outlives its service.
    void disconnected();
    void setFocused(bool focused);
    void publish(FrameData frame);
    bool wantsGestures() const;
    /// The function is called when wantsGestures may have changed, on whichever thread changes it
    /// and with the session locked: it may only post. An empty one ends that.
    void whenGesturesChange(std::function<void()> changed);

    // For the thread of the listeners.

    /// Serves the listeners until stop.
    void run();
    /// Any thread; run returns after the call that is in progress.
    void stop();

private:
    /// What a listener has been told so far.
    struct Entry
    {
        Listener* listener = nullptr;
        bool initialised = false;
        std::uint64_t connection = 0;
        bool focused = false;
        std::uint64_t frame = 0;  // number of the last frame
    };
    using Lock = std::unique_lock<std::mutex>;
    using Callback = void (Listener::*)(const Controller&);

    Entry* find(const Listener& listener);
    bool serveOne(Lock& lock, const Controller& controller);
    Callback nextCall(Entry& entry);
    void call(Lock& lock, Listener& listener, Callback callback, const Controller& controller);
    bool onServingThread() const;
    void keepGestures(FrameData& frame) const;
    void publishNewest(FrameData frame);
    void markAllServed();

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<Entry> entries;
    Listener* inCall = nullptr;
    std::thread::id servingThread;
    bool stopped = false;

    std::uint64_t connections = 0;  // how many there have been; numbers them from 1
    std::uint64_t connection = 0;   // the one that stands now; 0 for none
    bool focused = false;

    // A frame is served to all listeners before the next one is taken, so that none of them sees a
    // gesture twice. While the two numbers differ, the newest frame waits for its turn.
    std::shared_ptr<const FrameData> newest;
    std::shared_ptr<const FrameData> served;
    std::uint64_t newestNumber = 0;
    std::uint64_t servedNumber = 0;

    unsigned int gestureTypes = 0;  // one bit a type
    std::function<void()> gesturesChanged;
};

}  // namespace Leap
