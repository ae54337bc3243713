#pragma once

#include <QDir>
#include <QString>
#include <QTemporaryDir>

/// A folder that the game can be run in: its data/ holds the true files, but no level pictures. It
/// goes from the disk with this object.
class GameFolder
{
public:
    /// Links are enough to play. Copies of the shaders can be spoiled and mended, as the running
    /// game watches them.
    enum class Shaders { Linked, Copied };

    /// Takes the files of the data/ in `home`.
    explicit GameFolder(const QDir& home, Shaders shaders = Shaders::Linked);

    /// Whether there was a data/ to take, and room for it.
    bool isFilled() const { return filled; }
    QString path() const { return folder.path(); }
    /// Where the game looks for the picture of a level.
    QString levelPath(int number) const;

    /// Makes it the working directory, where the game looks for data/.
    void enter() const;

private:
    QTemporaryDir folder;
    bool filled = false;
};
