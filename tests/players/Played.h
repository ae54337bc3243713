#pragma once

#include "PlayReport.h"
#include "level/LevelPixel.h"

#include <QImage>
#include <QTemporaryDir>

#include <nlohmann/json.hpp>
#include <string>

constexpr int levelCount = 30;

/// The picture of a level that comes with the game.
std::string levelFile(int number);

/// Has it played, and gives what is told of it.
nlohmann::json played(PlayWish wish);

/// A file of the level with all blocks of a kind painted black. Fails where it has none.
std::string levelWithout(BlockKind kind, int number, const QTemporaryDir& folder);
