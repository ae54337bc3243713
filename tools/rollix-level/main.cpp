#include "CheckCommand.h"
#include "ViewCommand.h"

#include <CLI/CLI.hpp>

// For the authors of levels: one subcommand a wish, each in a source of its own.
int main(int argc, char** argv)
{
    CLI::App program("Helps to paint levels for Rollix. 'rollix-level COMMAND --help' tells more.");
    program.require_subcommand(1);
    int result = 0;
    addCheckCommand(program, result);
    addViewCommand(program, result);
    CLI11_PARSE(program, argc, argv);
    return result;
}
