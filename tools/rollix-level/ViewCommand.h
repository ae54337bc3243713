#pragma once

namespace CLI {
class App;
}

/// `view LEVEL PICTURE`: a photograph of a level, as the game draws it. `result` becomes the
/// program's exit code.
void addViewCommand(CLI::App& program, int& result);
