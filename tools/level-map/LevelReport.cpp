#include "LevelReport.h"

#include "BlockWords.h"
#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <ostream>
#include <sstream>

namespace {

constexpr int sound = 0;
constexpr int doubtful = 1;
constexpr int unreadable = 2;

constexpr double anyDrop = 10.0;  // a ball may fall as deep as it likes

std::string place(const CellPosition& cell)
{
    std::ostringstream text;
    text << "column " << cell.column << ", row " << cell.row;
    return text.str();
}

bool isCheckpoint(const LevelPixel& pixel, CheckpointType type)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Checkpoint &&
           CheckpointOption::ofSaturation(pixel.saturation).type == type;
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

bool isButton(const LevelPixel& pixel)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Button;
}

}  // namespace

LevelReport::LevelReport(const QImage& picture) : map(picture)
{
    const auto built = [this](CheckpointType type) {
        Cells cells;
        for (const CellPosition& cell : map.cellsWhere(
                 [type](const LevelPixel& pixel) { return isCheckpoint(pixel, type); })) {
            if (map.hasFloor(cell))
                cells.push_back(cell);
        }
        return cells;
    };
    starts = built(CheckpointType::Start);
    goals = built(CheckpointType::Goal);
}

LevelReport::Cells LevelReport::ofKind(BlockKind kind) const
{
    return map.cellsWhere([kind](const LevelPixel& pixel) {
        return pixel.value > 0 && blockKindOfHue(pixel.hue) == kind;
    });
}

bool LevelReport::groupHas(int alpha, const LevelMap::PixelTest& test) const
{
    return !map.cellsWhere([&](const LevelPixel& pixel) {
                   return pixel.value > 0 && pixel.alpha == alpha && test(pixel);
               })
                .empty();
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
    text << map.width() << " x " << map.height() << " cells: " << plain << " floors and walls, "
         << all - plain << " other blocks";
    return text.str();
}

std::vector<std::string> LevelReport::blocks() const
{
    Lines lines;
    for (const CellPosition& cell : map.cellsWhere([](const LevelPixel& pixel) {
             const BlockKind kind = blockKindOfHue(pixel.hue);
             return pixel.value > 0 && kind != BlockKind::None && kind != BlockKind::Standard;
         })) {
        const LevelPixel& pixel = map.pixel(cell);
        lines.push_back(place(cell) + ": " + blockInWords(pixel) + "; " + shapeInWords(pixel) +
                        "; group " + std::to_string(pixel.alpha));
    }
    return lines;
}

std::vector<std::string> LevelReport::warnings() const
{
    Lines lines;
    warnOfPixels(lines);
    warnOfStartAndGoal(lines);
    warnOfGroups(lines);
    warnOfWays(lines);
    return lines;
}

void LevelReport::warnOfPixels(Lines& lines) const
{
    for (const CellPosition& cell :
         map.cellsWhere([](const LevelPixel& pixel) { return pixel.value > 0; })) {
        const LevelPixel& pixel = map.pixel(cell);
        if (pixel.hue < 0)
            lines.push_back(place(cell) + ": a grey makes no block");
        else if (blockKindOfHue(pixel.hue) == BlockKind::None)
            lines.push_back(place(cell) + ": no kind of block has hue " +
                            std::to_string(pixel.hue));
        else if (!map.hasFloor(cell))
            lines.push_back(place(cell) + ": " + blockInWords(pixel) + " of value " +
                            std::to_string(pixel.value) + ", and under " +
                            std::to_string(firstBodyValue) + " there is no body");
        else if (blockKindOfHue(pixel.hue) == BlockKind::Trap &&
                 TrapOption::ofSaturation(pixel.saturation).kind == TrapKind::None)
            lines.push_back(place(cell) + ": a trap of saturation " +
                            std::to_string(pixel.saturation) + " does nothing");
    }
}

void LevelReport::warnOfStartAndGoal(Lines& lines) const
{
    if (starts.empty())
        lines.emplace_back("there is no start, so the ball falls through the middle");
    else if (starts.size() > 1)
        lines.push_back("there are " + std::to_string(starts.size()) +
                        " starts, and the last one counts: " + place(starts.back()));
    if (goals.empty())
        lines.emplace_back("there is no goal, so the level cannot be won");
}

void LevelReport::warnOfGroups(Lines& lines) const
{
    for (const CellPosition& cell : ofKind(BlockKind::Button)) {
        if (!groupHas(map.pixel(cell).alpha, listens))
            lines.push_back(place(cell) + ": no ghost and no elevator of group " +
                            std::to_string(map.pixel(cell).alpha) + " listens to this button");
    }
    for (const CellPosition& cell : map.cellsWhere(waitsForButtons)) {
        if (!groupHas(map.pixel(cell).alpha, isButton))
            lines.push_back(place(cell) + ": " + blockInWords(map.pixel(cell)) +
                            ", and there is none in group " +
                            std::to_string(map.pixel(cell).alpha));
    }
    for (const CellPosition& cell : ofKind(BlockKind::Portal)) {
        const int alpha = map.pixel(cell).alpha;
        const Cells mates = map.cellsWhere([alpha](const LevelPixel& pixel) {
            return blockKindOfHue(pixel.hue) == BlockKind::Portal && pixel.alpha == alpha;
        });
        if (mates.size() < 2)
            lines.push_back(place(cell) + ": the only portal of group " + std::to_string(alpha) +
                            " leads nowhere");
    }
}

void LevelReport::warnOfWays(Lines& lines) const
{
    if (starts.empty())
        return;
    const LevelMap::StepFilter any = [](const CellPosition&, const CellPosition&) {
        return true;
    };
    for (const CellPosition& cell : map.cellsWhere([](const LevelPixel& pixel) {
             const BlockKind kind = blockKindOfHue(pixel.hue);
             return kind == BlockKind::Button || kind == BlockKind::Item ||
                    (kind == BlockKind::Checkpoint && !isCheckpoint(pixel, CheckpointType::Start));
         })) {
        if (map.hasFloor(cell) && map.way(starts.back(), cell, any, anyDrop).empty())
            lines.push_back(place(cell) + ": " + blockInWords(map.pixel(cell)) +
                            ", and no way leads there from the start");
    }
}

int reportLevel(const std::string& file, bool onlyWarnings, std::ostream& out)
{
    const QImage picture(QString::fromStdString(file));
    if (picture.isNull()) {
        out << file << ": this is no picture that I can read" << std::endl;
        return unreadable;
    }
    const LevelReport report(picture);
    out << file << ": " << report.summary() << std::endl;
    if (!onlyWarnings) {
        for (const std::string& line : report.blocks())
            out << "  " << line << std::endl;
    }
    const std::vector<std::string> warnings = report.warnings();
    for (const std::string& line : warnings)
        out << "  warning: " << line << std::endl;
    return warnings.empty() ? sound : doubtful;
}
