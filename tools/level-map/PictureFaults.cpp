#include "PictureFaults.h"

#include "BlockWords.h"
#include "Complaints.h"
#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <sstream>

namespace {

// Of smoothing: so many pixels that make no block, and so many of them between their neighbours.
constexpr int fewestOdd = 4;
constexpr double fewestMixed = 0.45;
constexpr int channelTolerance = 6;
constexpr int leastDifference = 30;  // between the neighbours, over all channels

// Of a gamma: the guide's colours are rare as the picture is, and nearly all there is without it.
constexpr int fewestColoured = 10;
constexpr double mostUsual = 0.5;
constexpr double fewestUsual = 0.8;
constexpr double smallestGamma = 0.4;
constexpr double largestGamma = 2.6;
constexpr double gammaStep = 0.05;
constexpr std::size_t mostColours = 1000;  // nobody paints a level with more

constexpr int nearHue = 5;  // degrees beside a kind that its painter will have meant

bool makesSense(const LevelPixel& pixel)
{
    return pixel.value == 0 || (blockKindOfHue(pixel.hue) != BlockKind::None &&
                                BlockShape::ofValue(pixel.value).hasBody);
}

std::array<int, 3> channels(QRgb color)
{
    return {qRed(color), qGreen(color), qBlue(color)};
}

/// Whether a colour lies on the straight line between two others, and is neither.
bool isMixOf(QRgb color, QRgb a, QRgb b)
{
    const auto mixed = channels(color);
    const auto first = channels(a);
    const auto second = channels(b);
    int whole = 0;
    double along = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        whole += std::abs(second[i] - first[i]);
        along += std::abs(mixed[i] - first[i]);
    }
    if (whole < leastDifference || along < channelTolerance || along > whole - channelTolerance)
        return false;
    const double share = along / whole;
    for (std::size_t i = 0; i < 3; ++i)
        if (std::abs(first[i] + share * (second[i] - first[i]) - mixed[i]) > channelTolerance)
            return false;
    return true;
}

bool isMixOfNeighbours(const QImage& picture, int column, int row)
{
    std::vector<QRgb> neighbours;
    for (int y = std::max(0, row - 1); y <= std::min(picture.height() - 1, row + 1); ++y) {
        for (int x = std::max(0, column - 1); x <= std::min(picture.width() - 1, column + 1); ++x)
            if (x != column || y != row)
                neighbours.push_back(picture.pixel(x, y));
    }
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
        for (std::size_t j = i + 1; j < neighbours.size(); ++j)
            if (isMixOf(picture.pixel(column, row), neighbours[i], neighbours[j]))
                return true;
    }
    return false;
}

bool isSmoothed(const QImage& picture)
{
    int odd = 0;
    int mixed = 0;
    for (int row = 0; row < picture.height(); ++row) {
        for (int column = 0; column < picture.width(); ++column) {
            if (makesSense(LevelPixel::decode(picture.pixel(column, row))))
                continue;
            ++odd;
            mixed += isMixOfNeighbours(picture, column, row);
        }
    }
    return odd >= fewestOdd && mixed >= fewestMixed * odd;
}

bool isOfSquares(const QImage& picture, int size)
{
    for (int row = 0; row < picture.height(); ++row) {
        for (int column = 0; column < picture.width(); ++column)
            if (picture.pixel(column, row) !=
                picture.pixel(column - column % size, row - row % size))
                return false;
    }
    return true;
}

/// How many pixels wide and high every cell is; 1 for a level that is only floors and walls, where
/// nobody can tell.
int pixelsACell(const QImage& picture)
{
    bool hasOtherBlocks = false;
    for (int row = 0; row < picture.height() && !hasOtherBlocks; ++row) {
        for (int column = 0; column < picture.width(); ++column) {
            const LevelPixel pixel = LevelPixel::decode(picture.pixel(column, row));
            hasOtherBlocks = hasOtherBlocks ||
                             (pixel.value > 0 && blockKindOfHue(pixel.hue) != BlockKind::Standard);
        }
    }
    for (int size = std::min(picture.width(), picture.height()); hasOtherBlocks && size > 1; --size)
        if (picture.width() % size == 0 && picture.height() % size == 0 &&
            isOfSquares(picture, size))
            return size;
    return 1;
}

/// A colour as the guide's tables have it: the nominal hue of a kind, and the height of a floor.
bool isUsual(const LevelPixel& pixel)
{
    static const std::set<int> hues{0, 45, 90, 135, 180, 225, 270, 315, 360};
    static const std::set<int> values{73, 86, 95, 100};
    return hues.count(pixel.hue) && values.count(pixel.value);
}

QRgb throughGamma(QRgb color, double gamma)
{
    const auto channel = [gamma](int value) {
        return int(std::lround(255.0 * std::pow(value / 255.0, gamma)));
    };
    return qRgb(channel(qRed(color)), channel(qGreen(color)), channel(qBlue(color)));
}

