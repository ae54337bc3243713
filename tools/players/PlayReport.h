#pragma once

#include <iosfwd>
#include <string>
#include <vector>

/// What somebody wants to know of some levels by having them played.
struct PlayWish
{
    std::vector<std::string> pictures;
    std::string player = "perfect";
    int runs = 1;
    unsigned int seed = 1;
    double reaction = 0.0;  // seconds; 0 for what the seed says
    double limit = 180.0;   // seconds of play
    double atLeast = 1.0;   // share of the runs that is to be won
    bool firstTouch = false;
    bool toddler = false;
    bool json = false;
    std::string track;  // picture to draw the ball's ways into; empty for none
    int processes = 2;
    std::string home;  // the folder that holds data/
};

/// Plays, tells what came of it, and says on `progress` how far it is. 0 when every picture was won
/// as often as was asked for, 1 when one was not, 2 for a picture that cannot be read.
int playPictures(const PlayWish& wish, std::ostream& out, std::ostream& progress);
