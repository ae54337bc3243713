#include "GameFolder.h"

#include <QFileInfo>
#include <QStringList>

#include <filesystem>

namespace {

bool isShader(const QFileInfo& file)
{
    return QStringList({"vert", "frag", "geom", "glsl"}).contains(file.suffix());
}

bool isLevel(const QFileInfo& file)
{
    return file.fileName().startsWith("level");
}

/// QFile would wait until the disk has each of them, which takes longer than all else here.
bool copies(const QString& from, const QString& to)
{
    std::error_code error;
    return std::filesystem::copy_file(from.toStdString(), to.toStdString(), error);
}

/// Whether any file was there to take, and all of them were taken.
bool fill(const QDir& target, const QDir& source, GameFolder::Shaders shaders)
{
    const QFileInfoList files = source.entryInfoList(QDir::Files);
    bool filled = !files.isEmpty();
    for (const QFileInfo& file : files) {
        if (isLevel(file))
            continue;
        const QString name = target.filePath(file.fileName());
        const bool copied = isShader(file) && shaders == GameFolder::Shaders::Copied;
        filled = (copied ? copies(file.absoluteFilePath(), name)
                         : QFile::link(file.absoluteFilePath(), name)) &&
                 filled;
    }
    return filled;
}

}  // namespace

GameFolder::GameFolder(const QDir& home, Shaders shaders)
{
    const QDir root(folder.path());
    filled = folder.isValid() && root.mkpath("data/Rollix");
    for (const char* part : {"data", "data/Rollix"})
        filled = filled && fill(root.filePath(part), home.filePath(part), shaders);
}

QString GameFolder::levelPath(int number) const
{
    return folder.filePath(QString("data/Rollix/level%1.png").arg(number));
}

void GameFolder::enter() const
{
    QDir::setCurrent(folder.path());
}
