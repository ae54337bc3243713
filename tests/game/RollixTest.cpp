#include "game/Rollix.h"

#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "hand/HandCamera.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Ground.h"
#include "level/Level.h"
#include "platform/osgqt/GraphicsWindowQt.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/OutputCapture.h"
#include "support/ProbeBlock.h"
#include "support/SceneSearch.h"

#include <osgText/Text>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

using namespace physx;

namespace {

using Lines = std::vector<std::string>;

class RollixTest : public GameTest
{
protected:
    RollixTest()
    {
        loads({"S..", "...", "..."});
        ticks();
    }

    Lines textsShown() { return textsBelow(game.getSceneData()); }

    bool isShown(const std::string& text)
    {
        const Lines texts = textsShown();
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    }

    void opensPauseMenu() { releases(Qt::Key_Escape); }
};

TEST_F(RollixTest, AdvancesAThirtiethOfASecondInEachOfFiftyTicks)
{
    EXPECT_EQ(game.timeStep(), 0.033333335f);
    EXPECT_EQ(game.frameRate(), 50);
    putsBall(osg::Vec3d(0.0, 0.0, 500.0));
    ticks();
    const float before = ballVelocity().z();
    ticks();
    // The numbers themselves: everywhere else they stand by their names.
    EXPECT_NEAR(ballVelocity().z() - before, -9.81f / 30.0f, 1e-4f);
}

TEST_F(RollixTest, LooksAtTheBoardFromItsCircle)
{
    osg::Camera* camera = game.getCamera();
    EXPECT_EQ(camera->getGraphicsContext(), widget.getGraphicsWindow());
    EXPECT_EQ(camera->getClearColor(), osg::Vec4(0.2f, 0.2f, 0.6f, 1.0f));
    double angle = 0.0;
    double shape = 0.0;
    double nearPlane = 0.0;
    double farPlane = 0.0;
    camera->getProjectionMatrixAsPerspective(angle, shape, nearPlane, farPlane);
    EXPECT_NEAR(angle, 30.0, 1e-6);
    EXPECT_NEAR(shape, 4.0 / 3.0, 0.01);
    EXPECT_EQ(game.getCameraManipulator(), game.handCamera.get());
    EXPECT_TRUE(game.handCamera->getVerticalAxisFixed());
    EXPECT_EQ(game.handCamera->angle(), 3.1415927f);
    ticks();
    osg::Vec3d eye;
    osg::Vec3d center;
    osg::Vec3d up;
    camera->getViewMatrixAsLookAt(eye, center, up);
    EXPECT_NEAR((eye - osg::Vec3d(0.0, -25.0, 30.0)).length(), 0.0, 1e-3);
    osg::Vec3d towards = osg::Vec3d(0.0, -2.0, 0.0) - eye;
    towards.normalize();
    EXPECT_NEAR((center - eye) * towards, (center - eye).length(), 1e-3);
}

TEST_F(RollixTest, LightsTheWorldFromOnePlace)
{
    EXPECT_EQ(valueOf<osg::Vec3f>(game.getSceneData()->getStateSet()->getUniform("a_LightPos")),
              osg::Vec3f(8.0f, -8.0f, 16.0f));
}

TEST_F(RollixTest, LoadsEightHitsAndNoMore)
{
    OutputCapture output;
    for (const char* name : {"hit1", "hit2", "hit3", "hit4", "hit5", "hit6", "hit7", "hit8"})
        EXPECT_TRUE(game.playSound(name, 0.0f, 0, nullptr)) << name;
    EXPECT_EQ(output.text(), "");
    EXPECT_FALSE(game.playSound("hit9", 0.0f, 0, nullptr));
    EXPECT_EQ(output.text(), "I do not know the sound hit9 !\n");
}

TEST_F(RollixTest, WaitsForTheHandAfterEveryLevelChange)
{
    for (int state = 0; state <= 6; ++state) {
        game.state = GameState(state);
        game.loadLevel(0);
        EXPECT_EQ(game.state, GameState::WaitingForRest);
    }
}

TEST_F(RollixTest, DropsTheOldLevelBeforeItMakesTheNewOne)
{
    const osg::observer_ptr<Level> before = game.level.get();
    const std::size_t actors = GameInside::actorsOf(game).size();
    const std::size_t transforms = GameInside::transformsOf(game).size();
    loads({"SRRRRG"});
    EXPECT_FALSE(before.valid());
    EXPECT_GT(GameInside::transformsOf(game).size(), transforms);
    game.loadLevel(0);
    EXPECT_EQ(GameInside::actorsOf(game).size(), 3u + 6u);
    loads({"S..", "...", "..."});
    EXPECT_EQ(GameInside::actorsOf(game).size(), actors);
    EXPECT_EQ(GameInside::transformsOf(game).size(), transforms);
}

TEST_F(RollixTest, OffersFourWaysOnInThePauseMenu)
{
    EXPECT_FALSE(isShown("Menu"));
    opensPauseMenu();
    const Lines texts = textsShown();
    const auto title = std::find(texts.begin(), texts.end(), "Menu");
    ASSERT_NE(title, texts.end());
    EXPECT_EQ(Lines(title, texts.end()),
              (Lines{"Menu", "Restart", "Next Level", "Previous Level", "Continue"}));
}

TEST_F(RollixTest, OffersNoWayBackIntoALevelThatIsOver)
{
    game.endMenu->show();
    const Lines texts = textsShown();
    const auto title = std::find(texts.begin(), texts.end(), "Menu");
    ASSERT_NE(title, texts.end());
    EXPECT_EQ(Lines(title, texts.end()),
              (Lines{"Menu", "Restart", "Next Level", "Previous Level"}));
}

TEST_F(RollixTest, ServesAMenusChoiceInTheNextTick)
{
    writes({"S"}, 1);
    struct Choice
    {
        const char* line;
        unsigned int number;
    };
    for (const Choice& choice : {Choice{"Restart", 0}, Choice{"Next Level", 1},
                                 Choice{"Restart", 1}, Choice{"Previous Level", 0}}) {
        for (const bool atEnd : {false, true}) {
            if (atEnd && choice.number != level().number)
                continue;
            SCOPED_TRACE(choice.line);
            const osg::observer_ptr<Level> before = game.level.get();
            if (atEnd)
                game.endMenu->show();
            else
                opensPauseMenu();
            ticks(2);
            ASSERT_TRUE(picks(atEnd ? "Restart" : choice.line));
            EXPECT_TRUE(before.valid()) << "a request for now";
            EXPECT_EQ(game.state, GameState::WaitingForRest);
            EXPECT_FALSE(game.pauseMenu->isVisible());
            EXPECT_FALSE(game.endMenu->isVisible());
            EXPECT_FALSE(GameLoop::isPaused());
            ticks();
            EXPECT_FALSE(before.valid());
            EXPECT_EQ(level().number, choice.number);
            const osg::observer_ptr<Level> served = game.level.get();
            ticks();
            EXPECT_TRUE(served.valid()) << "once";
        }
    }
}

TEST_F(RollixTest, AsksForTheLevelBeforeTheFirst)
{
    OutputCapture output;
    opensPauseMenu();
    ASSERT_TRUE(picks("Previous Level"));
    ticks();
    EXPECT_EQ(output.text(), "reading level data/Rollix/level-1.png\n");
    EXPECT_TRUE(board().getBlocks().empty());
    ticks(10);
}

TEST_F(RollixTest, GoesOnWithTheSameLevelByContinue)
{
    opensPauseMenu();
    const Level* before = game.level;
    ASSERT_TRUE(picks("Continue"));
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_FALSE(game.pauseMenu->isVisible());
    ticks(2);
    EXPECT_EQ(game.level, before);
}

TEST_F(RollixTest, TellsGoodNewsInGreenAndBadNewsInRed)
{
    EXPECT_FALSE(isShown("Well Done!"));
    game.levelCompleted();
    EXPECT_EQ(game.state, GameState::LevelCompleted);
    EXPECT_TRUE(game.messageText->isVisible());
    EXPECT_TRUE(isShown("Well Done!"));
    game.levelFailed();
    EXPECT_EQ(game.state, GameState::LevelFailed);
    EXPECT_TRUE(isShown("Well Done!")) << "what stands there stays";
    EXPECT_FALSE(isShown("Not even close..."));
    game.messageText->hide();
    game.levelFailed();
    EXPECT_TRUE(isShown("Not even close..."));
    game.loadLevel(0);
    EXPECT_TRUE(isShown("Not even close...")) << "while the next level waits for the hand";
}

TEST_F(RollixTest, WritesItsMessageBelowTheMiddleInItsColour)
{
    const osg::Vec4f green(0.0f, 0.9f, 0.0f, 1.0f);
    const osg::Vec4f red(0.9f, 0.0f, 0.0f, 1.0f);
    const auto expectWritten = [&](const std::string& words, const osg::Vec4f& color) {
        const osgText::Text* text = textReading(words, game.getSceneData());
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text->getColor(), color);
        EXPECT_EQ(text->getAlignment(), osgText::TextBase::CENTER_BOTTOM);
        const osg::Viewport* window = game.getCamera()->getViewport();
        EXPECT_EQ(text->getPosition(), osg::Vec3(std::floor(window->width() * 0.5),
                                                 std::floor(window->height() * 0.05f), 0.0));
    };
    game.levelCompleted();
    expectWritten("Well Done!", green);
    game.messageText->hide();
    game.levelFailed();
    expectWritten("Not even close...", red);
}

