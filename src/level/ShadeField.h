#pragma once

#include "level/BlockShape.h"
#include "level/Hovering.h"

#include <osg/Vec3f>

#include <vector>

/// What light the board gets, cell by cell: a small picture of every cell that holds, in the four
/// bytes of a point, how deep it lies in the shadow that the lamp makes, how much of the sky it
/// sees, how high it lies, and what hovering things leave of the lamp. Pictures of neighbours share
/// their border's points, each with the height of its own cell, so that light runs on where the
/// wood does and breaks where the wood breaks.
///
/// Board coordinates; columns count along +x and rows along +y. Round the cells lies a ring of
/// empty ones. Knows no scene graph: numbers in, bytes out.
class ShadeField
{
public:
    /// Of the ranges that a byte stands for, in units.
    static constexpr float lowestShadow = -0.5f;
    static constexpr float shadowRange = 3.0f;
    static constexpr float lowestTop = -2.0f;
    static constexpr float topRange = 6.0f;

    /// All cells are holes.
    ShadeField(int columns, int rows);

    /// The upper face of what stands in a cell.
    void setTop(int column, int row, const CornerHeights& heights);
    /// A cell that one looks through.
    void setHole(int column, int row);
    void setHovering(const std::vector<Hovering>& things);

    /// Works out what has changed, for a lamp that stands there in board coordinates: all of a
    /// board of ordinary size in two calls, of a huge one in as many as keep a call short. False if
    /// there was nothing to do.
    bool update(const osg::Vec3f& lamp);

    /// The whole picture, ring included: rows of width() points of four bytes, lowest y first.
    const unsigned char* points() const { return bytes.data(); }
    int width() const { return (columns + 2) * perCell; }
    int height() const { return (rows + 2) * perCell; }
    /// Points along each edge of a cell's picture, the first and the last on the cell's borders.
    int pointsOfCell() const { return perCell; }

    /// How far the edge of the shadow passes over a point of a cell's face, (0, 0) to (1, 1) in it,
    /// in units; below zero in the light.
    float shadowDepth(int column, int row, float u, float v, const osg::Vec3f& lamp) const;
    /// How much of the sky a point of a cell's face sees, 0 to 1.
    float openness(int column, int row, float u, float v) const;

private:
    struct Cell
    {
        CornerHeights top;
        bool flat = true;
        bool hole = true;
    };

    bool isOutside(int column, int row) const;
    std::size_t indexOf(int column, int row) const;
    const Cell& cell(int column, int row) const { return cells[indexOf(column, row)]; }
    float heightAt(float x, float y) const;
    float partOf(int index) const { return float(index) / float(perCell - 1); }
    void change(int column, int row, const Cell& next);
    void workOutRow(int row);
    void workOutOpenness(int column, int row);
    void workOutShadow(int column, int row);
    void smoothRow(int row);
    bool runsOn(int column, int row, int aside, int along) const;
    void smoothCell(int column, int row);
    std::size_t placeOf(int column, int row, int i, int j) const;
    void throwShadow(const Hovering& thing, int row);
    unsigned char* point(int column, int row, int i, int j);

    const int columns;
    const int rows;
    const int perCell;
    std::vector<Cell> cells;
    std::vector<bool> staleOpenness;
    std::vector<Hovering> hovering;
    std::vector<unsigned char> bytes;
    std::vector<unsigned char> depths;  // in the shadow, by point, before they are smoothed
    std::vector<bool> unsmoothedRows;
    float highestTop = 0.0f;
    osg::Vec3f lampPlace;
    int staleRows;
    int nextRow = -1;
};
