#pragma once

#include <QSize>
#include <QString>
#include <QTemporaryDir>

class OsgViewerWidget;
class Rollix;

/// A folder that the game can be run in: its data/ holds the true files, but no level pictures.
/// Shaders are copies, as they are watched: a test may spoil one and mend it. The folder becomes
/// the working directory, and goes from the disk with this object.
class GameFolder
{
public:
    GameFolder();

    QString path() const { return folder.path(); }

private:
    QTemporaryDir folder;
};

/// One window and one game a process, as in the real program, driven by hand: nothing ticks by
/// itself. Level 0 is a single start cell to begin with.
struct GameWorld
{
    static const QSize windowSize;  // pixels

    /// Made at the first call; needs a QApplication and a display.
    static GameWorld& instance();

    GameFolder folder;
    OsgViewerWidget* widget;
    Rollix* game;

private:
    GameWorld();
};
