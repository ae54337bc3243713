#include "level/ShadeField.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

enum Channel { Shadow, Openness, Height, Left, channels };

constexpr float visibleLampMove = 0.01f;  // units, of a lamp some twenty away
constexpr float visibleTopMove = 0.01f;
constexpr int pointsOfACall = 18000;

// Where the sky is looked for: directions over the board and distances in units.
constexpr float diagonal = 0.70710678f;
constexpr float directions[8][2] = {
    {1, 0},  {diagonal, diagonal},   {0, 1},  {-diagonal, diagonal},
    {-1, 0}, {-diagonal, -diagonal}, {0, -1}, {diagonal, -diagonal}};
constexpr float distances[] = {0.07f, 0.21f, 0.35f, 0.5f, 0.65f, 0.8f};
constexpr float sightRange = 0.95f;   // further things hide nothing, and near ones gradually less
constexpr float pitOpenness = 0.45f;  // of what is seen of the sky from the bottom of a pit

constexpr float hoverBlur = 0.09f;  // units, at the thing itself, and more for each unit away
constexpr float hoverSpread = 0.13f;
constexpr float darkestHover = 0.3f;  // what a coin leaves of the lamp

constexpr int mostPoints = 8;  // along a cell

int pointsFor(int cells)
{
    if (cells <= 32 * 32)
        return mostPoints;
    if (cells <= 64 * 64)
        return 6;
    return cells <= 128 * 128 ? 4 : 2;
}

unsigned char byteOf(float part)
{
    return static_cast<unsigned char>(std::clamp(part, 0.0f, 1.0f) * 255.0f + 0.5f);
}

float smoothStep(float from, float to, float value)
{
    const float part = std::clamp((value - from) / (to - from), 0.0f, 1.0f);
    return part * part * (3.0f - 2.0f * part);
}

bool areAlike(const CornerHeights& a, const CornerHeights& b)
{
    return std::abs(a.leftFront - b.leftFront) < visibleTopMove &&
           std::abs(a.rightFront - b.rightFront) < visibleTopMove &&
           std::abs(a.leftBack - b.leftBack) < visibleTopMove &&
           std::abs(a.rightBack - b.rightBack) < visibleTopMove;
}

}  // namespace

ShadeField::ShadeField(int columnCount, int rowCount)
    : columns(columnCount),
      rows(rowCount),
      perCell(pointsFor(columnCount * rowCount)),
      cells(std::size_t(columnCount + 2) * std::size_t(rowCount + 2)),
      staleOpenness(cells.size(), true),
      bytes(std::size_t(width()) * std::size_t(height()) * channels, 0),
      depths(std::size_t(width()) * std::size_t(height()), 0),
      unsmoothedRows(std::size_t(rowCount + 2), false),
      staleRows(rowCount + 2)
{
}

bool ShadeField::isOutside(int column, int row) const
{
    return column < 0 || column >= columns || row < 0 || row >= rows;
}

std::size_t ShadeField::indexOf(int column, int row) const
{
    return std::size_t(row + 1) * std::size_t(columns + 2) + std::size_t(column + 1);
}

std::size_t ShadeField::placeOf(int column, int row, int i, int j) const
{
    const std::size_t x = std::size_t((column + 1) * perCell + i);
    const std::size_t y = std::size_t((row + 1) * perCell + j);
    return y * std::size_t(width()) + x;
}

unsigned char* ShadeField::point(int column, int row, int i, int j)
{
    return &bytes[placeOf(column, row, i, j) * channels];
}

void ShadeField::setTop(int column, int row, const CornerHeights& heights)
{
    change(column, row, {heights, heights.isFlat(), false});
}

void ShadeField::setHole(int column, int row)
{
    change(column, row, Cell());
}

void ShadeField::change(int column, int row, const Cell& next)
{
    Cell& known = cells[indexOf(column, row)];
    if (known.hole == next.hole && areAlike(known.top, next.top))
        return;
    known = next;
    highestTop = std::max(highestTop, next.top.highest());
    for (int y = row - 1; y <= row + 1; ++y)
        for (int x = column - 1; x <= column + 1; ++x)
            staleOpenness[indexOf(x, y)] = true;
    staleRows = rows + 2;
}

void ShadeField::setHovering(const std::vector<Hovering>& things)
{
    if (things == hovering)
        return;
    hovering = things;
    staleRows = rows + 2;
}

bool ShadeField::update(const osg::Vec3f& lamp)
{
    if ((lamp - lampPlace).length() > visibleLampMove) {
        lampPlace = lamp;
        staleRows = rows + 2;
    }
    if (staleRows == 0)
        return false;
    for (int budget = pointsOfACall; staleRows > 0 && budget > 0; --staleRows) {
        workOutRow(nextRow);
        for (int row = std::max(nextRow - 1, -1); row <= std::min(nextRow + 1, rows); ++row)
            unsmoothedRows[std::size_t(row + 1)] = true;
        nextRow = nextRow == rows ? -1 : nextRow + 1;
        budget -= columns * perCell * perCell;
    }
    for (int row = -1; row <= rows; ++row)
        if (unsmoothedRows[std::size_t(row + 1)])
            smoothRow(row);
    return true;
}

