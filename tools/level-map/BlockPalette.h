#pragma once

#include <QColor>

#include <iosfwd>
#include <string>
#include <vector>

struct Swatch
{
    std::string name;  // of the block, as blockInWords() and shapeInWords() have it
    QRgb color;
};

/// A colour for every height and ramp of floors and walls, and for every option of the other kinds,
/// these with the shape of `value`.
std::vector<Swatch> blockPalette(int value);

/// Writes colours as a palette of GIMP's form, which other paint programs read too.
void writePalette(const std::vector<Swatch>& swatches, std::ostream& out);
