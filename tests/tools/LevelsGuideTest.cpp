// Holds docs/levels.md, and the table in README.md, to what the game makes of the colours in them.

#include "BlockWords.h"
#include "GuideTables.h"

#include <gtest/gtest.h>

#include <set>

namespace {

std::string wordsOf(const LevelPixel& pixel)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Standard ? shapeInWords(pixel)
                                                            : blockInWords(pixel);
}

void expectColour(const QStringList& row, int hue, int saturation, int value, int firstOfColour)
{
    const LevelPixel pixel =
        LevelPixel::decode(qRgb(row[firstOfColour].toInt(), row[firstOfColour + 1].toInt(),
                                row[firstOfColour + 2].toInt()));
    EXPECT_EQ(pixel.hue, hue);
    EXPECT_EQ(pixel.saturation, saturation);
    EXPECT_EQ(pixel.value, value);
}

}  // namespace

TEST(LevelsGuide, ShowsColoursThatDecodeToTheNumbersBesideThem)
{
    const std::vector<QStringList> rows = rowsOf("docs/levels.md", guideRow);
    EXPECT_GT(rows.size(), 100u);
    for (const QStringList& row : rows) {
        SCOPED_TRACE(row[0].toStdString());
        expectColour(row, row[2].toInt(), row[3].toInt(), row[4].toInt(), 5);
    }
}

TEST(LevelsGuide, ShowsNoColourThatThisTestDoesNotRead)
{
    EXPECT_EQ(rowsOf("docs/levels.md", R"(\d+, \d+, \d+ \|)").size(),
              rowsOf("docs/levels.md", guideRow).size());
}

TEST(LevelsGuide, TellsTheBlockOfEachColour)
{
    for (const QStringList& row : rowsOf("docs/levels.md", guideRow)) {
        SCOPED_TRACE(row[0].toStdString());
        EXPECT_EQ(row[1].toStdString(),
                  wordsOf({row[2].toInt(), row[3].toInt(), row[4].toInt(), 255}));
    }
}

TEST(LevelsGuide, TellsHowFarEachOptionReaches)
{
    for (const QStringList& row : rowsOf("docs/levels.md", guideRow)) {
        if (row.size() <= 9)
            continue;  // a shape, not an option
        SCOPED_TRACE(row[0].toStdString());
        const int first = row[8].toInt();
        const int last = row[9].toInt();
        for (int saturation = 49; saturation <= 100; ++saturation) {
            const bool same =
                wordsOf({row[2].toInt(), saturation, 73, 255}) == row[1].toStdString();
            EXPECT_EQ(same, saturation >= first && saturation <= last) << saturation;
        }
    }
}

TEST(LevelsGuide, LeavesNoOptionAndNoShapeOut)
{
    std::set<std::string> told;
    for (const QStringList& row : rowsOf("docs/levels.md", guideRow))
        told.insert(row[1].toStdString());
    for (const int hue : {135, 270, 225, 180, 0, 45, 315}) {
        for (int saturation = 0; saturation <= 100; ++saturation)
            EXPECT_TRUE(told.count(wordsOf({hue, saturation, 73, 255})))
                << "hue " << hue << ", saturation " << saturation;
    }
    for (int value = 57; value <= 100; ++value)
        EXPECT_TRUE(told.count(wordsOf({90, 100, value, 255}))) << "value " << value;
}

TEST(LevelsGuide, HasAReadmeWithTheSameColours)
{
    // Words, hue, saturation or "any", colour; all half a unit high.
    const std::vector<QStringList> rows =
        rowsOf("README.md", R"(^\| [^|]+ \| (\d+) \| (\d+|any) \| (\d+), (\d+), (\d+) \|$)");
    EXPECT_GT(rows.size(), 20u);
    for (const QStringList& row : rows) {
        SCOPED_TRACE(row[0].toStdString());
        expectColour(row, row[1].toInt(), row[2] == "any" ? 100 : row[2].toInt(), 73, 3);
    }
}

TEST(LevelsGuide, HasAReadmeWithTheSameColoursOfHigherWalls)
{
    const QString readme = textOf("README.md").simplified();
    const std::vector<QStringList> rows =
        rowsOf("docs/levels.md", R"(^\| [\d.]+ high \| 90 \| 100 \| \d+ \| (\d+, \d+, \d+) \|$)");
    EXPECT_EQ(rows.size(), 4u);
    for (const QStringList& row : rows)
        EXPECT_TRUE(readme.contains(row[1])) << row[0].toStdString();
}
