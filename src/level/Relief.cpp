#include "level/Relief.h"

#include <cmath>

namespace {

constexpr float visibleStep = 0.02f;  // units

}  // namespace

Relief::Relief(int columnCount, int rowCount)
    : columns(columnCount), rows(rowCount), cells(std::size_t(columnCount) * std::size_t(rowCount))
{
}

int Relief::columnOf(float x) const
{
    return int(std::floor(x + 0.5f * float(columns)));
}

int Relief::rowOf(float y) const
{
    return int(std::floor(y + 0.5f * float(rows)));
}

float Relief::xOf(int column) const
{
    return float(column) + 0.5f - 0.5f * float(columns);
}

float Relief::yOf(int row) const
{
    return float(row) + 0.5f - 0.5f * float(rows);
}

void Relief::set(int column, int row, const Cell& cell)
{
    cells[std::size_t(row) * std::size_t(columns) + std::size_t(column)] = cell;
}

const Relief::Cell& Relief::at(int column, int row) const
{
    static const Cell empty;
    const bool inside = column >= 0 && column < columns && row >= 0 && row < rows;
    return inside ? cells[std::size_t(row) * std::size_t(columns) + std::size_t(column)] : empty;
}

float Relief::solidHeight(int column, int row) const
{
    const Cell& cell = at(column, row);
    return cell.merged && cell.top.isFlat() ? cell.top.leftFront : 0.0f;
}

osg::Vec4f Relief::openEdges(int column, int row) const
{
    const Cell& cell = at(column, row);
    // An edge is compared at its middle, (u, v): both faces are plane.
    const auto open = [&](int aside, int along, float u, float v) {
        const Cell& beyond = at(column + aside, row + along);
        if (!beyond.filled || beyond.restless || cell.restless)
            return 1.0f;
        const float drop = cell.top.at(u, v) - beyond.top.at(u - float(aside), v - float(along));
        return drop > visibleStep ? 1.0f : 0.0f;
    };
    return osg::Vec4f(open(1, 0, 1.0f, 0.5f), open(0, 1, 0.5f, 1.0f), open(-1, 0, 0.0f, 0.5f),
                      open(0, -1, 0.5f, 0.0f));
}
