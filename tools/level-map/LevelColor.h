#pragma once

#include <QColor>

#include <optional>

/// What a level author wants to paint into a cell: hue in degrees, saturation and value in percent,
/// alpha from 0 to 255.
struct Cell
{
    int hue;
    int saturation;
    int value;
    int alpha = 255;
};

/// The colour nearest to the cell's that the game decodes to it; nothing for a cell that eight bits
/// a channel cannot hold, as a dark one of a fine saturation.
std::optional<QRgb> nearestColor(const Cell& cell);
