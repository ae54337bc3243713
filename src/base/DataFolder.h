#pragma once

#include <filesystem>

/// The paths of everything that is read begin with "data/" and are meant below the working
/// directory. These two make that true wherever a program is started from.
namespace DataFolder {

/// The folder to read from: the current one if the game's data lies below it, as in a checkout or
/// at a level author's, else the share that belongs to the program's own installation. Empty if
/// there is neither. A folder "data" of something else does not count.
std::filesystem::path find(const std::filesystem::path& current,
                           const std::filesystem::path& program);
/// As this process stands now.
std::filesystem::path find();

/// Makes it the working directory; without one that stays what it is, and the game says of each
/// file that it cannot read it. Relative paths of the command line are to be resolved before.
void enter();

}  // namespace DataFolder
