#pragma once

#include "GameFolder.h"

#include <QDir>
#include <QImage>
#include <QSize>

class OsgViewerWidget;
class Rollix;

/// One window and one game, as in the real program, driven by hand: nothing ticks by itself. One of
/// them a process; it enters its folder. Widget and game stay to the end of the process, as they do
/// in the program.
struct GameWorld
{
    static const QSize windowSize;  // pixels

    /// Loads `firstLevel` as level 0 with the data/ of `home`. Needs a QApplication and a display.
    GameWorld(const QDir& home, const QImage& firstLevel,
              GameFolder::Shaders shaders = GameFolder::Shaders::Linked);
    GameWorld(const GameWorld&) = delete;
    GameWorld& operator=(const GameWorld&) = delete;

    GameFolder folder;
    OsgViewerWidget* widget;
    Rollix* game;
};