TEST_F(RollixTest, EndsALevelUnderAPauseMenuAsInPlay)
{
    opensPauseMenu();
    // The fuse of a mine burns on behind the menu.
    level().changeLives(-5, false);
    EXPECT_EQ(game.state, GameState::LevelFailed);
    EXPECT_FALSE(game.pauseMenu->isVisible());
    EXPECT_FALSE(game.endMenu->isVisible());
    EXPECT_FALSE(GameLoop::isPaused());
    EXPECT_TRUE(isShown("Not even close..."));
    EXPECT_FALSE(isShown("Menu"));
}

TEST_F(RollixTest, LeavesThePauseMenuUpWhenALifeIsLostBehindItAndOthersAreLeft)
{
    opensPauseMenu();
    level().changeLives(-4, false);
    EXPECT_EQ(game.state, GameState::PauseMenu);
    EXPECT_TRUE(game.pauseMenu->isVisible());
    EXPECT_TRUE(GameLoop::isPaused());
}

TEST_F(RollixTest, KeepsTheCameraWhereItIsThroughALevelChange)
{
    const auto view = [this] {
        ticks();
        return game.getCamera()->getViewMatrix();
    };
    const osg::Matrixd before = view();
    game.handCamera->setAngle(1.0f);
    game.handCamera->setHeight(20.0f);
    const osg::Matrixd turned = view();
    EXPECT_NE(turned, before);
    loads({"S....G"});
    EXPECT_EQ(game.handCamera->angle(), 1.0f);
    EXPECT_EQ(view(), turned);
    game.handCamera->setAngle(3.1415927f);
    game.handCamera->setHeight(30.0f);
    EXPECT_EQ(view(), before);
}

