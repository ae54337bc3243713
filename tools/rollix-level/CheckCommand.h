#pragma once

namespace CLI {
class App;
}

/// `check PICTURE...`: what the game makes of pictures, and what looks like a mistake. `result`
/// becomes the program's exit code.
void addCheckCommand(CLI::App& program, int& result);
