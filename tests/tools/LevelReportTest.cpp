#include "LevelReport.h"

#include "support/LevelPicture.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sstream>

namespace {

using Lines = std::vector<std::string>;

/// A sound level of one row with room for a block of the test, all on one floor.
LevelPicture row(std::initializer_list<Cell> cells)
{
    LevelPicture picture(int(cells.size()) + 2, 1);
    picture.set(0, 0, cells::start);
    int column = 1;
    for (const Cell& cell : cells)
        picture.set(column++, 0, cell);
    picture.set(column, 0, cells::goal);
    return picture;
}

Lines warningsOf(const LevelPicture& picture)
{
    return LevelReport(picture.image()).warnings();
}

constexpr Cell onceButton{270, 100, 73, 254};
constexpr Cell silentGhost{225, 100, 73, 254};
constexpr Cell waitingElevator{180, 90, 73, 254};
constexpr Cell portalUp{315, 50, 73, 253};

}  // namespace

TEST(LevelReport, CountsCellsAndBlocks)
{
    EXPECT_EQ(LevelReport(LevelPicture({"S..G", "####", " ## "}).image()).summary(),
              "4 x 3 cells: 8 floors and walls, 2 other blocks");
}

TEST(LevelReport, ListsWhatIsNoFloorOrWallInReadingOrder)
{
    const LevelPicture picture = LevelPicture({"S.#", "..G"}).set(0, 1, {45, 90, 86, 200});
    EXPECT_EQ(LevelReport(picture.image()).blocks(),
              (Lines{"column 0, row 0: start; 0.5 high; group 255",
                     "column 0, row 1: item, gives 10 coins; 1 high; group 200",
                     "column 2, row 1: goal, 50 coins; 0.5 high; group 255"}));
}

TEST(LevelReport, HasNothingToSayOfASoundLevel)
{
    EXPECT_EQ(warningsOf(row({cells::floor, onceButton, silentGhost})), Lines{});
}

TEST(LevelReport, WarnsOfAHueThatIsNoKind)
{
    EXPECT_EQ(warningsOf(LevelPicture({"SG."}).set(2, 0, {20, 100, 73})),
              Lines{"column 2, row 0: no kind of block has hue 20"});
}

TEST(LevelReport, WarnsOfAGrey)
{
    QImage picture = LevelPicture({"SG."}).image();
    picture.setPixel(2, 0, qRgb(128, 128, 128));
    EXPECT_EQ(LevelReport(picture).warnings(), Lines{"column 2, row 0: a grey makes no block"});
}

TEST(LevelReport, WarnsOfValuesWithoutABody)
{
    EXPECT_EQ(
        warningsOf(LevelPicture({"SG.."}).set(2, 0, {0, 100, 56}).set(3, 0, {90, 100, 10})),
        (Lines{"column 2, row 0: mine, fuse of 3 seconds of value 56, and under 57 there is no "
               "body",
               "column 3, row 0: floor or wall of value 10, and under 57 there is no body"}));
}

TEST(LevelReport, WarnsOfATrapThatDoesNothing)
{
    EXPECT_EQ(warningsOf(row({{0, 60, 73}})),
              Lines{"column 1, row 0: a trap of saturation 60 does nothing"});
}

TEST(LevelReport, WarnsOfALevelWithoutStart)
{
    EXPECT_EQ(warningsOf(LevelPicture({"..G"})),
              Lines{"there is no start, so the ball falls through the middle"});
}

TEST(LevelReport, TellsWhichOfSeveralStartsCounts)
{
    EXPECT_EQ(warningsOf(LevelPicture({"S.SG"})),
              Lines{"there are 2 starts, and the last one counts: column 2, row 0"});
}

TEST(LevelReport, WarnsOfALevelWithoutGoal)
{
    EXPECT_EQ(warningsOf(LevelPicture({"S.."})),
              Lines{"there is no goal, so the level cannot be won"});
}

TEST(LevelReport, WarnsOfAButtonThatNobodyListensTo)
{
    Cell elsewhere = silentGhost;
    elsewhere.alpha = 255;
    elsewhere.saturation = 80;  // with a rhythm: it needs no button
    EXPECT_EQ(
        warningsOf(row({onceButton, elsewhere})),
        Lines{"column 1, row 0: no ghost and no elevator of group 254 listens to this button"});
}

