#include "LevelReport.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace {

constexpr int unreadable = 2;

/// 0 for a sound level, 1 for one with warnings, 2 for a file that is no picture.
int check(const std::string& file, bool onlyWarnings)
{
    const QImage picture(QString::fromStdString(file));
    if (picture.isNull()) {
        std::cout << file << ": this is no picture that I can read" << std::endl;
        return unreadable;
    }
    const LevelReport report(picture);
    std::cout << file << ": " << report.summary() << std::endl;
    if (!onlyWarnings) {
        for (const std::string& line : report.blocks())
            std::cout << "  " << line << std::endl;
    }
    const std::vector<std::string> warnings = report.warnings();
    for (const std::string& line : warnings)
        std::cout << "  warning: " << line << std::endl;
    return warnings.empty() ? 0 : 1;
}

}  // namespace

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
        result = std::max(result, check(file, quiet));
    return result;
}
