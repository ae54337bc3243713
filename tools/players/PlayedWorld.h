#pragma once

#include "GameFolder.h"
#include "PlayedGame.h"

#include <memory>

/// The game of a process whose clock stands still, in a folder of its own with a copy of data/.
/// Nothing of it is seen.
class PlayedWorld
{
public:
    /// Needs a QApplication. The game's data/ lies in `home`.
    explicit PlayedWorld(const QDir& home);

    PlayedGame& game() { return *played; }

private:
    GameFolder folder;
    std::unique_ptr<PlayedGame> played;
};
