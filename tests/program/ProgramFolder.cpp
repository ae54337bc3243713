#include "program/ProgramFolder.h"

#include <QDir>
#include <QFile>

void ProgramFolder::brings(const QStringList& missing) const
{
    const QDir source(QString(ROLLIX_SOURCE_DIR) + "/data");
    const QDir target(folder.path());
    target.mkpath("data/Rollix");
    for (const QString& part : {QString(), QString("Rollix/")}) {
        for (const QFileInfo& file : QDir(source.filePath(part)).entryInfoList(QDir::Files)) {
            const QString name = "data/" + part + file.fileName();
            if (!missing.contains(name) && !file.fileName().startsWith("level"))
                QFile::link(file.absoluteFilePath(), target.filePath(name));
        }
    }
}

void ProgramFolder::paints(int number, const LevelPicture& picture) const
{
    picture.image().save(folder.filePath(QString("data/Rollix/level%1.png").arg(number)));
}
