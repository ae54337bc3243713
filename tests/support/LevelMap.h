#pragma once

#include "level/LevelPixel.h"

#include <QImage>

#include <functional>
#include <vector>

/// A cell of a level picture, by column and row.
struct CellPosition
{
    int column;
    int row;

    bool operator==(const CellPosition& other) const
    {
        return column == other.column && row == other.row;
    }
};

/// What a player knows of a level from its picture: heights, ways and where things stand.
class LevelMap
{
public:
    explicit LevelMap(const QImage& picture);

    int width() const { return columns; }
    int height() const { return rows; }

    const LevelPixel& pixel(const CellPosition& cell) const;
    bool hasFloor(const CellPosition& cell) const;

    /// Centre of a cell on the board.
    float x(const CellPosition& cell) const;
    float y(const CellPosition& cell) const;
    /// The cell over which a point of the board lies; may be outside the picture.
    CellPosition cellAt(double x, double y) const;
    bool contains(const CellPosition& cell) const;

    /// All cells that the condition holds for, in scan order.
    std::vector<CellPosition> cellsWhere(const std::function<bool(const LevelPixel&)>& is) const;

    /// Says of a step between neighbours whether the ball may take it; asked of steps that the
    /// heights allow.
    using StepFilter = std::function<bool(const CellPosition& from, const CellPosition& to)>;

    /// The shortest way, both ends included, along steps that a rolling ball can take: never up an
    /// edge, down one only by `drop`. Empty if there is none.
    std::vector<CellPosition> way(const CellPosition& from, const CellPosition& to,
                                  const StepFilter& allowed, double drop = 0.05) const;

    /// Whether a ball can roll from a cell on to its neighbour, by the heights of their edges.
    bool rolls(const CellPosition& from, const CellPosition& to, double drop) const;

    /// Whether the step leads on to a ramp's low edge or over its high one.
    bool climbs(const CellPosition& from, const CellPosition& to) const;

private:
    double edgeHeight(const CellPosition& cell, int towardsColumn, int towardsRow) const;

    int columns;
    int rows;
    std::vector<LevelPixel> pixels;
};
