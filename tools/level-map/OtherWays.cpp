#include "OtherWays.h"

#include "LevelWays.h"
#include "level/BlockShape.h"

#include <algorithm>
#include <cmath>

namespace {

using Cells = std::vector<CellPosition>;

constexpr double levelRoad = 0.05;  // world units: what is higher or lower is another road
constexpr int leastBetween = 4;     // cells: two ways round a pillar are one
constexpr int parts = 4;            // of a way, at whose ends it is closed

/// All cells side by side with this one, across the way that leads on from it.
Cells acrossTheRoad(const LevelMap& map, const CellPosition& here, const CellPosition& next)
{
    const bool alongRow = next.row == here.row;
    Cells cells{here};
    for (const int step : {-1, 1}) {
        const auto beside = [&](const CellPosition& cell) {
            return CellPosition{cell.column + (alongRow ? 0 : step),
                                cell.row + (alongRow ? step : 0)};
        };
        CellPosition cell = here;
        while (map.contains(beside(cell)) && map.rolls(cell, beside(cell), levelRoad) &&
               map.rolls(beside(cell), cell, levelRoad)) {
            cell = beside(cell);
            cells.push_back(cell);
        }
    }
    return cells;
}

Cells cellsOf(const std::vector<Stride>& way)
{
    Cells cells;
    for (const Stride& stride : way)
        cells.push_back(stride.cell);
    return cells;
}

/// Whether a line that leads round through these cells has this one inside.
bool surrounds(const Cells& loop, const CellPosition& cell)
{
    bool inside = false;
    for (std::size_t i = 0, before = loop.size() - 1; i < loop.size(); before = i++) {
        const CellPosition& a = loop[i];
        const CellPosition& b = loop[before];
        if ((a.row > cell.row) != (b.row > cell.row) &&
            cell.column <
                double(b.column - a.column) * (cell.row - a.row) / (b.row - a.row) + a.column)
            inside = !inside;
    }
    return inside;
}

double topOf(const LevelMap& map, const CellPosition& cell)
{
    return double(BlockShape::ofValue(map.pixel(cell).value).highHeight);
}

/// How many cells between two ways from one place to another are no part of the same road.
int cellsBetween(const LevelMap& map, Cells oneWay, const Cells& otherWay)
{
    const double height = topOf(map, oneWay[oneWay.size() / 2]);
    oneWay.insert(oneWay.end(), otherWay.rbegin(), otherWay.rend());
    int count = 0;
    for (int row = 0; row < map.height(); ++row) {
        for (int column = 0; column < map.width(); ++column) {
            const CellPosition cell{column, row};
            const bool isRoad = map.hasFloor(cell) && !map.isDanger(cell) &&
                                std::abs(topOf(map, cell) - height) < levelRoad;
            const bool isOnAWay = std::find(oneWay.begin(), oneWay.end(), cell) != oneWay.end();
            count += !isRoad && !isOnAWay && surrounds(oneWay, cell) ? 1 : 0;
        }
    }
    return count;
}

bool hasOtherWay(const LevelMap& map, const CellPosition& from, const CellPosition& to)
{
    const std::vector<Stride> way = LevelWays(map, from).way(from, to);
    for (std::size_t part = 1; part < parts; ++part) {
        const std::size_t here = way.size() * part / parts;
        if (here == 0 || here + 1 >= way.size())
            continue;
        const Cells closed = acrossTheRoad(map, way[here].cell, way[here + 1].cell);
        if (std::find(closed.begin(), closed.end(), from) != closed.end() ||
            std::find(closed.begin(), closed.end(), to) != closed.end())
            continue;
        const std::vector<Stride> other = LevelWays(map, from, closed).way(from, to);
        if (!other.empty() && cellsBetween(map, cellsOf(way), cellsOf(other)) >= leastBetween)
            return true;
    }
    return false;
}

}  // namespace

OtherWays otherWays(const LevelMap& map, const std::vector<CellPosition>& stations)
{
    OtherWays count;
    for (std::size_t i = 1; i < stations.size(); ++i) {
        ++count.stretches;
        count.twofold += hasOtherWay(map, stations[i - 1], stations[i]) ? 1 : 0;
    }
    return count;
}