/// How many pixels there are of each colour that is no hole.
using Colours = std::map<QRgb, int>;

int pixelsOf(const Colours& colours)
{
    return std::accumulate(
        colours.begin(), colours.end(), 0,
        [](int sum, const auto& colour) { return sum + colour.second; });
}

/// The share of pixels that have a colour of the guide after this gamma.
double usualShare(const Colours& colours, double gamma)
{
    int usual = 0;
    for (const auto& [color, count] : colours)
        usual += isUsual(LevelPixel::decode(throughGamma(color, gamma))) ? count : 0;
    return double(usual) / pixelsOf(colours);
}

/// The gamma that the guide's colours went through; nothing where that is not what is wrong.
std::optional<double> gammaOf(const QImage& picture)
{
    Colours colours;
    for (int row = 0; row < picture.height(); ++row) {
        for (int column = 0; column < picture.width(); ++column) {
            const QRgb color = picture.pixel(column, row);
            if (LevelPixel::decode(color).value > 0)
                ++colours[color];
        }
    }
    if (pixelsOf(colours) < fewestColoured || usualShare(colours, 1.0) > mostUsual ||
        colours.size() > mostColours)
        return std::nullopt;
    double best = 1.0;
    double most = 0.0;
    for (double gamma = smallestGamma; gamma < largestGamma; gamma += gammaStep) {
        const double share = usualShare(colours, gamma);
        if (share > most) {
            most = share;
            best = gamma;
        }
    }
    return most >= fewestUsual ? std::optional(best) : std::nullopt;
}

std::string rounded(double number)
{
    std::ostringstream text;
    text.precision(2);
    text << number;
    return text.str();
}

/// Where the kinds next to a hue begin and end, as far as one of them is near.
std::string besideWhichKind(int hue)
{
    for (int distance = 1; distance <= nearHue; ++distance) {
        const BlockKind below = blockKindOfHue(hue - distance);
        if (below != BlockKind::None)
            return kindInWords(below) + " end at " + std::to_string(hue - distance);
        const BlockKind above = blockKindOfHue(hue + distance);
        if (above != BlockKind::None)
            return kindInWords(above) + " begin at " + std::to_string(hue + distance);
    }
    return {};
}

void addFaultOf(const LevelPixel& pixel, const CellPosition& cell, Complaints& complaints)
{
    const BlockKind kind = blockKindOfHue(pixel.hue);
    const std::string hue = "hue " + std::to_string(pixel.hue);
    const std::string beside = besideWhichKind(pixel.hue);
    if (pixel.hue < 0)
        complaints.add(cell, "grey", "a grey makes no block; paint holes black, blocks in a hue");
    else if (kind == BlockKind::None && !beside.empty())
        complaints.add(cell, beside, hue + ", and " + beside);
    else if (kind == BlockKind::None)
        complaints.add(cell, "hue", "no kind of block has " + hue + "; floors and walls have 90");
    else if (!BlockShape::ofValue(pixel.value).hasBody)
        complaints.add(cell, "value " + kindInWords(kind),
                       blockInWords(pixel) + " of value " + std::to_string(pixel.value) +
                           ", and under " + std::to_string(firstBodyValue) +
                           " there is no body; take 73, or black for a hole");
    else if (kind == BlockKind::Trap &&
             TrapOption::ofSaturation(pixel.saturation).kind == TrapKind::None)
        complaints.add(cell, "trap",
                       "a trap of saturation " + std::to_string(pixel.saturation) +
                           " does nothing; mines begin at 89, springs at 79, trapdoors at 69, "
                           "wells at 49");
}

}  // namespace

std::vector<std::string> pictureFaults(const QImage& picture, const std::string& format)
{
    if (format == "jpeg" || format == "jpg")
        return {"this is a JPEG, whatever its name says, and its colours are no longer those that "
                "were painted; export the original as PNG"};
    const int size = pixelsACell(picture);
    if (size > 1)
        return {"every cell is " + std::to_string(size) + " x " + std::to_string(size) +
                " pixels here, and a pixel is a cell; scale it to " +
                std::to_string(picture.width() / size) + " x " +
                std::to_string(picture.height() / size) + " without interpolation"};
    if (const auto gamma = gammaOf(picture))
        return {"the colours are those of the guide after a gamma of " + rounded(*gamma) +
                "; save it without gamma and colour profile, and paint with colours by their "
                "numbers"};
    if (isSmoothed(picture))
        return {"most of what makes no block is a mix of its neighbours; paint with a pencil "
                "instead of a brush, without smoothed edges, and never enlarge with "
                "interpolation"};
    return {};
}

std::vector<std::string> pixelFaults(const LevelMap& map)
{
    Complaints complaints;
    for (const CellPosition& cell :
         map.cellsWhere([](const LevelPixel& pixel) { return pixel.value > 0; }))
        addFaultOf(map.pixel(cell), cell, complaints);
    std::vector<std::string> lines;
    complaints.appendTo(lines);
    return lines;
}