void ShadeField::workOutRow(int row)
{
    for (int column = -1; column <= columns; ++column) {
        if (staleOpenness[indexOf(column, row)])
            workOutOpenness(column, row);
        workOutShadow(column, row);
    }
    for (const Hovering& thing : hovering)
        throwShadow(thing, row);
}

void ShadeField::workOutOpenness(int column, int row)
{
    staleOpenness[indexOf(column, row)] = false;
    const CornerHeights& top = cell(column, row).top;
    for (int j = 0; j < perCell; ++j) {
        for (int i = 0; i < perCell; ++i) {
            unsigned char* const known = point(column, row, i, j);
            known[Openness] = byteOf(openness(column, row, partOf(i), partOf(j)));
            known[Height] = byteOf((top.at(partOf(i), partOf(j)) - lowestTop) / topRange);
        }
    }
}

void ShadeField::workOutShadow(int column, int row)
{
    for (int j = 0; j < perCell; ++j) {
        for (int i = 0; i < perCell; ++i) {
            const float depth = shadowDepth(column, row, partOf(i), partOf(j), lampPlace);
            depths[placeOf(column, row, i, j)] = byteOf((depth - lowestShadow) / shadowRange);
            point(column, row, i, j)[Left] = 255;
        }
    }
}

/// Whether a cell's face goes on in a neighbour's without a step.
bool ShadeField::runsOn(int column, int row, int aside, int along) const
{
    const int nextColumn = column + aside;
    const int next = row + along;
    if (nextColumn < -1 || nextColumn > columns || next < -1 || next > rows)
        return false;
    const CornerHeights& a = cell(column, row).top;
    const CornerHeights& b = cell(nextColumn, next).top;
    const float u = 0.5f * float(aside + 1);
    const float v = 0.5f * float(along + 1);
    return std::abs(a.at(u, v) - b.at(u - float(aside), v - float(along))) < visibleTopMove;
}

void ShadeField::smoothRow(int row)
{
    unsmoothedRows[std::size_t(row + 1)] = false;
    for (int column = -1; column <= columns; ++column)
        smoothCell(column, row);
}

/// The sides of a shadow are as sharp as a point is wide, and would be seen as a saw: a point is
/// mixed with those round it, also beyond the cell's border where the wood runs on.
void ShadeField::smoothCell(int column, int row)
{
    // The cell's points, and a line more on every side.
    unsigned char known[mostPoints + 2][mostPoints + 2];
    const int last = perCell - 1;
    const auto copyLine = [&](int line, int fromRow, int j, bool fromLeft, bool fromRight) {
        // Neighbours share the border's points, so that the next one is their second.
        const unsigned char* const own = &depths[placeOf(column, fromRow, 0, j)];
        known[line][0] = fromLeft ? own[-2] : own[0];
        std::copy(own, own + perCell, &known[line][1]);
        known[line][perCell + 1] = fromRight ? own[perCell + 1] : own[last];
    };
    const bool left = runsOn(column, row, -1, 0);
    const bool right = runsOn(column, row, 1, 0);
    for (int j = 0; j < perCell; ++j)
        copyLine(j + 1, row, j, left, right);
    if (runsOn(column, row, 0, -1))
        copyLine(0, row - 1, last - 1, runsOn(column, row - 1, -1, 0),
                 runsOn(column, row - 1, 1, 0));
    else
        copyLine(0, row, 0, left, right);
    if (runsOn(column, row, 0, 1))
        copyLine(perCell + 1, row + 1, 1, runsOn(column, row + 1, -1, 0),
                 runsOn(column, row + 1, 1, 0));
    else
        copyLine(perCell + 1, row, last, left, right);

    for (int j = 0; j < perCell; ++j) {
        unsigned char* smoothed = point(column, row, 0, j);
        for (int i = 0; i < perCell; ++i, smoothed += channels) {
            const auto across = [&](int line) {
                return known[line][i] + 2 * known[line][i + 1] + known[line][i + 2];
            };
            const int sum = across(j) + 2 * across(j + 1) + across(j + 2);
            smoothed[Shadow] = static_cast<unsigned char>((sum + 8) / 16);
        }
    }
}

float ShadeField::heightAt(float x, float y) const
{
    const int column = int(std::floor(x));
    const int row = int(std::floor(y));
    if (isOutside(column, row))
        return 0.0f;
    const Cell& there = cell(column, row);
    return there.flat ? there.top.leftFront : there.top.at(x - float(column), y - float(row));
}

float ShadeField::openness(int column, int row, float u, float v) const
{
    const Cell& own = cell(column, row);
    const float height = own.top.at(u, v);
    const float x = float(column) + u;
    const float y = float(row) + v;
    float hidden = 0.0f;
    for (const auto& direction : directions) {
        float most = 0.0f;
        for (const float distance : distances) {
            const float over =
                heightAt(x + direction[0] * distance, y + direction[1] * distance) - height;
            if (over <= 0.0f)
                continue;
            const float sine = over / std::sqrt(over * over + distance * distance);
            const float part = distance / sightRange;
            most = std::max(most, sine * (1.0f - part * part));
        }
        hidden += most;
    }
    const float open = 1.0f - hidden / float(std::size(directions));
    return own.hole && !isOutside(column, row) ? open * pitOpenness : open;
}