TEST(LevelReport, WarnsOfWhatWaitsForAButtonThatIsNotThere)
{
    EXPECT_EQ(
        warningsOf(row({silentGhost, waitingElevator})),
        (Lines{
            "column 1, row 0: ghost, starts solid, waits for buttons, and there is none in group "
            "254",
            "column 2, row 0: elevator, 1 up, waits for buttons, and there is none in group "
            "254"}));
}

TEST(LevelReport, WarnsOfAPortalWithoutPartner)
{
    EXPECT_EQ(warningsOf(LevelPicture({"SG.."}).set(3, 0, portalUp)),
              Lines{"column 3, row 0: the only portal of group 253 leads nowhere"});
    EXPECT_EQ(warningsOf(LevelPicture({"SG.."}).set(2, 0, portalUp).set(3, 0, portalUp)), Lines{});
}

TEST(LevelReport, WarnsOfAGoalBehindAWall)
{
    EXPECT_EQ(warningsOf(LevelPicture({"S#G"})),
              Lines{"column 2, row 0: goal, 50 coins, and no way leads there from the start"});
}

TEST(LevelReport, TakesTheWayDownAnEdge)
{
    EXPECT_EQ(warningsOf(LevelPicture({"S.G"}).set(0, 0, {135, 100, 100})), Lines{});
}

TEST(LevelReport, KnowsTheWaysThatBlocksOpen)
{
    constexpr Cell high{135, 50, 86};  // the goal, half a cell higher
    const auto ends = [&](const Cell& lift) {
        return warningsOf(LevelPicture({"S.."}).set(1, 0, lift).set(2, 0, high));
    };
    EXPECT_EQ(ends(cells::floor).size(), 1u);
    EXPECT_EQ(ends({0, 83, 73}), Lines{}) << "a spring";
    EXPECT_EQ(ends({180, 62, 73}), Lines{}) << "an elevator that goes half a cell up by itself";
    EXPECT_EQ(ends({90, 100, 75}), Lines{}) << "a ramp";
}

TEST(LevelReport, KnowsTheWaysThroughPortalsAndOverAChasm)
{
    const LevelPicture portals =
        LevelPicture({"S.  .G"}).set(1, 0, {315, 80, 86, 253}).set(4, 0, {315, 90, 86, 253});
    EXPECT_EQ(warningsOf(portals), Lines{});
    EXPECT_EQ(warningsOf(LevelPicture({"S.  .G"}).set(1, 0, {45, 50, 73})), Lines{});
    EXPECT_EQ(warningsOf(LevelPicture({"S.  .G"})),
              Lines{"column 5, row 0: goal, 50 coins, and no way leads there from the start"});
}

TEST(LevelReport, HasNothingToSayOfTheLevelsOfTheGame)
{
    for (int number = 0; number < 30; ++number) {
        SCOPED_TRACE(number);
        const QImage picture(QString(ROLLIX_SOURCE_DIR "/data/Rollix/level%1.png").arg(number));
        ASSERT_FALSE(picture.isNull());
        EXPECT_EQ(LevelReport(picture).warnings(), Lines{});
    }
}

class LevelReportOfAFile : public ::testing::Test
{
protected:
    int reports(const LevelPicture& picture, bool onlyWarnings)
    {
        picture.image().save(QString::fromStdString(file));
        return reportLevel(file, onlyWarnings, out);
    }

    QTemporaryDir folder;
    const std::string file = folder.filePath("level.png").toStdString();
    std::ostringstream out;
};

TEST_F(LevelReportOfAFile, TellsSummaryAndBlocks)
{
    EXPECT_EQ(reports(LevelPicture({"SG"}), false), 0);
    EXPECT_EQ(out.str(), file + ": 2 x 1 cells: 0 floors and walls, 2 other blocks\n" +
                             "  column 0, row 0: start; 0.5 high; group 255\n"
                             "  column 1, row 0: goal, 50 coins; 0.5 high; group 255\n");
}

TEST_F(LevelReportOfAFile, TellsOnlyWarningsIfNoMoreIsWanted)
{
    EXPECT_EQ(reports(LevelPicture({"S."}), true), 1);
    EXPECT_EQ(out.str(), file + ": 2 x 1 cells: 1 floors and walls, 1 other blocks\n" +
                             "  warning: there is no goal, so the level cannot be won\n");
}

TEST_F(LevelReportOfAFile, SaysWhenThereIsNoPicture)
{
    EXPECT_EQ(reportLevel(file, false, out), 2);
    EXPECT_EQ(out.str(), file + ": this is no picture that I can read\n");
}
