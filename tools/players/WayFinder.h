#pragma once

#include "LevelMap.h"

#include <vector>

using Way = std::vector<CellPosition>;

/// Finds the way that a player would take: short, with few corners, and away from holes where there
/// is room. Knows the picture and nothing else.
class WayFinder
{
public:
    /// The map has to outlive this. `caution` is what the neighbourhood of a hole costs, in cells
    /// of a detour.
    WayFinder(const LevelMap& map, double caution);

    /// From a cell to the nearest of the targets, both included; empty if there is none. Rolls over
    /// an edge if it must, over a high one if nothing else is left; never into a closed cell.
    Way way(const CellPosition& from, const std::vector<CellPosition>& targets,
            const std::vector<CellPosition>& closed = {}) const;

    /// How many holes are beside a cell; those at its corners count half.
    double exposure(const CellPosition& cell) const { return exposures[index(cell)]; }

private:
    struct Step
    {
        std::size_t to;
        int direction;  // 0 to 3; 4 for a leap
        double cost;
    };
    using Graph = std::vector<std::vector<Step>>;

    std::size_t index(const CellPosition& cell) const
    {
        return std::size_t(cell.row * map.width() + cell.column);
    }
    CellPosition cellOf(std::size_t index) const
    {
        return {int(index) % map.width(), int(index) / map.width()};
    }
    double exposureOf(const CellPosition& cell) const;
    double costOf(const CellPosition& from, const CellPosition& to) const;
    Graph graphFor(double drop) const;
    Way wayIn(const Graph& graph, const CellPosition& from,
              const std::vector<CellPosition>& targets,
              const std::vector<CellPosition>& closed) const;

    const LevelMap& map;
    const double caution;
    std::vector<double> exposures;
    Graph usual;
    Graph desperate;
};
