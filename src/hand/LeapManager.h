#pragma once

#include <Leap.h>
#include <osg/Referenced>

/// The one connection to the hand sensor, and who listens to it. It is made at its first use and
/// dropped by an exit handler.
class LeapManager : public osg::Referenced
{
public:
    static LeapManager* instance();

    /// The listener stays the caller's. It takes the place of the one before, which gets no call
    /// any more once this has returned; for that one the same holds as for removeListener.
    static void setListener(Leap::Listener* listener);

    /// When this returns, no call to the listener is in progress and none will follow. The caller
    /// must not hold the world lock, which such a call may be waiting for.
    static void removeListener();

    /// For a listener that ends: the same, if it is the one that is set, which is then nobody's any
    /// more.
    static void forget(Leap::Listener* listener);

private:
    LeapManager() = default;
    ~LeapManager() override = default;

    Leap::Controller controller;
    Leap::Listener* listener = nullptr;
};
