#pragma once

#include "Complaints.h"
#include "LevelMap.h"
#include "LevelWays.h"

#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// What a level's author wants to know of a picture: what stands where, what looks like a mistake,
/// and whether a ball can come to what it needs. Everything is decoded by the game's own code.
/// Columns and rows count from 0 at the upper left, as paint programs do.
class LevelReport
{
public:
    /// `format` is what the file's content says.
    explicit LevelReport(const QImage& picture, const std::string& format = "png");
    LevelReport(const LevelReport&) = delete;
    LevelReport& operator=(const LevelReport&) = delete;

    /// "20 x 8 cells (columns 0 to 19, rows 0 to 7 from the upper left): 78 floors and walls, 17
    /// other blocks".
    std::string summary() const;
    /// One line for each block that is no plain floor or wall, in reading order.
    std::vector<std::string> blocks() const;
    /// One line for each thing that looks like a mistake; empty for a sound level. What spoils the
    /// picture as a whole is told alone: the rest would be its symptoms.
    std::vector<std::string> warnings() const;
    /// How the ball comes through the level, and by what that was judged; empty where it does not.
    std::vector<std::string> ways() const;
    /// How many stretches of that way are not the only one; empty where there is no way.
    std::string waysBeside() const;

private:
    using Cells = std::vector<CellPosition>;
    using Lines = std::vector<std::string>;

    Cells ofKind(BlockKind kind) const;
    /// How many of such blocks there are in each group that has any.
    std::map<int, int> groupsWith(const LevelMap::PixelTest& test) const;
    Cells inOrder() const;
    Cells tour() const;

    void warnOfSize(Lines& lines) const;
    void warnOfStartAndGoal(Lines& lines) const;
    void warnOfGroups(Lines& lines) const;
    void warnOfPortals(Lines& lines) const;
    void warnOfMouth(const CellPosition& portal, Complaints& complaints) const;
    void warnOfWays(Lines& lines) const;
    void warnOfOrder(Lines& lines) const;

    LevelMap map;
    Lines spoiled;
    Cells starts;
    Cells flags;  // that must be passed
    Cells goals;
    std::optional<LevelWays> levelWays;  // of a level with a start that nothing spoils
};

/// Writes the whole report of a file: summary, blocks and ways unless only warnings are wanted,
/// warnings. 0 for a sound level, 1 for one with warnings or one that the game refuses to build, 2
/// for a file that is no picture.
int reportLevel(const std::string& file, bool onlyWarnings, std::ostream& out);
