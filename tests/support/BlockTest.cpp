#include "support/BlockTest.h"

#include "game/Rollix.h"
#include "hand/HandCamera.h"
#include "level/Ball.h"

#include <QSize>

namespace {

constexpr unsigned int motionWithoutGravity = 1;
const QSize frameSize(800, 600);

class GeodeCollector : public osg::NodeVisitor
{
public:
    GeodeCollector() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}

    void apply(osg::Geode& geode) override { geodes.push_back(&geode); }

    std::vector<const osg::Geode*> geodes;
};

}  // namespace

BlockTest::~BlockTest()
{
    looksAt(osg::Vec3d(0.0, -2.0, 0.0), 25.0f);
    game.handCamera->setHeight(30.0f);
}

osg::Vec3d BlockTest::positionOf(const Block& block) const
{
    return block.getTransform()->getMatrix().getTrans();
}

void BlockTest::hovers(const osg::Vec3d& position)
{
    game.setMotion(ball().getId(), motionWithoutGravity);
    putsBall(position);
    ticks();
}

void BlockTest::hoversAbove(const Block& block, double distance)
{
    hovers(positionOf(block) + osg::Vec3d(0.0, 0.0, distance));
}

void BlockTest::touches(Block& block)
{
    block.onBallContact(&ball());
}

std::vector<const osg::Geode*> BlockTest::geodesOf(const Block& block) const
{
    GeodeCollector collector;
    block.getTransform()->accept(collector);
    return collector.geodes;
}

void BlockTest::looksAt(const osg::Vec3d& point, float distance)
{
    game.handCamera->setCenter(osg::Vec3f(point));
    game.handCamera->setHeight(float(point.z()) + distance);
    game.handCamera->setDistance(distance);
}

QPoint BlockTest::pixelOf(const osg::Vec3d& point) const
{
    const osg::Camera* camera = game.getCamera();
    const osg::Vec3d place = point * camera->getViewMatrix() * camera->getProjectionMatrix();
    return QPoint(int((1.0 + place.x()) * 0.5 * frameSize.width()),
                  int((1.0 - place.y()) * 0.5 * frameSize.height()));
}

bool BlockTest::comesTrue(const std::function<bool()>& condition)
{
    for (int i = 0; i < 2000 && !condition(); ++i)
        waits(10);
    return condition();
}

QImage cutout(const QImage& frame, const QPoint& middle, int reach)
{
    return frame.copy(middle.x() - reach, middle.y() - reach, 2 * reach + 1, 2 * reach + 1);
}

int redPixels(const QImage& picture)
{
    int count = 0;
    for (int row = 0; row < picture.height(); ++row) {
        for (int column = 0; column < picture.width(); ++column) {
            const QColor color = picture.pixelColor(column, row);
            if (color.red() > 110 && color.red() > 2 * color.green() &&
                color.red() > 2 * color.blue())
                ++count;
        }
    }
    return count;
}
