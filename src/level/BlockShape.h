#pragma once

/// The slope of a block without one.
constexpr int flatSlope = 4;

/// The smallest value that gives a block a body.
constexpr int firstBodyValue = 57;

/// A side of a cell, seen from its middle, in board coordinates: +x is the right of the picture, +y
/// its top.
struct CellSide
{
    int x;
    int y;
};

/// Where a ramp's high edge is, by its slope from 0 to 3.
constexpr CellSide highSides[] = {{0, -1}, {1, 0}, {0, 1}, {-1, 0}};

/// Heights of a block's upper face over the board, at its corners.
struct CornerHeights
{
    float leftFront = 0.0f;   // at -x, -y
    float rightFront = 0.0f;  // at +x, -y
    float leftBack = 0.0f;    // at -x, +y
    float rightBack = 0.0f;   // at +x, +y

    static CornerHeights of(float lowHeight, float highHeight, int slope);

    /// The face at a place in the cell, (0, 0) at -x, -y to (1, 1) at +x, +y.
    float at(float u, float v) const;

    /// Sunk into the board to this part of its heights, and then raised.
    CornerHeights moved(float part, float lift) const;

    bool isFlat() const;
    float highest() const;
};

/// What a pixel's value says of a block's body. Heights are in world units above the board.
struct BlockShape
{
    bool hasBody;  // false under firstBodyValue: nothing to see and nothing to hit
    float lowHeight;
    float highHeight;
    int slope;

    static BlockShape ofValue(int value);
};
