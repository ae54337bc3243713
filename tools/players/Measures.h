#pragma once

#include "PlayedGame.h"

#include <Qt>

#include <string>
#include <vector>

/// A first touch of a key that was not kind.
struct UnkindTouch
{
    int column;  // of the start or flag that the ball lay on
    int row;
    Qt::Key key;
    int ticks;    // that the key was held
    double rise;  // world units that the ball rose over where it lay
    bool lostLife;
};

struct FirstTouch
{
    int touches = 0;
    std::vector<UnkindTouch> unkind;

    int kind() const { return touches - int(unkind.size()); }
};

/// From the start, each arrow key held for 5, 12 and 20 ticks, then three seconds: kind if no life
/// is lost and the ball rises less than a unit.
FirstTouch firstTouch(PlayedGame& game, const QImage& picture);

/// The same from every flag that can be passed, as after a fall.
FirstTouch touchAfterFalls(PlayedGame& game, const QImage& picture);

/// Lives that random keys cost a minute, over three minutes: 0.1 to 0.6 s held, 0.1 to 0.5 s apart.
double toddler(PlayedGame& game, const QImage& picture, unsigned int seed);
