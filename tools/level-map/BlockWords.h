#pragma once

#include "level/LevelPixel.h"

#include <string>

/// The block of a pixel in words, with its option: "button, works once". Of every pixel that is not
/// a hole; one of an unknown hue is "nothing".
std::string blockInWords(const LevelPixel& pixel);

/// What the blocks of a kind are called: "flags", "floors and walls".
std::string kindInWords(BlockKind kind);

/// Its height and slope: "0.5 high", "ramp from 0.5 to 1, rises to the right".
std::string shapeInWords(const LevelPixel& pixel);
