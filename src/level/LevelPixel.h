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

/// The slope of a block without one. Ramps have 0 to 3: the high edge towards -y, +x, +y, -x.
constexpr int flatSlope = 4;

/// The smallest value that gives a block a body.
constexpr int firstBodyValue = 57;

/// What a pixel's value says of a block's body. Heights are in world units above the board.
struct BlockShape
{
    bool hasBody;  // false under firstBodyValue: nothing to see and nothing to hit
    float lowHeight;
    float highHeight;
    int slope;

    static BlockShape ofValue(int value);
};

/// The option that a saturation's offset stands for, in steps of three points: 0 under one point,
/// else the nearest multiple of three. Lets a paint program round as it likes.
int pixelStep(int offset);
