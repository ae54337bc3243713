#include "support/LevelMap.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace {

constexpr double edgeTolerance = 0.02;
constexpr int steps[4][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};

}  // namespace

LevelMap::LevelMap(const QImage& picture) : columns(picture.width()), rows(picture.height())
{
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column)
            pixels.push_back(LevelPixel::decode(picture.pixel(column, row)));
    }
}

const LevelPixel& LevelMap::pixel(const CellPosition& cell) const
{
    return pixels[std::size_t(cell.row * columns + cell.column)];
}

bool LevelMap::hasFloor(const CellPosition& cell) const
{
    return contains(cell) && blockKindOfHue(pixel(cell).hue) != BlockKind::None &&
           BlockShape::ofValue(pixel(cell).value).hasBody;
}

float LevelMap::x(const CellPosition& cell) const
{
    return (float(cell.column) - float(columns) * 0.5f) + 0.5f;
}

float LevelMap::y(const CellPosition& cell) const
{
    return (float(rows) * 0.5f - float(cell.row)) - 0.5f;
}

CellPosition LevelMap::cellAt(double x, double y) const
{
    return {int(std::floor(x + columns * 0.5)), int(std::floor(rows * 0.5 - y))};
}

bool LevelMap::contains(const CellPosition& cell) const
{
    return cell.column >= 0 && cell.column < columns && cell.row >= 0 && cell.row < rows;
}

std::vector<CellPosition>
LevelMap::cellsWhere(const std::function<bool(const LevelPixel&)>& is) const
{
    std::vector<CellPosition> found;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            if (is(pixel({column, row})))
                found.push_back({column, row});
        }
    }
    return found;
}

double LevelMap::edgeHeight(const CellPosition& cell, int towardsColumn, int towardsRow) const
{
    const BlockShape shape = BlockShape::ofValue(pixel(cell).value);
    if (shape.slope == flatSlope)
        return shape.highHeight;
    constexpr int highColumn[4] = {0, 1, 0, -1};
    constexpr int highRow[4] = {1, 0, -1, 0};
    const int along = highColumn[shape.slope] * towardsColumn + highRow[shape.slope] * towardsRow;
    if (along == 0)
        return -1.0;  // the side of a ramp: nothing rolls over it
    return along > 0 ? shape.highHeight : shape.lowHeight;
}

bool LevelMap::rolls(const CellPosition& from, const CellPosition& to, double drop) const
{
    if (!hasFloor(from) || !hasFloor(to))
        return false;
    const int column = to.column - from.column;
    const int row = to.row - from.row;
    const double leave = edgeHeight(from, column, row);
    const double enter = edgeHeight(to, -column, -row);
    if (leave < 0.0 || enter < 0.0)
        return false;
    return enter <= leave + edgeTolerance && enter >= leave - drop - edgeTolerance;
}

bool LevelMap::climbs(const CellPosition& from, const CellPosition& to) const
{
    const int column = to.column - from.column;
    const int row = to.row - from.row;
    const auto rises = [&](const CellPosition& cell) {
        return hasFloor(cell) &&
               edgeHeight(cell, column, row) > edgeHeight(cell, -column, -row) + edgeTolerance;
    };
    return rises(from) || rises(to);
}

std::vector<CellPosition> LevelMap::way(const CellPosition& from, const CellPosition& to,
                                        const StepFilter& allowed, double drop) const
{
    if (!contains(from) || !contains(to))
        return {};
    const auto index = [this](const CellPosition& cell) {
        return std::size_t(cell.row * columns + cell.column);
    };
    std::vector<int> cameFrom(pixels.size(), -1);
    std::deque<CellPosition> open{from};
    cameFrom[index(from)] = int(index(from));
    while (!open.empty() && cameFrom[index(to)] < 0) {
        const CellPosition cell = open.front();
        open.pop_front();
        for (const auto& step : steps) {
            const CellPosition next{cell.column + step[0], cell.row + step[1]};
            if (!contains(next) || cameFrom[index(next)] >= 0 || !rolls(cell, next, drop) ||
                !allowed(cell, next))
                continue;
            cameFrom[index(next)] = int(index(cell));
            open.push_back(next);
        }
    }
    if (cameFrom[index(to)] < 0)
        return {};
    std::vector<CellPosition> way{to};
    while (!(way.back() == from)) {
        const int before = cameFrom[index(way.back())];
        way.push_back({before % columns, before / columns});
    }
    std::reverse(way.begin(), way.end());
    return way;
}
