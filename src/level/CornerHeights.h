#pragma once

/// Heights of a block's upper face over the board, at the corners of its cell.
struct CornerHeights
{
    float leftFront = 0.0f;   // at -x, -y
    float rightFront = 0.0f;  // at +x, -y
    float leftBack = 0.0f;    // at -x, +y
    float rightBack = 0.0f;   // at +x, +y

    /// Of a block with this slope, 0 to 3 or flatSlope, whose low and high height are then one.
    static CornerHeights of(float lowHeight, float highHeight, int slope);

    /// The face at a place in the cell, (0, 0) at -x, -y to (1, 1) at +x, +y.
    float at(float u, float v) const;

    /// Sunk into the board to this part of its heights, and then raised.
    CornerHeights moved(float part, float lift) const;

    bool isFlat() const;
    float highest() const;
};
