#pragma once

#include <QColor>

/// One pixel of a level picture, as a level author thinks of it: hue in degrees (-359 for a grey),
/// saturation and value in percent, alpha from 0 to 255.
struct LevelPixel
{
    int hue;
    int saturation;
    int value;
    int alpha;

    static LevelPixel decode(QRgb argb);
};

/// The kinds of block that a hue can name.
enum class BlockKind {
    None,
    Standard,
    Checkpoint,
    Button,
    Ghost,
    Elevator,
    Trap,
    Item,
    Portal,
};

struct HueRange
{
    int first;
    int last;
    BlockKind kind;
};

/// Ranges of 21 degrees around each kind's nominal hue, both ends included; the first match counts.
/// Red lies on both sides of the circle's seam.
constexpr HueRange hueRanges[] = {
    {80, 100, BlockKind::Standard},  {125, 145, BlockKind::Checkpoint},
    {260, 280, BlockKind::Button},   {215, 235, BlockKind::Ghost},
    {170, 190, BlockKind::Elevator}, {-10, 10, BlockKind::Trap},
    {350, 370, BlockKind::Trap},     {35, 55, BlockKind::Item},
    {305, 325, BlockKind::Portal},
};

/// The kind that stands for this hue.
BlockKind blockKindOfHue(int hue);

/// Whether blocks of this kind have a body of their own, and cannot be without: all but floors and
/// walls, which are merged into the board.
bool hasOwnBody(BlockKind kind);
