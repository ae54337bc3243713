#include "GameProcess.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRect>
#include <QStandardPaths>

namespace {

const QString gameName = QStringLiteral("rollix");

}  // namespace

GameProcess::GameProcess(QObject* parent) : QObject(parent)
{
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setInputChannelMode(QProcess::ForwardedInputChannel);
    connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this](int exitCode, QProcess::ExitStatus status) {
                if (status == QProcess::CrashExit)
                    emit crashed();
                else
                    emit ended(exitCode);
            });
}

QString GameProcess::find()
{
    const QDir here(QCoreApplication::applicationDirPath());
    for (const QString& place : {gameName, "../games/" + gameName}) {
        const QFileInfo file(here.filePath(place));
        if (file.isFile() && file.isExecutable())
            return QDir::cleanPath(file.absoluteFilePath());
    }
    return QStandardPaths::findExecutable(gameName);
}

bool GameProcess::start(const QString& program, const QRect& place)
{
    const QString geometry = QStringLiteral("%1x%2+%3+%4")
                                 .arg(place.width())
                                 .arg(place.height())
                                 .arg(place.x())
                                 .arg(place.y());
    process.start(program, {"-qwindowgeometry", geometry});
    return process.waitForStarted();
}
