#include "CheckCommand.h"
#include "PaletteCommand.h"
#include "TryCommand.h"
#include "ViewCommand.h"
#ifdef ROLLIX_HAS_PLAYERS
#include "PlayCommand.h"
#endif

#include <CLI/CLI.hpp>

// For the authors of levels: one subcommand a wish, each in a source of its own.
// NOLINTNEXTLINE(bugprone-exception-escape): options that were put together wrongly may end it
int main(int argc, char** argv)
{
    CLI::App program("Helps to paint levels for Rollix. 'rollix-level COMMAND --help' tells more.");
    program.require_subcommand(1);
    int result = 0;
    addCheckCommand(program, result);
    addPaletteCommand(program, result);
    addTryCommand(program, result);
    addViewCommand(program, result);
#ifdef ROLLIX_HAS_PLAYERS
    addPlayCommand(program, result);
#endif
    CLI11_PARSE(program, argc, argv);
    return result;
}
