#include "CheckCommand.h"

#include "LevelReport.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <memory>

namespace {

struct Wish
{
    std::vector<std::string> files;
    bool quiet = false;
};

}  // namespace

void addCheckCommand(CLI::App& program, int& result)
{
    CLI::App* command = program.add_subcommand(
        "check",
        "Reads pictures of levels as Rollix does, lists what stands where and warns of what looks "
        "like a mistake. Ends with 1 if there is any warning, with 2 if there is a file that is no "
        "picture.");
    const auto wish = std::make_shared<Wish>();
    command->add_option("picture", wish->files, "Pictures, such as data/Rollix/level3.png")
        ->required();
    command->add_flag("-q,--quiet", wish->quiet, "Tell the warnings only, not the blocks");
    command->callback([wish, &result] {
        for (const std::string& file : wish->files)
            result = std::max(result, reportLevel(file, wish->quiet, std::cout));
    });
}
