#pragma once

namespace CLI {
class App;
}

/// `play PICTURE...`: lets a player play levels on the real game, faster than real time and unseen,
/// and tells how it went. `result` becomes the program's exit code.
void addPlayCommand(CLI::App& program, int& result);
