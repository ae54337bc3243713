#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Whether a thread of this process waits for something; by its number in the system.
inline bool isAsleep(int thread)
{
    QFile file(QString("/proc/self/task/%1/stat").arg(thread));
    file.open(QIODevice::ReadOnly);
    const QByteArray text = file.readAll();
    // The state stands behind the name, which is in brackets.
    return text.mid(text.lastIndexOf(')')).startsWith(") S");
}
