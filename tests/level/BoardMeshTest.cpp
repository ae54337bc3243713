#include "level/BoardMesh.h"

#include "level/Board.h"
#include "support/GameTest.h"

#include <osg/Geometry>

#include <cmath>

namespace {

constexpr float tolerance = 1e-4f;
constexpr Cell rampToTheRight{90, 100, 75};
constexpr Cell rampToTheTop{90, 100, 76};

/// Ramps that rise to either side, walls, floors and a hole, all of them merged.
class BoardMeshTest : public GameTest
{
protected:
    BoardMeshTest()
    {
        loads(LevelPicture({"S..##", "...##", "...##", ".. .."})
                  .set(2, 0, rampToTheRight)
                  .set(2, 1, rampToTheRight)
                  .set(3, 3, rampToTheTop)
                  .set(4, 3, rampToTheTop));
    }

    const osg::Geometry& mesh()
    {
        const osg::Geode* geode = board().getGeode();
        EXPECT_EQ(geode->getNumDrawables(), 1u);
        return *geode->getDrawable(0)->asGeometry();
    }

    const osg::Vec3Array& vertices() { return arrayOf(mesh().getVertexArray()); }
    const osg::Vec3Array& normals() { return arrayOf(mesh().getNormalArray()); }
    const osg::Vec3Array& cells() { return arrayOf(mesh().getTexCoordArray(0)); }

private:
    static const osg::Vec3Array& arrayOf(const osg::Array* array)
    {
        return dynamic_cast<const osg::Vec3Array&>(*array);
    }
};

}  // namespace

TEST_F(BoardMeshTest, TellsEachVertexTheMiddleOfItsCell)
{
    for (std::size_t i = 0; i < vertices().size(); ++i) {
        EXPECT_LT(std::abs(vertices()[i].x() - cells()[i].x()), 0.5f + tolerance) << i;
        EXPECT_LT(std::abs(vertices()[i].y() - cells()[i].y()), 0.5f + tolerance) << i;
    }
}

TEST_F(BoardMeshTest, TellsEachVertexHowHighTheUpperFaceOfItsCellIsThere)
{
    int slopingAlongX = 0;
    int slopingAlongY = 0;
    for (std::size_t i = 0; i < vertices().size(); ++i) {
        if (normals()[i].z() < tolerance) {
            EXPECT_GT(cells()[i].z(), vertices()[i].z() - tolerance) << "a side, vertex " << i;
            continue;
        }
        EXPECT_NEAR(cells()[i].z(), vertices()[i].z(), tolerance) << i;
        slopingAlongX += std::abs(normals()[i].x()) > 0.1f;
        slopingAlongY += std::abs(normals()[i].y()) > 0.1f;
    }
    EXPECT_EQ(slopingAlongX, 2 * 6);
    EXPECT_EQ(slopingAlongY, 2 * 6);
}

TEST_F(BoardMeshTest, LeavesFacesAgainstANeighbourAway)
{
    loads({"..", "##", "  ", "S "});
    int sides = 0;
    for (std::size_t i = 0; i < vertices().size(); ++i) {
        const bool along = std::abs(vertices()[i].x()) < tolerance;
        EXPECT_FALSE(along && std::abs(normals()[i].x()) > 0.5f) << "between two of a height";
        const bool across = std::abs(vertices()[i].y() - 1.0f) < tolerance;
        sides += across && std::abs(normals()[i].y()) > 0.5f;
    }
    EXPECT_EQ(sides, 2 * 6) << "the walls look over the floors";
}
