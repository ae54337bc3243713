#include "LevelReport.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>

// Tells the author of a level what the game makes of its picture.
int main(int argc, char** argv)
{
    CLI::App options(
        "Reads pictures of levels as Rollix does, lists what stands where and warns of "
        "what looks like a mistake. Ends with 1 if there is any warning, with 2 if "
        "there is a file that is no picture.");
    std::vector<std::string> files;
    bool quiet = false;
    options.add_option("picture", files, "Pictures, such as data/Rollix/level3.png")->required();
    options.add_flag("-q,--quiet", quiet, "Tell the warnings only, not the blocks");
    CLI11_PARSE(options, argc, argv);

    int result = 0;
    for (const std::string& file : files)
        result = std::max(result, reportLevel(file, quiet, std::cout));
    return result;
}
