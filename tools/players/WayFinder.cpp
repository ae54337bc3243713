#include "WayFinder.h"

#include "level/BlockOptions.h"

#include <queue>

#include <algorithm>
#include <limits>

namespace {

constexpr double usualDrop = 0.55;  // world units
constexpr double desperateDrop = 1.6;
// What is worth a detour, in cells.
constexpr double cornerCost = 0.6;
constexpr double dropCost = 3.0;
constexpr double trapdoorCost = 3.0;
constexpr double springCost = 6.0;  // of one that is not there to be taken
constexpr double toggleCost = 8.0;  // a button that would undo what it has done
constexpr int directions = 5;
constexpr int leap = 4;

int directionOf(const CellPosition& from, const CellPosition& to)
{
    const int column = to.column - from.column;
    const int row = to.row - from.row;
    if (std::abs(column) + std::abs(row) != 1)
        return leap;
    return column != 0 ? (column > 0 ? 0 : 1) : (row > 0 ? 2 : 3);
}

}  // namespace

WayFinder::WayFinder(const LevelMap& levelMap, double cautionOfPlayer)
    : map(levelMap), caution(cautionOfPlayer)
{
    for (int i = 0; i < map.width() * map.height(); ++i)
        exposures.push_back(exposureOf(cellOf(std::size_t(i))));
    usual = graphFor(usualDrop);
    desperate = graphFor(desperateDrop);
}

double WayFinder::exposureOf(const CellPosition& cell) const
{
    double holes = 0.0;
    for (int row = -1; row <= 1; ++row) {
        for (int column = -1; column <= 1; ++column) {
            const CellPosition beside{cell.column + column, cell.row + row};
            const bool bad =
                !map.hasFloor(beside) || map.isDanger(beside) || map.is(beside, BlockKind::Ghost);
            if (bad)
                holes += row == 0 || column == 0 ? 1.0 : 0.5;
        }
    }
    return holes;
}

double WayFinder::costOf(const CellPosition& from, const CellPosition& to) const
{
    double cost = 1.0 + caution * exposure(to);
    if (map.isTrapdoor(to))
        cost += trapdoorCost;
    if (map.is(to, BlockKind::Button) &&
        ButtonOption::ofSaturation(map.pixel(to).saturation).mode == ButtonMode::Toggle)
        cost += toggleCost;
    if (directionOf(from, to) != leap && !map.rolls(from, to, 0.05))
        cost += dropCost + (map.isSpring(to) ? springCost : 0.0);
    return cost;
}

WayFinder::Graph WayFinder::graphFor(double drop) const
{
    Graph graph(exposures.size());
    for (std::size_t from = 0; from < graph.size(); ++from) {
        const CellPosition cell = cellOf(from);
        if (!map.hasFloor(cell))
            continue;
        for (const CellPosition& next : map.next(cell, drop))
            if (!map.isDanger(next))
                graph[from].push_back({index(next), directionOf(cell, next), costOf(cell, next)});
    }
    return graph;
}

Way WayFinder::way(const CellPosition& from, const std::vector<CellPosition>& targets,
                   const std::vector<CellPosition>& closed) const
{
    if (!map.contains(from) || targets.empty())
        return {};
    const Way found = wayIn(usual, from, targets, closed);
    return found.empty() ? wayIn(desperate, from, targets, closed) : found;
}

Way WayFinder::wayIn(const Graph& graph, const CellPosition& from,
                     const std::vector<CellPosition>& targets,
                     const std::vector<CellPosition>& closed) const
{
    // A state is a cell and the direction in which the ball has come there.
    using Entry = std::pair<double, std::size_t>;
    std::vector<double> costs(graph.size() * directions, std::numeric_limits<double>::infinity());
    std::vector<std::size_t> cameFrom(costs.size(), costs.size());
    std::vector<bool> isTarget(graph.size(), false);
    for (const CellPosition& target : targets)
        isTarget[index(target)] = true;
    std::vector<bool> isClosed(graph.size(), false);
    for (const CellPosition& cell : closed)
        isClosed[index(cell)] = true;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
    const std::size_t start = index(from) * directions + leap;
    costs[start] = 0.0;
    open.emplace(0.0, start);
    while (!open.empty()) {
        const auto [cost, state] = open.top();
        open.pop();
        if (cost > costs[state])
            continue;
        if (isTarget[state / directions]) {
            Way way;
            for (std::size_t at = state; at != costs.size(); at = cameFrom[at])
                way.push_back(cellOf(at / directions));
            std::reverse(way.begin(), way.end());
            return way;
        }
        const int came = int(state % directions);
        for (const Step& step : graph[state / directions]) {
            if (isClosed[step.to])
                continue;
            const bool turns = came != leap && step.direction != came;
            const std::size_t next = step.to * directions + std::size_t(step.direction);
            const double total = cost + step.cost + (turns ? cornerCost : 0.0);
            if (total >= costs[next])
                continue;
            costs[next] = total;
            cameFrom[next] = state;
            open.emplace(total, next);
        }
    }
    return {};
}
