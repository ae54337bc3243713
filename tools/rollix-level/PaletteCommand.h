#pragma once

namespace CLI {
class App;
}

/// `palette OUTPUT`: the colours of all blocks for a paint program. `result` becomes the program's
/// exit code.
void addPaletteCommand(CLI::App& program, int& result);
