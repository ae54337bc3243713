#include "BlockPalette.h"

#include "BlockWords.h"
#include "LevelColor.h"
#include "level/BlockShape.h"

#include <ostream>

namespace {

constexpr int firstHue = -10;  // red lies on both sides of the circle's seam
constexpr int lastHue = 349;
constexpr int fullSaturation = 100;
constexpr int leastSaturation = 49;  // what is below has no option of its own
constexpr int highestValue = 100;

constexpr BlockKind kinds[] = {BlockKind::Standard, BlockKind::Checkpoint, BlockKind::Button,
                               BlockKind::Ghost,    BlockKind::Elevator,   BlockKind::Trap,
                               BlockKind::Item,     BlockKind::Portal};

/// The hue in the middle of those that mean this kind.
int nominalHue(BlockKind kind)
{
    int first = firstHue;
    while (blockKindOfHue(first) != kind)
        ++first;
    int last = first;
    while (last < lastHue && blockKindOfHue(last + 1) == kind)
        ++last;
    return (first + last) / 2;
}

/// Where one of the equal saturations has to be chosen: a round number, or the one in the middle.
int nominalSaturation(int first, int last)
{
    const int round = last / 10 * 10;
    return round >= first ? round : (first + last + 1) / 2;
}

void add(std::vector<Swatch>& swatches, const std::string& name, const Cell& cell)
{
    if (const auto color = nearestColor(cell))
        swatches.push_back({name, *color});
}

void addShapes(std::vector<Swatch>& swatches, int hue)
{
    for (int value = firstBodyValue; value <= highestValue; ++value) {
        const LevelPixel pixel{hue, fullSaturation, value, 255};
        const bool isFlat = BlockShape::ofValue(value).slope == flatSlope;
        add(swatches, (isFlat ? blockInWords(pixel) + ", " : "") + shapeInWords(pixel),
            {hue, fullSaturation, value});
    }
}

void addOptions(std::vector<Swatch>& swatches, int hue, int value)
{
    const auto words = [&](int saturation) {
        return blockInWords({hue, saturation, value, 255});
    };
    for (int last = fullSaturation; last >= leastSaturation;) {
        int first = last;
        while (first > leastSaturation && words(first - 1) == words(last))
            --first;
        add(swatches, words(last), {hue, nominalSaturation(first, last), value});
        last = first - 1;
    }
}

}  // namespace

std::vector<Swatch> blockPalette(int value)
{
    std::vector<Swatch> swatches;
    for (const BlockKind kind : kinds)
        if (kind == BlockKind::Standard)
            addShapes(swatches, nominalHue(kind));
        else
            addOptions(swatches, nominalHue(kind), value);
    return swatches;
}

void writePalette(const std::vector<Swatch>& swatches, std::ostream& out)
{
    out << "GIMP Palette\nName: Rollix\nColumns: 4\n#\n0 0 0\thole\n";
    for (const Swatch& swatch : swatches)
        out << qRed(swatch.color) << ' ' << qGreen(swatch.color) << ' ' << qBlue(swatch.color)
            << '\t' << swatch.name << '\n';
}
