#include "level/Relief.h"

#include <gtest/gtest.h>

namespace {

Relief::Cell block(const CornerHeights& top, bool merged = true, bool restless = false)
{
    Relief::Cell cell;
    cell.top = top;
    cell.filled = true;
    cell.merged = merged;
    cell.restless = restless;
    return cell;
}

CornerHeights flat(float height)
{
    return {height, height, height, height};
}

/// Three by three floors.
class ReliefTest : public ::testing::Test
{
protected:
    ReliefTest()
    {
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column)
                relief.set(column, row, block(flat(0.5f)));
    }

    Relief relief = Relief(3, 3);
};

TEST_F(ReliefTest, KnowsTheCellOfAPlaceAndThePlaceOfACell)
{
    EXPECT_EQ(relief.columnOf(-1.2f), 0);
    EXPECT_EQ(relief.columnOf(0.4f), 1);
    EXPECT_EQ(relief.rowOf(1.49f), 2);
    EXPECT_EQ(relief.xOf(0), -1.0f);
    EXPECT_EQ(relief.yOf(2), 1.0f);
    EXPECT_EQ(Relief(4, 4).xOf(0), -1.5f);
}

TEST_F(ReliefTest, LetsTheWoodRunOnBetweenBlocksOfOneHeight)
{
    EXPECT_EQ(relief.openEdges(1, 1), osg::Vec4f(0.0f, 0.0f, 0.0f, 0.0f));
    EXPECT_EQ(relief.openEdges(0, 0), osg::Vec4f(0.0f, 0.0f, 1.0f, 1.0f)) << "open at the rim";
}

TEST_F(ReliefTest, OpensAnEdgeThatIsHigherThanTheNeighbour)
{
    relief.set(1, 1, block(flat(1.0f)));
    EXPECT_EQ(relief.openEdges(1, 1), osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_EQ(relief.openEdges(0, 1), osg::Vec4f(0.0f, 0.0f, 1.0f, 0.0f)) << "closed at a foot";
}

TEST_F(ReliefTest, JoinsARampAtItsLowAndItsHighEdge)
{
    relief.set(1, 1, block(CornerHeights::of(0.5f, 1.0f, 1)));
    relief.set(2, 1, block(flat(1.0f)));
    EXPECT_EQ(relief.openEdges(1, 1), osg::Vec4f(0.0f, 1.0f, 0.0f, 1.0f));
}

TEST_F(ReliefTest, PartsWhatMayMoveFromEverythingRoundIt)
{
    relief.set(1, 1, block(flat(0.5f), false, true));
    EXPECT_EQ(relief.openEdges(1, 1), osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_EQ(relief.openEdges(0, 1), osg::Vec4f(1.0f, 0.0f, 1.0f, 0.0f));
}

TEST_F(ReliefTest, HidesFacesBehindMergedFlatBlocksAlone)
{
    relief.set(0, 0, block(flat(1.0f), false));
    relief.set(1, 0, block(CornerHeights::of(0.5f, 1.0f, 0)));
    EXPECT_EQ(relief.solidHeight(2, 2), 0.5f);
    EXPECT_EQ(relief.solidHeight(0, 0), 0.0f);
    EXPECT_EQ(relief.solidHeight(1, 0), 0.0f);
    EXPECT_EQ(relief.solidHeight(-1, 5), 0.0f);
}

}  // namespace
