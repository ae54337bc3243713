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
    using PixelTest = std::function<bool(const LevelPixel&)>;
    std::vector<CellPosition> cellsWhere(const PixelTest& is) const;

    /// Says of a step between neighbours whether the ball may take it; asked of steps that the
    /// heights allow.
    using StepFilter = std::function<bool(const CellPosition& from, const CellPosition& to)>;

    /// The shortest way, both ends included, along steps that a rolling ball can take: never up an
    /// edge, down one only by `drop`. From a portal it goes on before the mouth of a partner, from
    /// a weight at the far edge of a chasm. Empty if there is none.
    std::vector<CellPosition> way(const CellPosition& from, const CellPosition& to,
                                  const StepFilter& allowed, double drop = 0.05) const;

    /// Where a ball in this cell can be next: in a neighbouring cell that it can roll to, before
    /// the mouth of a portal's partner, at the far edge of a chasm that a weight carries it over.
    std::vector<CellPosition> next(const CellPosition& from, double drop) const;

    /// Whether a ball can roll from a cell on to its neighbour, by the heights of their edges: at
    /// either end of an elevator's travel, up an edge from a spring, into a portal by its mouth.
    bool rolls(const CellPosition& from, const CellPosition& to, double drop) const;
    /// The same for cells that stand this high now: above what the picture says, by `fromShift` and
    /// `toShift`.
    bool rollsAt(const CellPosition& from, double fromShift, const CellPosition& to, double toShift,
                 double drop) const;

    /// Whether the step leads on to a ramp's low edge or over its high one.
    bool climbs(const CellPosition& from, const CellPosition& to) const;

    /// Whether the step is taken without braking: on to a spring, weight, portal or trapdoor, and
    /// from there on.
    bool hurries(const CellPosition& from, const CellPosition& to) const;

    bool is(const CellPosition& cell, BlockKind kind) const;
    /// Costs lives or coins, or does not let go of the ball again.
    bool isDanger(const CellPosition& cell) const;
    /// Whether a danger is near enough to be hit by a ball that does not turn in time.
    bool isNextToDanger(const CellPosition& cell) const;
    bool isSpring(const CellPosition& cell) const;
    bool isTrapdoor(const CellPosition& cell) const;
    bool isWeight(const CellPosition& cell) const;

    bool hasMouthOnTop(const CellPosition& portal) const;
    /// The cell before a portal's mouth; one outside the picture for a mouth on the top.
    CellPosition beforeMouth(const CellPosition& portal) const;
    /// The height of a block's edge; below 0 for the side of a ramp.
    double edgeHeight(const CellPosition& cell, int towardsColumn, int towardsRow) const;

private:
    std::vector<double> shifts(const CellPosition& cell) const;
    bool entersPortal(const CellPosition& from, const CellPosition& to) const;
    std::vector<CellPosition> leaps(const CellPosition& from) const;
    std::vector<CellPosition> crossings(const CellPosition& portal) const;
    std::vector<CellPosition> flights(const CellPosition& weight) const;

    int columns;
    int rows;
    std::vector<LevelPixel> pixels;
};
