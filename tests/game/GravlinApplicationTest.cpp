#include "game/GravlinApplication.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <gtest/gtest.h>
#include <osg/observer_ptr>

namespace {

constexpr unsigned int bodyId = 3;

/// A game that overrides nothing.
class PlainApplication : public GravlinApplication
{
public:
    using GravlinApplication::actorTransforms;
    using GravlinApplication::sceneRoot;

    void makeBody(unsigned int id)
    {
        createSphere(id, 0.5, 1.0, "holz", 1, 1, 1);
        setPose(id, osg::Matrixd::rotate(1.0, osg::Vec3d(0.0, 0.0, 1.0)) *
                        osg::Matrixd::translate(1.0, 2.0, 3.0));
    }
};

class GravlinApplicationTest : public testing::Test
{
protected:
    GravlinApplicationTest()
    {
        application->createScene(osg::Vec3f());
        application->createMaterial("holz", 0.2f, 0.05f, 0.0f);
    }

    osg::ref_ptr<osg::MatrixTransform> shown(unsigned int id)
    {
        osg::ref_ptr<osg::MatrixTransform> transform =
            new osg::MatrixTransform(osg::Matrixd::translate(7.0, 8.0, 9.0));
        application->setActorTransform(id, transform);
        return transform;
    }

    // As the viewer does, it is held on its view side.
    PlainApplication* application = new PlainApplication;
    osg::ref_ptr<osgViewer::View> view = application;
};

TEST_F(GravlinApplicationTest, RunsInRealTimeUnlessAGameDecidesOtherwise)
{
    EXPECT_EQ(application->frameRate(), 50);
    EXPECT_EQ(application->timeStep(), 0.02f);
    application->update();
}

TEST_F(GravlinApplicationTest, TakesItsStepFromItsRate)
{
    class Slow : public PlainApplication
    {
    public:
        int frameRate() override { return 8; }
    };
    auto* slow = new Slow;
    const osg::ref_ptr<osgViewer::View> held = slow;
    EXPECT_EQ(slow->timeStep(), 0.125f);
}

TEST_F(GravlinApplicationTest, CopiesThePoseOfAnActorToItsTransform)
{
    application->makeBody(bodyId);
    const auto transform = shown(bodyId);
    application->step(0.02);
    application->syncTransforms();
    const osg::Matrixd& matrix = transform->getMatrix();
    const osg::Vec3d place = matrix.getTrans();
    EXPECT_NEAR((place - osg::Vec3d(1.0, 2.0, 3.0)).length(), 0.0, 1e-5);
    const osg::Vec3d right = osg::Matrixd::transform3x3(osg::Vec3d(1.0, 0.0, 0.0), matrix);
    EXPECT_NEAR((right - osg::Vec3d(std::cos(1.0), std::sin(1.0), 0.0)).length(), 0.0, 1e-5);
}

TEST_F(GravlinApplicationTest, HasNothingToCopyWithoutActors)
{
    const auto transform = shown(bodyId);
    application->syncTransforms();
    EXPECT_EQ(transform->getMatrix().getTrans(), osg::Vec3d(7.0, 8.0, 9.0))
        << "a transform without an actor keeps what it has";
    EXPECT_EQ(application->actorTransforms.at(bodyId), transform) << "and its entry";
}

TEST_F(GravlinApplicationTest, MakesNoEntryForAnActorThatNothingShows)
{
    application->makeBody(bodyId);
    application->step(0.02);
    application->syncTransforms();
    EXPECT_TRUE(application->actorTransforms.empty());
}

TEST_F(GravlinApplicationTest, KeepsAnEntryThatNoLongerShowsAnything)
{
    application->makeBody(bodyId);
    const osg::observer_ptr<osg::MatrixTransform> transform = shown(bodyId).get();
    application->setActorTransform(bodyId, nullptr);
    EXPECT_FALSE(transform.valid());
    application->step(0.02);
    application->syncTransforms();
    ASSERT_EQ(application->actorTransforms.count(bodyId), 1u);
    EXPECT_EQ(application->actorTransforms.at(bodyId), nullptr);
}

TEST_F(GravlinApplicationTest, LetsEveryEventPass)
{
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
    QMouseEvent mouse(QEvent::MouseButtonPress, QPointF(), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QWheelEvent wheel(QPointF(), QPointF(), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    key.ignore();
    mouse.ignore();
    wheel.ignore();
    application->keyPressEvent(&key);
    application->keyReleaseEvent(&key);
    application->mousePressEvent(&mouse);
    application->mouseReleaseEvent(&mouse);
    application->mouseDoubleClickEvent(&mouse);
    application->mouseMoveEvent(&mouse);
    application->wheelEvent(&wheel);
    EXPECT_FALSE(key.isAccepted());
    EXPECT_FALSE(mouse.isAccepted());
    EXPECT_FALSE(wheel.isAccepted());
}

TEST_F(GravlinApplicationTest, LetsItsSceneGoWhenTheViewerLetsItGo)
{
    EXPECT_EQ(application->sceneRoot, nullptr);
    application->makeBody(bodyId);
    const osg::observer_ptr<osg::MatrixTransform> transform = shown(bodyId).get();
    application->sceneRoot = new osg::Group;
    const osg::observer_ptr<osg::Group> root = application->sceneRoot.get();
    const osg::observer_ptr<osgViewer::View> itself = view.get();
    view = nullptr;
    EXPECT_FALSE(itself.valid());
    EXPECT_FALSE(transform.valid());
    EXPECT_FALSE(root.valid());
}

}  // namespace
