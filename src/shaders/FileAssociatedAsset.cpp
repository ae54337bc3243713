#include "shaders/FileAssociatedAsset.h"

#include "base/Say.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QSet>

#include <mutex>

// Neither is ever destroyed: an asset that a static object holds still has to find them at exit.
QFileSystemWatcher* FileAssociatedAsset::watcher = nullptr;
QMultiMap<QString, FileAssociatedAsset*>& FileAssociatedAsset::assets =
    *new QMultiMap<QString, FileAssociatedAsset*>;

namespace {

using Lock = std::lock_guard<std::recursive_mutex>;

// Recursive, since a notice may make or destroy assets. Menu lines are built on the sensor's thread
// while the main thread may be walking through the assets of a saved file.
std::recursive_mutex& assetsMutex()
{
    static std::recursive_mutex& mutex = *new std::recursive_mutex;
    return mutex;
}

/// Watched files that are gone for the moment; main thread only.
QSet<QString>& missingFiles()
{
    static QSet<QString>& files = *new QSet<QString>;
    return files;
}

/// Files whose watch waits for the main thread; under the mutex.
QSet<QString>& pathsToAdd()
{
    static QSet<QString>& paths = *new QSet<QString>;
    return paths;
}

QString directoryOf(const QString& path)
{
    return QFileInfo(path).path();
}

}  // namespace

void FileAssociatedAsset::watchFile(std::string path)
{
    const Lock lock(assetsMutex());
    if (!watcher)
        makeWatcher();
    const QString key = QString::fromStdString(path);
    assets.insert(key, this);
    // The watcher belongs to the main thread; from another one the call waits for the event loop,
    // and one call that waits is enough for all who want the same file meanwhile.
    if (pathsToAdd().contains(key))
        return;
    pathsToAdd().insert(key);
    QMetaObject::invokeMethod(watcher, [key] {
        const Lock lockOfAddition(assetsMutex());
        pathsToAdd().remove(key);
        watcher->addPath(key);
    });
}

void FileAssociatedAsset::unwatchFile(std::string path)
{
    const Lock lock(assetsMutex());
    assets.remove(QString::fromStdString(path), this);
}

void FileAssociatedAsset::makeWatcher()
{
    watcher = new QFileSystemWatcher;
    if (QCoreApplication::instance())
        watcher->moveToThread(QCoreApplication::instance()->thread());
    QObject::connect(watcher, &QFileSystemWatcher::fileChanged, watcher,
                     &FileAssociatedAsset::notify, Qt::DirectConnection);
    QObject::connect(watcher, &QFileSystemWatcher::directoryChanged, watcher,
                     &FileAssociatedAsset::findReappeared, Qt::DirectConnection);
}

void FileAssociatedAsset::notify(const QString& path)
{
    // Before the file is read: a save that comes in between is then either read or reported.
    followReplacement(path);

    const Lock lock(assetsMutex());
    say(path.toStdString(), " was changed");
    // One notice may take other assets of this file away, so the walk is over a copy.
    for (FileAssociatedAsset* asset : assets.values(path))
        if (assets.contains(path, asset))
            asset->fileChanged(path.toStdString());
}

// Editors save by renaming a new file over the old one. The watch is on the old file, not on its
// name, so it is put on whatever bears the name now.
void FileAssociatedAsset::followReplacement(const QString& path)
{
    watcher->removePath(path);
    if (watcher->addPath(path))
        return;
    watcher->addPath(directoryOf(path));
    // The new file may have come between the two.
    if (!watcher->addPath(path))
        missingFiles().insert(path);
}

void FileAssociatedAsset::findReappeared(const QString& directory)
{
    QStringList reappeared;
    bool stillMissing = false;
    for (const QString& path : missingFiles()) {
        if (directoryOf(path) != directory)
            continue;
        if (QFileInfo::exists(path))
            reappeared.append(path);
        else
            stillMissing = true;
    }
    if (!stillMissing)
        watcher->removePath(directory);
    for (const QString& path : reappeared) {
        missingFiles().remove(path);
        notify(path);
    }
}
