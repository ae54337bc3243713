#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>

/// Serves Qt's events until `condition` holds; false when it does not within a generous limit.
template <class Condition>
bool waitUntil(Condition condition)
{
    constexpr qint64 limit = 20000;  // milliseconds
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > limit)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
        QCoreApplication::processEvents();
    }
    return true;
}
