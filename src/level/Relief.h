#pragma once

#include "level/BlockShape.h"

#include <osg/Vec4f>

#include <vector>

/// What stands in the cells of a board when its level begins. Columns count along +x and rows along
/// +y; cells beyond the board are empty.
class Relief
{
public:
    struct Cell
    {
        CornerHeights top;
        bool filled = false;    // something stands there
        bool merged = false;    // it is part of the board's own body
        bool restless = false;  // may rise, sink or vanish, and looks it
    };

    Relief(int columns, int rows);

    int columnCount() const { return columns; }
    int rowCount() const { return rows; }

    /// The cell around this place in board coordinates.
    int columnOf(float x) const;
    int rowOf(float y) const;
    /// The middle of a cell in board coordinates.
    float xOf(int column) const;
    float yOf(int row) const;

    void set(int column, int row, const Cell& cell);
    const Cell& at(int column, int row) const;

    /// The height up to which a cell is filled for good from edge to edge; 0 for a hole or a ramp.
    float solidHeight(int column, int row) const;

    /// For each edge of a cell's upper face, towards +x, +y, -x and -y: 1 where it ends in the
    /// open, 0 where the wood runs on or goes up.
    osg::Vec4f openEdges(int column, int row) const;

private:
    const int columns;
    const int rows;
    std::vector<Cell> cells;
};