// A walk over the cells between the point and the lamp. The ray is straight and faces are plane:
// what stands over it furthest stands so where the ray enters a cell or leaves it.
float ShadeField::shadowDepth(int column, int row, float u, float v, const osg::Vec3f& lamp) const
{
    const float x = float(column) + u;
    const float y = float(row) + v;
    const float z = cell(column, row).top.at(u, v);
    const float wayX = lamp.x() + 0.5f * float(columns) - x;
    const float wayY = lamp.y() + 0.5f * float(rows) - y;
    const float wayZ = lamp.z() - z;
    const int stepX = wayX > 0.0f ? 1 : -1;
    const int stepY = wayY > 0.0f ? 1 : -1;
    // In parts of the way. One that leads along a border never meets it.
    constexpr float never = std::numeric_limits<float>::max();
    const float perColumn = wayX != 0.0f ? 1.0f / std::abs(wayX) : never;
    const float perRow = wayY != 0.0f ? 1.0f / std::abs(wayY) : never;
    float toColumn = wayX != 0.0f ? (wayX > 0.0f ? 1.0f - u : u) * perColumn : never;
    float toRow = wayY != 0.0f ? (wayY > 0.0f ? 1.0f - v : v) * perRow : never;

    // What does not stand above the wood at the border of the point's own cell runs on with it.
    const float leaves = std::min({toColumn, toRow, 1.0f});
    const float surface = cell(column, row)
                              .top.at(std::clamp(u + leaves * wayX, 0.0f, 1.0f),
                                      std::clamp(v + leaves * wayY, 0.0f, 1.0f)) +
                          visibleTopMove;
    float deepest = lowestShadow;
    const auto passUnder = [&](float height, float ray) {
        if (height > surface)
            deepest = std::max(deepest, height - ray);
    };
    while (true) {
        const float enters = std::min(toColumn, toRow);
        const float ray = z + enters * wayZ;
        if (enters >= 1.0f || ray > highestTop - lowestShadow)
            return deepest;
        if (toColumn < toRow) {
            column += stepX;
            toColumn += perColumn;
        } else {
            row += stepY;
            toRow += perRow;
        }
        if (column < -1 || column > columns || row < -1 || row > rows)
            return deepest;
        const Cell& met = cell(column, row);
        if (met.flat) {
            passUnder(met.top.leftFront, ray);
            continue;
        }
        for (const float part : {enters, std::min(toColumn, toRow)}) {
            const float inX = std::clamp(x + part * wayX - float(column), 0.0f, 1.0f);
            const float inY = std::clamp(y + part * wayY - float(row), 0.0f, 1.0f);
            passUnder(met.top.at(inX, inY), z + part * wayZ);
        }
    }
}

void ShadeField::throwShadow(const Hovering& thing, int row)
{
    const osg::Vec3f fromLamp = thing.center - lampPlace;
    if (fromLamp.z() >= 0.0f)
        return;
    // Somewhere between the thing and where its shadow would fall on the board's plane.
    const osg::Vec3f lowest = thing.center - fromLamp * (thing.center.z() / fromLamp.z());
    const float reach = thing.radius + hoverBlur + hoverSpread * (lowest - thing.center).length();
    const float halfColumns = 0.5f * float(columns);
    const float halfRows = 0.5f * float(rows);
    const float front = std::min(thing.center.y(), lowest.y()) - reach + halfRows;
    const float back = std::max(thing.center.y(), lowest.y()) + reach + halfRows;
    if (back < float(row) || front > float(row + 1))
        return;
    const float left = std::min(thing.center.x(), lowest.x()) - reach + halfColumns;
    const float right = std::max(thing.center.x(), lowest.x()) + reach + halfColumns;
    const int first = std::max(int(std::floor(left)), -1);
    const int last = std::min(int(std::floor(right)), columns);
    for (int column = first; column <= last; ++column) {
        const CornerHeights& top = cell(column, row).top;
        for (int j = 0; j < perCell; ++j) {
            for (int i = 0; i < perCell; ++i) {
                const osg::Vec3f place(float(column) + partOf(i) - halfColumns,
                                       float(row) + partOf(j) - halfRows,
                                       top.at(partOf(i), partOf(j)));
                osg::Vec3f toLamp = lampPlace - place;
                toLamp.normalize();
                const osg::Vec3f toThing = thing.center - place;
                const float along = toThing * toLamp;
                if (along <= 0.0f)
                    continue;
                const float aside = (toThing - toLamp * along).length();
                const float blur = hoverBlur + hoverSpread * along;
                const float lit = smoothStep(thing.radius - blur, thing.radius + blur, aside);
                unsigned char& leftOver = point(column, row, i, j)[Left];
                leftOver = std::min(leftOver, byteOf(darkestHover + (1.0f - darkestHover) * lit));
            }
        }
    }
}
