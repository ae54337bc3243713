#pragma once

#include "support/LevelPicture.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A folder to start the real program in, whose data/ links to the true files but for the levels.
class ProgramFolder
{
public:
    QString path() const { return folder.path(); }

    /// Links all run-time files into the folder, but for those that shall be missing.
    void brings(const QStringList& missing = {}) const;
    void paints(int number, const LevelPicture& picture) const;

private:
    QTemporaryDir folder;
};
