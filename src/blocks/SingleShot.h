#pragma once

#include "frame/GameLoop.h"

#include <QObject>
#include <QTimer>

/// Calls `slot` of `receiver` once, so many milliseconds from now, from the event loop of the main
/// thread and with the world lock held. A newer delay of the same timer replaces an older one,
/// whatever that one was for.
template <typename Receiver>
void startSingleShot(QTimer& timer, int milliseconds, Receiver* receiver, void (Receiver::*slot)())
{
    timer.stop();
    timer.setSingleShot(true);
    timer.setInterval(milliseconds);
    timer.disconnect();
    QObject::connect(&timer, &QTimer::timeout, receiver, [receiver, slot] {
        const GameLoop::Lock worldLock;
        (receiver->*slot)();
    });
    timer.start();
}
