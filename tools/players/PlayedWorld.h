#pragma once

#include "PlayedGame.h"

#include <QTemporaryDir>

#include <memory>

/// The game of a process whose clock stands still, in a folder of its own with a copy of data/.
/// Nothing of it is seen.
class PlayedWorld
{
public:
    /// Needs a QApplication. The game's data/ lies in `home`.
    explicit PlayedWorld(const QString& home);

    PlayedGame& game() { return *played; }

private:
    QTemporaryDir folder;
    std::unique_ptr<PlayedGame> played;
};
