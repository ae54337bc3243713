#include "PlayCommand.h"

#include "GameFolder.h"
#include "PlayReport.h"
#include "base/DataFolder.h"

#include <CLI/CLI.hpp>
#include <QDir>

#include <iostream>
#include <memory>
#include <sstream>
#include <unistd.h>

namespace {

constexpr double fastestEyes = 0.16;  // seconds

int play(PlayWish& wish)
{
    const QDir home(QDir(QString::fromStdString(DataFolder::find().string())).absolutePath());
    if (!GameFolder(home).isFilled()) {
        std::cout << home.filePath("data").toStdString()
                  << ": the game's files are not here; start me in the folder that holds data/"
                  << std::endl;
        return 2;
    }
    wish.home = home.path().toStdString();
    if (!wish.track.empty())
        wish.track = home.absoluteFilePath(QString::fromStdString(wish.track)).toStdString();
    // A file or a program that reads this has no use for how far it is.
    std::ostringstream unseen;
    return playPictures(wish, std::cout, isatty(STDERR_FILENO) ? std::cerr : unseen);
}

}  // namespace

void addPlayCommand(CLI::App& program, int& result)
{
    CLI::App* command = program.add_subcommand(
        "play",
        "Lets a player play levels on the real game, unseen and faster than real time, and tells "
        "whether they can be won, by whom, in what time, and where people fall. To be started in "
        "the folder that holds data/. Ends with 0 when each level was won as often as --at-least "
        "says.");
    const auto wish = std::make_shared<PlayWish>();
    command->add_option("picture", wish->pictures, "Pictures of levels")->required();
    command
        ->add_option("--player", wish->player,
                     "perfect: sees at once and never trembles; taps: a person at the keys; hand: "
                     "a person with a hand over the sensor")
        ->check(CLI::IsMember({"perfect", "taps", "hand"}))
        ->capture_default_str();
    command->add_option("--runs", wish->runs, "How often each level is played")
        ->check(CLI::Range(1, 100000))
        ->capture_default_str();
    command->add_option("--seed", wish->seed, "Of the first run; the next one has the next")
        ->capture_default_str();
    command
        ->add_option("--reaction", wish->reaction,
                     "How late a person sees, in seconds; by the seed if not given")
        ->check(CLI::Range(fastestEyes, 2.0));
    command->add_option("--limit", wish->limit, "Seconds of play after which a run is given up")
        ->check(CLI::Range(1.0, 3600.0))
        ->capture_default_str();
    command->add_option("--at-least", wish->atLeast, "Share of the runs that is to be won, 0 to 1")
        ->check(CLI::Range(0.0, 1.0))
        ->capture_default_str();
    command->add_flag("--first-touch", wish->firstTouch,
                      "Also tells what each arrow key, held for 0.1, 0.24 and 0.4 seconds, does at "
                      "the start, and after a fall at each flag");
    command->add_flag("--toddler", wish->toddler, "Also tells what random keys cost");
    command->add_flag("--json", wish->json, "For programs");
    command->add_option("--track", wish->track, "Draws the ball's ways into this picture");
    command->add_option("--processes", wish->processes, "How many runs are played side by side")
        ->check(CLI::Range(1, 64))
        ->capture_default_str();
    command->callback([wish, &result] { result = play(*wish); });
}
