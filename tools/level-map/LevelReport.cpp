#include "LevelReport.h"

#include "BlockWords.h"
#include "OtherWays.h"
#include "PictureFaults.h"
#include "level/BlockOptions.h"
#include "level/BlockShape.h"
#include "level/PictureFile.h"

#include <QImageReader>

#include <algorithm>
#include <ostream>
#include <sstream>

namespace {

constexpr int sound = 0;
constexpr int doubtful = 1;
constexpr int unreadable = 2;

constexpr int widestBoard = 40;        // cells: the ground is ten units under the board
constexpr std::size_t mostFlags = 50;  // whose order is judged

CheckpointOption checkpointOf(const LevelPixel& pixel)
{
    return CheckpointOption::ofSaturation(pixel.saturation);
}

bool isCheckpoint(const LevelPixel& pixel, CheckpointType type)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Checkpoint && checkpointOf(pixel).type == type;
}

bool isStart(const LevelPixel& pixel)
{
    return isCheckpoint(pixel, CheckpointType::Start);
}

bool isGoal(const LevelPixel& pixel)
{
    return isCheckpoint(pixel, CheckpointType::Goal);
}

bool isRequiredFlag(const LevelPixel& pixel)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Checkpoint && !isStart(pixel) &&
           !isGoal(pixel) && checkpointOf(pixel).required;
}

bool isButton(const LevelPixel& pixel)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Button;
}

bool isPortal(const LevelPixel& pixel)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Portal;
}

bool listens(const LevelPixel& pixel)
{
    const BlockKind kind = blockKindOfHue(pixel.hue);
    return kind == BlockKind::Ghost || kind == BlockKind::Elevator;
}

bool waitsForButtons(const LevelPixel& pixel)
{
    switch (blockKindOfHue(pixel.hue)) {
    case BlockKind::Ghost:
        return GhostOption::ofSaturation(pixel.saturation).period == 0.0;
    case BlockKind::Elevator:
        return !ElevatorOption::ofSaturation(pixel.saturation).automatic;
    default:
        return false;
    }
}

/// What a ball shall come to.
bool isTarget(const LevelPixel& pixel)
{
    const BlockKind kind = blockKindOfHue(pixel.hue);
    return kind == BlockKind::Button || kind == BlockKind::Item ||
           (kind == BlockKind::Checkpoint && !isStart(pixel));
}

std::string groupInWords(const LevelPixel& pixel)
{
    return "group " + std::to_string(pixel.alpha);
}

/// "a jump (5.5 units a second) at column 3, row 4" for every feat of one kind; empty for none.
std::vector<std::string> feats(const std::vector<Stride>& way)
{
    std::vector<std::string> lines;
    for (std::size_t i = 1; i < way.size(); ++i) {
        const std::string from = " at " + placeInWords(way[i - 1].cell);
        if (way[i].by == Move::Jump)
            lines.push_back("a jump over the hole after a run" + from);
        else if (way[i].by == Move::Throw)
            lines.push_back("a throw" + from);
        else if (way[i].by == Move::Float)
            lines.push_back("a flight without gravity" + from);
    }
    return lines;
}

void print(const std::vector<std::string>& lines, const char* before, std::ostream& out)
{
    for (const std::string& line : lines)
        out << "  " << before << line << std::endl;
}

int reportPicture(const std::string& file, const QImage& picture, const std::string& format,
                  bool onlyWarnings, std::ostream& out)
{
    const std::string refusal = refusalOf(file, picture);
    if (!refusal.empty()) {
        out << refusal << std::endl;
        print(pictureFaults(picture, format), "warning: ", out);
        return doubtful;
    }
    const LevelReport report(picture, format);
    const std::vector<std::string> warnings = report.warnings();
    out << file << ": " << report.summary() << std::endl;
    if (!onlyWarnings)
        print(report.blocks(), "", out);
    print(warnings, "warning: ", out);
    if (!onlyWarnings) {
        print(report.ways(), "", out);
        if (const std::string beside = report.waysBeside(); !beside.empty())
            out << "  " << beside << std::endl;
        out << "  (judged from the picture, by the figures of docs/levels.md)" << std::endl;
    }
    return warnings.empty() ? sound : doubtful;
}

}  // namespace

LevelReport::LevelReport(const QImage& picture, const std::string& format)
    : map(picture), spoiled(pictureFaults(picture, format))
{
    const auto built = [this](const LevelMap::PixelTest& test) {
        Cells cells = map.cellsWhere(test);
        cells.erase(
            std::remove_if(cells.begin(), cells.end(),
                           [this](const CellPosition& cell) { return !map.hasFloor(cell); }),
            cells.end());
        return cells;
    };
    starts = built(isStart);
    flags = built(isRequiredFlag);
    goals = built(isGoal);
    if (spoiled.empty() && !starts.empty())
        levelWays.emplace(map, starts.back());
}