TEST_F(RollixTest, LeavesTheMenuToTheNextSensorFrameWhenALevelEnds)
{
    game.levelCompleted();
    ticks(5);
    EXPECT_FALSE(game.endMenu->isVisible());
    EXPECT_FALSE(GameLoop::isPaused()) << "the world goes on behind the message";
}

/// Reports as PhysX makes them, about whom the test likes.
class RollixEventsTest : public RollixTest
{
protected:
    RollixEventsTest()
    {
        probe = new ProbeBlock(level());
        board().addContactShape(probe, board().getId());
        board().addTriggerShape(probe, board().getId());
    }

    PxRigidActor* actor(unsigned int id) { return GameInside::actorsOf(game).at(id); }

    static PxShape* shapeOf(PxRigidActor* body)
    {
        PxShape* shape = nullptr;
        body->getShapes(&shape, 1);
        return shape;
    }

    PxContactPair pairOf(unsigned int idA, unsigned int idB)
    {
        PxContactPair pair;
        pair.shapes[0] = shapeOf(actor(idA));
        pair.shapes[1] = shapeOf(actor(idB));
        pair.contactCount = 0;
        return pair;
    }

    void reportsContact(unsigned int idA, unsigned int idB, const std::vector<PxContactPair>& pairs)
    {
        PxContactPairHeader header;
        header.actors[0] = actor(idA);
        header.actors[1] = actor(idB);
        game.onContact(header, pairs.data(), PxU32(pairs.size()));
    }

