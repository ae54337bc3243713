#include "LevelReport.h"

#include "support/LevelPicture.h"

#include <QDir>
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
              "4 x 3 cells (columns 0 to 3, rows 0 to 2 from the upper left): 8 floors and walls, "
              "2 other blocks");
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

TEST(LevelReport, NamesTheKindBesideAHue)
{
    EXPECT_EQ(warningsOf(LevelPicture({"SG."}).set(2, 0, {146, 100, 73})),
              Lines{"column 2, row 0: hue 146, and flags end at 145"});
    EXPECT_EQ(warningsOf(LevelPicture({"SG."}).set(2, 0, {79, 100, 73})),
              Lines{"column 2, row 0: hue 79, and floors and walls begin at 80"});
    EXPECT_EQ(warningsOf(LevelPicture({"SG."}).set(2, 0, {24, 100, 73})),
              Lines{"column 2, row 0: no kind of block has hue 24; floors and walls have 90"});
}

TEST(LevelReport, WarnsOfAGrey)
{
    QImage picture = LevelPicture({"SG."}).image();
    picture.setPixel(2, 0, qRgb(128, 128, 128));
    EXPECT_EQ(LevelReport(picture).warnings(),
              Lines{"column 2, row 0: a grey makes no block; paint holes black, blocks in a hue"});
}

TEST(LevelReport, WarnsOfValuesWithoutABody)
{
    EXPECT_EQ(
        warningsOf(LevelPicture({"SG.."}).set(2, 0, {0, 100, 56}).set(3, 0, {90, 100, 10})),
        (Lines{"column 2, row 0: mine, fuse of 3 seconds of value 56, and under 57 there is no "
               "body; take 73, or black for a hole",
               "column 3, row 0: floor or wall of value 10, and under 57 there is no body; take "
               "73, or black for a hole"}));
}

TEST(LevelReport, WarnsOfATrapThatDoesNothing)
{
    EXPECT_EQ(warningsOf(row({{0, 60, 73}})),
              Lines{"column 1, row 0: a trap of saturation 60 does nothing; mines begin at 89, "
                    "springs at 79, trapdoors at 69, wells at 49"});
}

