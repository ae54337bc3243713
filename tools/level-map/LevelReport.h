#pragma once

#include "LevelMap.h"

#include <iosfwd>
#include <string>
#include <vector>

/// What a level's author wants to know of a picture: what stands where, and what looks like a
/// mistake. Everything is decoded by the game's own code. Columns and rows count from 0 at the
/// upper left, as paint programs do.
class LevelReport
{
public:
    explicit LevelReport(const QImage& picture);

    /// "20 x 8 cells: 78 floors and walls, 17 other blocks".
    std::string summary() const;
    /// One line for each block that is no plain floor or wall, in reading order.
    std::vector<std::string> blocks() const;
    /// One line for each thing that looks like a mistake; empty for a sound level.
    std::vector<std::string> warnings() const;

private:
    using Cells = std::vector<CellPosition>;
    using Lines = std::vector<std::string>;

    Cells ofKind(BlockKind kind) const;
    bool groupHas(int alpha, const LevelMap::PixelTest& test) const;

    void warnOfPixels(Lines& lines) const;
    void warnOfStartAndGoal(Lines& lines) const;
    void warnOfGroups(Lines& lines) const;
    void warnOfWays(Lines& lines) const;

    LevelMap map;
    Cells starts;
    Cells goals;
};

/// Writes the whole report of a file: summary, blocks unless only warnings are wanted, warnings.
/// 0 for a sound level, 1 for one with warnings, 2 for a file that is no picture.
int reportLevel(const std::string& file, bool onlyWarnings, std::ostream& out);
