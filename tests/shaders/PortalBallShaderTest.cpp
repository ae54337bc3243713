#include "FrameGrab.h"
#include "base/WorldNumbers.h"
#include "platform/osgqt/GLWidget.h"
#include "platform/osgqt/GraphicsWindowQt.h"
#include "shaders/ShaderProgram.h"
#include "shaders/StageRecipes.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QWindow>
#include <gtest/gtest.h>
#include <osg/Geode>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osgViewer/Viewer>

#include <memory>
#include <string>

namespace {

constexpr int pictureWidth = 400;
constexpr int pictureHeight = 200;
constexpr int exposureLimit = 10000;  // milliseconds for the window to come up
constexpr double blockHeight = 1.0;
constexpr double faceDistance = 0.5;  // of every face of such a block from its middle

const osg::Vec3d senderPlace(-2.0, 0.0, blockHeight / 2);
const osg::Vec3d receiverPlace(2.0, 0.0, blockHeight / 2);

/// The ways into a block of the five faces that can have a mouth.
const osg::Vec3d waysIn[] = {{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}};

/// The ball alone before a black background, seen slantwise from above: what is left of the middle
/// of the picture is at the sender, what is right of it at the receiver.
class PortalBallShader : public ::testing::Test
{
protected:
    PortalBallShader()
        : widget(
              std::make_unique<osgQt::GLWidget>(nullptr, nullptr, Qt::FramelessWindowHint, false)),
          window(new osgQt::GraphicsWindowQt(widget.get())),
          viewer(new osgViewer::Viewer)
    {
        widget->resize(pictureWidth, pictureHeight);
        widget->show();
        QElapsedTimer clock;
        clock.start();
        while (!widget->windowHandle()->isExposed() && clock.elapsed() < exposureLimit)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        window->getState()->setUseModelViewAndProjectionUniforms(true);
        window->getState()->setUseVertexAttributeAliasing(true);

        osg::Camera* camera = viewer->getCamera();
        camera->setGraphicsContext(window);
        camera->setViewport(0, 0, pictureWidth, pictureHeight);
        camera->setClearColor(osg::Vec4(0, 0, 0, 1));
        camera->setProjectionMatrixAsOrtho(-4, 4, -2, 2, 1, 100);
        camera->setComputeNearFarMode(osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR);
        camera->setCullingMode(osg::CullSettings::NO_CULLING);
        camera->setViewMatrixAsLookAt({0, -20, 20}, {0, 0, 0}, {0, 0, 1});
        grab = std::make_unique<FrameGrab>(camera);

        makeBall();
        viewer->setThreadingModel(osgViewer::Viewer::SingleThreaded);
        viewer->setSceneData(scene);
        viewer->realize();
    }

    ~PortalBallShader() override
    {
        // The window's OpenGL objects go while its context is still there.
        grab.reset();
        shader = nullptr;
        viewer = nullptr;
        window = nullptr;
        widget.reset();
    }

    void makeBall()
    {
        osg::ref_ptr<osg::Geode> geode = new osg::Geode;
        osg::ref_ptr<osg::ShapeDrawable> sphere =
            new osg::ShapeDrawable(new osg::Sphere(osg::Vec3(), world::ballRadius));
        sphere->setColor(osg::Vec4(0.9f, 0.1f, 0.1f, 1.0f));
        geode->addDrawable(sphere);
        ball->addChild(geode);
        scene->addChild(ball);
        scene->getOrCreateStateSet()->addUniform(
            new osg::Uniform("a_LightPos", osg::Vec3f(8, -8, 16)));
        uniforms()->addUniform(new osg::Uniform("a_PortalActive", false));

        shader = new ShaderProgram(ball);
        setOwnStages(*shader, "ball");
    }

    osg::StateSet* uniforms() { return ball->getOrCreateStateSet(); }

    /// Opens the portals between blocks with these ways in, and puts the ball that far past the
    /// face of the sender, both on a board of this pose.
    void opens(const osg::Vec3d& wayIn, const osg::Vec3d& receiverWayIn, double pastFace,
               const osg::Matrixd& board = osg::Matrixd())
    {
        const osg::Matrixf sender = osg::Matrixd::translate(senderPlace) * board;
        const osg::Matrixf receiver = osg::Matrixd::translate(receiverPlace) * board;
        set("a_PortalSenderMatrix", sender);
        set("a_PortalReceiverMatrix", osg::Matrixf::translate(-receiverWayIn) * receiver);
        set("a_PortalRotationMatrix", osg::Matrixf::rotate(wayIn, -receiverWayIn));
        uniforms()->getOrCreateUniform("a_PortalActive", osg::Uniform::BOOL)->set(true);
        ball->setMatrix(osg::Matrixd::translate(senderPlace + wayIn * (pastFace - faceDistance)) *
                        board);
    }

