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

/// The kind that stands for this hue; ranges of 21 degrees around each kind's nominal one.
BlockKind blockKindOfHue(int hue);