LevelReport::Cells LevelReport::ofKind(BlockKind kind) const
{
    return map.cellsWhere([kind](const LevelPixel& pixel) {
        return pixel.value > 0 && blockKindOfHue(pixel.hue) == kind;
    });
}

std::map<int, int> LevelReport::groupsWith(const LevelMap::PixelTest& test) const
{
    std::map<int, int> counts;
    for (const CellPosition& cell : map.cellsWhere(test))
        if (map.hasFloor(cell))
            ++counts[map.pixel(cell).alpha];
    return counts;
}

std::string LevelReport::summary() const
{
    const std::size_t all =
        map.cellsWhere([](const LevelPixel& pixel) {
               return pixel.value > 0 && blockKindOfHue(pixel.hue) != BlockKind::None;
           })
            .size();
    const std::size_t plain = ofKind(BlockKind::Standard).size();
    std::ostringstream text;
    text << map.width() << " x " << map.height() << " cells (columns 0 to " << map.width() - 1
         << ", rows 0 to " << map.height() - 1 << " from the upper left): " << plain
         << " floors and walls, " << all - plain << " other blocks";
    return text.str();
}

LevelReport::Lines LevelReport::blocks() const
{
    Lines lines;
    for (const CellPosition& cell : map.cellsWhere([](const LevelPixel& pixel) {
             const BlockKind kind = blockKindOfHue(pixel.hue);
             return pixel.value > 0 && kind != BlockKind::None && kind != BlockKind::Standard;
         })) {
        const LevelPixel& pixel = map.pixel(cell);
        lines.push_back(placeInWords(cell) + ": " + blockInWords(pixel) + "; " +
                        shapeInWords(pixel) + "; " + groupInWords(pixel));
    }
    return lines;
}

LevelReport::Lines LevelReport::warnings() const
{
    if (!spoiled.empty())
        return spoiled;
    Lines lines = pixelFaults(map);
    warnOfSize(lines);
    warnOfStartAndGoal(lines);
    warnOfGroups(lines);
    warnOfPortals(lines);
    warnOfWays(lines);
    warnOfOrder(lines);
    return lines;
}

void LevelReport::warnOfSize(Lines& lines) const
{
    if (std::max(map.width(), map.height()) > widestBoard)
        lines.push_back("wider than " + std::to_string(widestBoard) +
                        " cells, the board meets the ground before its 30 degrees, and a ball on "
                        "that rim is lost");
}

void LevelReport::warnOfStartAndGoal(Lines& lines) const
{
    if (starts.empty())
        lines.emplace_back("there is no start, so the ball falls through the middle");
    else if (starts.size() > 1)
        lines.push_back("there are " + std::to_string(starts.size()) +
                        " starts, and the last one counts: " + placeInWords(starts.back()));
    if (goals.empty())
        lines.emplace_back("there is no goal, so the level cannot be won");
}

void LevelReport::warnOfGroups(Lines& lines) const
{
    const std::map<int, int> listening = groupsWith(listens);
    const std::map<int, int> pressing = groupsWith(isButton);
    Complaints complaints;
    for (const CellPosition& cell : ofKind(BlockKind::Button)) {
        const std::string group = groupInWords(map.pixel(cell));
        if (!listening.count(map.pixel(cell).alpha))
            complaints.add(cell, "unheard " + group,
                           "no ghost and no elevator of " + group +
                               " listens to this button; give them the button's alpha");
    }
    for (const CellPosition& cell : map.cellsWhere(waitsForButtons)) {
        const LevelPixel& pixel = map.pixel(cell);
        const std::string block = blockInWords(pixel);
        if (!pressing.count(pixel.alpha))
            complaints.add(cell, block + groupInWords(pixel),
                           block + ", and there is none in " + groupInWords(pixel) +
                               "; give one this alpha");
        else if (levelWays && !levelWays->openingButtons().count(pixel.alpha))
            complaints.add(cell, "out of reach " + groupInWords(pixel),
                           block + ", and the ball can come to no button of " +
                               groupInWords(pixel) + " before");
    }
    complaints.appendTo(lines);
}

void LevelReport::warnOfPortals(Lines& lines) const
{
    const std::map<int, int> mates = groupsWith(isPortal);
    Complaints complaints;
    for (const CellPosition& cell : ofKind(BlockKind::Portal)) {
        if (!map.hasFloor(cell))
            continue;
        const std::string group = groupInWords(map.pixel(cell));
        if (mates.at(map.pixel(cell).alpha) < 2)
            complaints.add(cell, "alone " + group,
                           "the only portal of " + group +
                               " leads nowhere; give another one this alpha");
        else if (!map.hasMouthOnTop(cell))
            warnOfMouth(cell, complaints);
    }
    complaints.appendTo(lines);
}