    void set(const std::string& name, const osg::Matrixf& matrix)
    {
        uniforms()->getOrCreateUniform(name, osg::Uniform::FLOAT_MAT4)->set(matrix);
    }

    struct Areas
    {
        int atSender;
        int atReceiver;
    };

    /// Pixels of the ball on either side of the picture.
    Areas drawn()
    {
        viewer->frame();
        const QImage image = grab->image();
        Areas areas{0, 0};
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                if (qRed(image.pixel(x, y)) > 0)
                    ++(x < image.width() / 2 ? areas.atSender : areas.atReceiver);
        }
        return areas;
    }

    std::unique_ptr<osgQt::GLWidget> widget;
    osg::ref_ptr<osgQt::GraphicsWindowQt> window;
    osg::ref_ptr<osgViewer::Viewer> viewer;
    std::unique_ptr<FrameGrab> grab;
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    osg::ref_ptr<osg::MatrixTransform> ball = new osg::MatrixTransform;
    osg::ref_ptr<ShaderProgram> shader;
};

TEST_F(PortalBallShader, DrawsTheWholeBallInOnePlaceWhileNoPortalIsOpen)
{
    ball->setMatrix(osg::Matrixd::translate(senderPlace));
    const Areas areas = drawn();
    const double pixelsPerUnit = pictureHeight / 4.0;
    const double disc =
        osg::PI * world::ballRadius * world::ballRadius * pixelsPerUnit * pixelsPerUnit;
    EXPECT_NEAR(areas.atSender, disc, 0.15 * disc);
    EXPECT_EQ(areas.atReceiver, 0);
}

TEST_F(PortalBallShader, DrawsTheBallAtTheOneMouthBeforeAndAtTheOtherAfterEveryPairOfFaces)
{
    ball->setMatrix(osg::Matrixd::translate(senderPlace));
    const int whole = drawn().atSender;
    const osg::Matrixd tilted = osg::Matrixd::rotate(0.4, osg::Vec3d(1.0, 0.5, 0.0));

    for (const osg::Vec3d& wayIn : waysIn) {
        for (const osg::Vec3d& receiverWayIn : waysIn) {
            for (const osg::Matrixd& board : {osg::Matrixd(), tilted}) {
                SCOPED_TRACE(::testing::Message()
                             << "in by " << wayIn.x() << " " << wayIn.y() << " " << wayIn.z()
                             << ", receiver's by " << receiverWayIn.x() << " " << receiverWayIn.y()
                             << " " << receiverWayIn.z() << (board.isIdentity() ? "" : ", tilted"));
                opens(wayIn, receiverWayIn, -1.1 * world::ballRadius, board);
                Areas areas = drawn();
                EXPECT_NEAR(areas.atSender, whole, 0.1 * whole);
                EXPECT_EQ(areas.atReceiver, 0);

                opens(wayIn, receiverWayIn, 1.1 * world::ballRadius, board);
                areas = drawn();
                EXPECT_EQ(areas.atSender, 0);
                EXPECT_NEAR(areas.atReceiver, whole, 0.1 * whole);
            }
        }
    }
}

TEST_F(PortalBallShader, ShowsEveryPartOfABallInAMouthAtOneOfTheTwoMouthsOnly)
{
    // Looked at from the front, along the faces: halves of the ball are halves of its disc.
    const osg::Vec3d left(1, 0, 0);
    const osg::Vec3d right(-1, 0, 0);
    ball->setMatrix(osg::Matrixd::translate(senderPlace));
    const int whole = drawn().atSender;

    int before = whole + 1;
    for (const double pastFace : {-0.2, -0.1, 0.0, 0.1, 0.2}) {
        SCOPED_TRACE(pastFace);
        opens(left, right, pastFace);
        const Areas areas = drawn();
        EXPECT_NEAR(areas.atSender + areas.atReceiver, whole, 0.15 * whole);
        EXPECT_LT(areas.atSender, before);
        before = areas.atSender;
    }
    opens(left, right, 0.0);
    EXPECT_NEAR(drawn().atSender, whole / 2, 0.1 * whole);
}

}  // namespace
