#pragma once

#include <QImage>

/// What is to be seen in the game's window: pixels of each kind.
struct Sight
{
    int wood = 0;
    int red = 0;  // the ball
    int sky = 0;
    double redX = 0.0;  // middle of the red, pixels
};

Sight lookAt(const QImage& image);