void LevelReport::warnOfMouth(const CellPosition& portal, Complaints& complaints) const
{
    const CellPosition before = map.beforeMouth(portal);
    if (!map.hasFloor(before)) {
        complaints.add(portal, "no floor",
                       "a portal without floor before its mouth; nothing comes in or out");
        return;
    }
    const double floor =
        map.edgeHeight(before, portal.column - before.column, portal.row - before.row);
    if (!map.is(before, BlockKind::Elevator) &&
        floor >= BlockShape::ofValue(map.pixel(portal).value).highHeight)
        complaints.add(portal, "low",
                       "a portal no higher than the floor before its mouth, which nobody sees or "
                       "enters; make it half a unit higher");
}

void LevelReport::warnOfWays(Lines& lines) const
{
    if (!levelWays)
        return;
    Complaints complaints;
    for (const CellPosition& cell : map.cellsWhere(isTarget)) {
        const std::string block = blockInWords(map.pixel(cell));
        if (map.hasFloor(cell) && !levelWays->reaches(cell))
            complaints.add(cell, block, block + ", and no way leads there from the start");
    }
    complaints.appendTo(lines);
}

/// The flags that must be passed, in an order in which each leads on to the next if any order does:
/// those that lead to more of the others come first.
LevelReport::Cells LevelReport::inOrder() const
{
    std::vector<std::pair<std::ptrdiff_t, CellPosition>> ranked;
    for (const CellPosition& flag : flags) {
        const std::vector<bool> reached = levelWays->reachedFrom(flag, flags);
        ranked.emplace_back(std::count(reached.begin(), reached.end(), true), flag);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    Cells ordered;
    for (const auto& [rank, flag] : ranked)
        ordered.push_back(flag);
    return ordered;
}

/// A ball that has touched a flag comes back to it after every fall.
void LevelReport::warnOfOrder(Lines& lines) const
{
    if (!levelWays || flags.empty() || flags.size() > mostFlags)
        return;
    const Cells ordered = inOrder();
    for (std::size_t i = 0; i + 1 < ordered.size(); ++i) {
        if (!levelWays->reachedFrom(ordered[i], {ordered[i + 1]}).front())
            lines.push_back(placeInWords(ordered[i]) +
                            ": from this flag no way leads to the one at " +
                            placeInWords(ordered[i + 1]) + ", nor back, and both must be passed");
    }
    const std::vector<bool> reached = levelWays->reachedFrom(ordered.back(), goals);
    if (!goals.empty() && std::none_of(reached.begin(), reached.end(), [](bool is) { return is; }))
        lines.push_back(placeInWords(ordered.back()) +
                        ": from this flag, which must be passed, no way leads on to the goal");
}

/// Start, flags and goal. Only where there are all three and not too many.
LevelReport::Cells LevelReport::tour() const
{
    Cells stations = inOrder();
    stations.insert(stations.begin(), starts.back());
    stations.push_back(goals.front());
    return stations;
}

LevelReport::Lines LevelReport::ways() const
{
    if (!levelWays || goals.empty() || flags.size() > mostFlags)
        return {};
    Lines lines;
    std::size_t length = 1;
    const Cells stations = tour();
    for (std::size_t i = 1; i < stations.size(); ++i) {
        const std::vector<Stride> way = levelWays->way(stations[i - 1], stations[i]);
        if (way.empty())
            return {};
        length += way.size() - 1;
        const Lines taken = feats(way);
        lines.insert(lines.end(), taken.begin(), taken.end());
    }
    const std::map<int, int> waiting = groupsWith(waitsForButtons);
    for (const auto& [alpha, button] : levelWays->openingButtons()) {
        if (waiting.count(alpha))
            lines.push_back("the button at " + placeInWords(button) + ", for group " +
                            std::to_string(alpha));
    }
    const std::string intro =
        "a way of " + std::to_string(length) + " cells leads by all flags to the goal";
    lines.insert(lines.begin(), lines.empty() ? intro : intro + ", and takes:");
    return lines;
}

std::string LevelReport::waysBeside() const
{
    if (ways().empty())
        return "";
    const OtherWays others = otherWays(map, tour());
    return "another way, round a wall or a hole, leads along " + std::to_string(others.twofold) +
           " of its " + std::to_string(others.stretches) + " stretches from flag to flag";
}

int reportLevel(const std::string& file, bool onlyWarnings, std::ostream& out)
{
    QImageReader reader(QString::fromStdString(file));
    reader.setDecideFormatFromContent(true);
    const std::string tooLarge = refusalOf(file, reader.size());
    if (!tooLarge.empty()) {
        out << tooLarge << std::endl;
        return doubtful;
    }
    const std::string format = reader.format().toStdString();
    const QImage picture = reader.read();
    if (picture.isNull()) {
        out << file << ": this is no picture that I can read" << std::endl;
        return unreadable;
    }
    return reportPicture(file, picture, format, onlyWarnings, out);
}
