#pragma once

#include <QObject>
#include <QTimer>

/// Calls `slot` of `receiver` once, so many milliseconds from now, from the event loop of the main
/// thread and so without the world lock. A newer delay of the same timer replaces an older one,
/// whatever that one was for.
template <typename Receiver>
void startSingleShot(QTimer& timer, int milliseconds, Receiver* receiver, void (Receiver::*slot)())
{
    timer.stop();
    timer.setSingleShot(true);
    timer.setInterval(milliseconds);
    timer.disconnect();
    QObject::connect(&timer, &QTimer::timeout, receiver, slot);
    timer.start();
}
