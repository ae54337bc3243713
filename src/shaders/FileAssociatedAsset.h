#pragma once

#include <QMultiMap>
#include <QString>
#include <osg/Referenced>

#include <string>

class QFileSystemWatcher;

/// Base of everything that wants to hear when a file on disk is saved: the small engine behind
/// shader work in the running game. A derived class ends its watches in its destructor.
///
/// Notices come from the Qt event loop on the main thread, between two ticks and without the world
/// lock. Assets may be made and destroyed on any thread; a lock of this class's own keeps a notice
/// and a destruction apart, and is the innermost of all locks.
class FileAssociatedAsset : public virtual osg::Referenced
{
public:
    /// The file's content may have changed; `path` is spelled as it was given to watchFile.
    virtual void fileChanged(std::string path) = 0;

protected:
    ~FileAssociatedAsset() override = default;

    /// From now on fileChanged(path) is called once for every call of watchFile. Paths are compared
    /// letter by letter. A file that does not exist is passed over in silence.
    void watchFile(std::string path);

    /// Ends all calls for this path, however often it is watched. The system's own watch on the
    /// file stays: there are few files, and they are shared by many.
    void unwatchFile(std::string path);

private:
    static void makeWatcher();
    static void notify(const QString& path);
    static void followReplacement(const QString& path);
    static void findReappeared(const QString& directory);

    static QFileSystemWatcher* watcher;
    static QMultiMap<QString, FileAssociatedAsset*>& assets;
};
