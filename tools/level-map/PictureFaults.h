#pragma once

#include "LevelMap.h"

#include <QImage>

#include <string>
#include <vector>

/// What spoils a picture as a whole, each with its cure: a format that changes colours, cells of
/// several pixels, colours that went through a gamma, edges that were smoothed. `format` is what
/// the file's content says, as "png". Empty for a picture that was painted pixel by pixel.
std::vector<std::string> pictureFaults(const QImage& picture, const std::string& format);

/// What single pixels are that make no block or a useless one, each with its cure.
std::vector<std::string> pixelFaults(const LevelMap& map);