TEST(LevelReport, TellsWhatComesOftenInOneLine)
{
    LevelPicture picture({"SG......"});
    for (int column = 2; column < 8; ++column)
        picture.set(column, 0, {146 + column % 2, 100, 73});
    EXPECT_EQ(warningsOf(picture),
              (Lines{"column 2, row 0, and 5 more: hue 146, and flags end at 145"}));
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

TEST(LevelReport, WarnsOfABoardThatMeetsTheGround)
{
    EXPECT_EQ(
        warningsOf(
            LevelPicture(40, 1, cells::floor).set(0, 0, cells::start).set(39, 0, cells::goal)),
        Lines{});
    EXPECT_EQ(
        warningsOf(
            LevelPicture(1, 41, cells::floor).set(0, 0, cells::start).set(0, 40, cells::goal)),
        Lines{"wider than 40 cells, the board meets the ground before its 30 degrees, and a "
              "ball on that rim is lost"});
}

TEST(LevelReport, WarnsOfAButtonThatNobodyListensTo)
{
    Cell elsewhere = silentGhost;
    elsewhere.alpha = 255;
    elsewhere.saturation = 80;  // with a rhythm: it needs no button
    EXPECT_EQ(warningsOf(row({onceButton, elsewhere})),
              Lines{"column 1, row 0: no ghost and no elevator of group 254 listens to this "
                    "button; give them the button's alpha"});
}

TEST(LevelReport, WarnsOfWhatWaitsForAButtonThatIsNotThere)
{
    EXPECT_EQ(warningsOf(row({silentGhost, waitingElevator})),
              (Lines{"column 1, row 0: ghost, starts solid, waits for buttons, and there is none "
                     "in group 254; give one this alpha",
                     "column 2, row 0: elevator, 1 up, waits for buttons, and there is none in "
                     "group 254; give one this alpha"}));
}

TEST(LevelReport, WarnsOfAPortalWithoutPartner)
{
    EXPECT_EQ(warningsOf(LevelPicture({"SG.."}).set(3, 0, portalUp)),
              Lines{"column 3, row 0: the only portal of group 253 leads nowhere; give another one "
                    "this alpha"});
    EXPECT_EQ(warningsOf(LevelPicture({"SG.."}).set(2, 0, portalUp).set(3, 0, portalUp)), Lines{});
}

TEST(LevelReport, WarnsOfPortalsThatNobodySeesOrEnters)
{
    const auto ends = [](int value) {
        return warningsOf(LevelPicture({"S.  .G"})
                              .set(1, 0, {315, 80, value, 253})
                              .set(4, 0, {315, 90, value, 253}));
    };
    EXPECT_EQ(ends(86), Lines{});
    EXPECT_EQ(ends(73),
              (Lines{"column 1, row 0, and 1 more: a portal no higher than the floor before its "
                     "mouth, which nobody sees or enters; make it half a unit higher",
                     "column 5, row 0: goal, 50 coins, and no way leads there from the start"}));
    EXPECT_EQ(warningsOf(LevelPicture({"SG..."}).set(2, 0, portalUp).set(4, 0, {315, 90, 86, 253})),
              Lines{"column 4, row 0: a portal without floor before its mouth; nothing comes in or "
                    "out"});
}

TEST(LevelReport, WarnsOfWhatTheBallCannotComeTo)
{
    EXPECT_EQ(warningsOf(LevelPicture({"S#G"})),
              Lines{"column 2, row 0: goal, 50 coins, and no way leads there from the start"});
    // A bridge of air whose only button lies behind it.
    EXPECT_EQ(
        warningsOf(row({cells::floor, {225, 70, 73, 254}, {225, 70, 73, 254}, onceButton})),
        (Lines{"column 2, row 0, and 1 more: ghost, starts as air, waits for buttons, and the "
               "ball can come to no button of group 254 before",
               "column 4, row 0: button, works once, and no way leads there from the start",
               "column 5, row 0: goal, 50 coins, and no way leads there from the start"}));
}

TEST(LevelReport, TellsOfASoundLevelHowTheBallComesThrough)
{
    const auto ways = [](const LevelPicture& picture) {
        return LevelReport(picture.image()).ways();
    };
    EXPECT_EQ(ways(LevelPicture({"S.R.G"})),
              Lines{"a way of 5 cells leads by all flags to the goal"});
    EXPECT_EQ(ways(row({cells::floor, onceButton, {225, 70, 73, 254}})),
              (Lines{"a way of 5 cells leads by all flags to the goal, and takes:",
                     "the button at column 2, row 0, for group 254"}));
    EXPECT_EQ(ways(LevelPicture({"S.... .G"})),
              (Lines{"a way of 7 cells leads by all flags to the goal, and takes:",
                     "a jump over the hole after a run at column 4, row 0"}));
    EXPECT_EQ(ways(LevelPicture({"S#G"})), Lines{});
}

TEST(LevelReport, TellsHowMuchOfTheWayIsNotTheOnlyOne)
{
    const auto beside = [](const LevelPicture& picture) {
        return LevelReport(picture.image()).waysBeside();
    };
    EXPECT_EQ(beside(LevelPicture({"S......", ".    ..", ".    ..", "....R.G"})),
              "another way, round a wall or a hole, leads along 1 of its 2 stretches from flag to "
              "flag");
    EXPECT_EQ(beside(LevelPicture({"S#G"})), "");
}

TEST(LevelReport, WarnsOfFlagsOfWhichOneRunCannotPassBoth)
{
    // From the start, half a unit higher, the ball rolls down to either side and never back.
    LevelPicture picture({"GR.S.RG"});
    picture.set(3, 0, {135, 100, 86});
    EXPECT_EQ(warningsOf(picture),
              Lines{"column 1, row 0: from this flag no way leads to the one at column 5, row 0, "
                    "nor back, and both must be passed"});
    EXPECT_EQ(warningsOf(LevelPicture({"R.S.G"}).set(2, 0, {135, 100, 86})),
              Lines{"column 0, row 0: from this flag, which must be passed, no way leads on to "
                    "the goal"});
}

TEST(LevelReport, HasNothingToSayOfTheLevelsOfTheGame)
{
    const QStringList files =
        QDir(ROLLIX_SOURCE_DIR "/data/Rollix").entryList({"level*.png"}, QDir::Files);
    EXPECT_EQ(files.size(), 30);
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        const LevelReport report(QImage(ROLLIX_SOURCE_DIR "/data/Rollix/" + file));
        EXPECT_EQ(report.warnings(), Lines{});
        EXPECT_FALSE(report.ways().empty());
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
    EXPECT_EQ(out.str(), file +
                             ": 2 x 1 cells (columns 0 to 1, rows 0 to 0 from the upper left): 0 "
                             "floors and walls, 2 other blocks\n"
                             "  column 0, row 0: start; 0.5 high; group 255\n"
                             "  column 1, row 0: goal, 50 coins; 0.5 high; group 255\n"
                             "  a way of 2 cells leads by all flags to the goal\n"
                             "  another way, round a wall or a hole, leads along 0 of its 1 "
                             "stretches from flag to flag\n"
                             "  (judged from the picture, by the figures of docs/levels.md)\n");
}

TEST_F(LevelReportOfAFile, TellsOnlyWarningsIfNoMoreIsWanted)
{
    EXPECT_EQ(reports(LevelPicture({"S."}), true), 1);
    EXPECT_EQ(out.str(), file +
                             ": 2 x 1 cells (columns 0 to 1, rows 0 to 0 from the upper left): 1 "
                             "floors and walls, 1 other blocks\n"
                             "  warning: there is no goal, so the level cannot be won\n");
}

TEST_F(LevelReportOfAFile, SaysWhenThereIsNoPicture)
{
    EXPECT_EQ(reportLevel(file, false, out), 2);
    EXPECT_EQ(out.str(), file + ": this is no picture that I can read\n");
}
