#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

/// Takes in what `program` says until `condition` holds; false when it does not within a generous
/// limit, or when the program has ended without.
template <class Condition>
bool waitForProgram(QProcess& program, Condition condition)
{
    constexpr qint64 limit = 30000;  // milliseconds
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (program.state() == QProcess::NotRunning || clock.elapsed() > limit)
            return condition();
        QThread::msleep(20);
        program.waitForReadyRead(1);
    }
    return true;
}
