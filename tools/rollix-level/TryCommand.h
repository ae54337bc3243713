#pragma once

namespace CLI {
class App;
}

/// `try PICTURE`: the game on a picture that is being painted. `result` becomes the program's exit
/// code.
void addTryCommand(CLI::App& program, int& result);
