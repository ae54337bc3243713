#pragma once

#include <QFile>
#include <QString>

/// A file of the game that is away while this lives.
class MissingFile
{
public:
    explicit MissingFile(const QString& path) : file(path) { QFile::rename(file, file + ".away"); }
    ~MissingFile() { QFile::rename(file + ".away", file); }

    MissingFile(const MissingFile&) = delete;
    MissingFile& operator=(const MissingFile&) = delete;

private:
    QString file;
};