    PxTriggerPair triggerOf(unsigned int idA, unsigned int idB, PxPairFlag::Enum status)
    {
        PxTriggerPair pair;
        pair.triggerActor = actor(idA);
        pair.otherActor = actor(idB);
        pair.triggerShape = shapeOf(actor(idA));
        pair.otherShape = shapeOf(actor(idB));
        pair.status = status;
        pair.flags = PxTriggerPairFlags();
        return pair;
    }

    unsigned int groundId() { return level().ground->getId(); }
    unsigned int boardId() { return board().getId(); }
    unsigned int ballId() { return ball().getId(); }

    osg::ref_ptr<ProbeBlock> probe;
};

TEST_F(RollixEventsTest, CostALifeForEveryReportOfBallAndGround)
{
    reportsContact(groundId(), ballId(), {pairOf(groundId(), ballId())});
    EXPECT_EQ(level().livesLeft(), 4);
    reportsContact(ballId(), groundId(), {pairOf(ballId(), groundId())});
    EXPECT_EQ(level().livesLeft(), 3) << "either way round, and without a guard";
    EXPECT_EQ(probe->heard, "");
}

TEST_F(RollixEventsTest, TellTheBoardOfTheBallByTheFirstPairAlone)
{
    reportsContact(boardId(), ballId(), {pairOf(boardId(), ballId())});
    EXPECT_EQ(probe->heard, "contact ");
    reportsContact(boardId(), ballId(),
                   {pairOf(ballId(), boardId()), pairOf(boardId(), groundId())});
    EXPECT_EQ(probe->heard, "contact contact ");
    reportsContact(boardId(), ballId(),
                   {pairOf(boardId(), groundId()), pairOf(boardId(), ballId())});
    EXPECT_EQ(probe->heard, "contact contact ");
    reportsContact(boardId(), groundId(), {pairOf(boardId(), ballId())});
    EXPECT_EQ(probe->heard, "contact contact ") << "the ball took no part";
    EXPECT_EQ(level().livesLeft(), 5);
}

TEST_F(RollixEventsTest, TellOfTheBallsWaysInAndOut)
{
    PxTriggerPair pairs[] = {triggerOf(boardId(), ballId(), PxPairFlag::eNOTIFY_TOUCH_FOUND),
                             triggerOf(boardId(), ballId(), PxPairFlag::eNOTIFY_TOUCH_LOST)};
    game.onTrigger(pairs, 2);
    EXPECT_EQ(probe->heard, "enter leave ");
}

TEST_F(RollixEventsTest, PassTriggersOfRemovedShapesOver)
{
    PxTriggerPair pairs[] = {triggerOf(boardId(), ballId(), PxPairFlag::eNOTIFY_TOUCH_LOST),
                             triggerOf(boardId(), ballId(), PxPairFlag::eNOTIFY_TOUCH_LOST),
                             triggerOf(boardId(), ballId(), PxPairFlag::eNOTIFY_TOUCH_FOUND)};
    pairs[0].flags = PxTriggerPairFlag::eREMOVED_SHAPE_TRIGGER;
    pairs[1].flags = PxTriggerPairFlag::eREMOVED_SHAPE_OTHER;
    game.onTrigger(pairs, 3);
    EXPECT_EQ(probe->heard, "enter ") << "and the rest of the report counts";
}

TEST_F(RollixEventsTest, PassTriggersWithoutTheBallOver)
{
    PxTriggerPair pairs[] = {triggerOf(boardId(), groundId(), PxPairFlag::eNOTIFY_TOUCH_FOUND)};
    game.onTrigger(pairs, 1);
    EXPECT_EQ(probe->heard, "");
    // The right actors with a shape of another kind.
    pairs[0] = triggerOf(boardId(), ballId(), PxPairFlag::eNOTIFY_TOUCH_FOUND);
    pairs[0].triggerShape = shapeOf(actor(groundId()));
    game.onTrigger(pairs, 1);
    EXPECT_EQ(probe->heard, "");
}

}  // namespace
