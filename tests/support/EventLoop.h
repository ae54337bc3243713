#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

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
        QCoreApplication::processEvents();
        QThread::msleep(1);
    }
    return true;
}
