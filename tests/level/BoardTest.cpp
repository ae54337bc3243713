#include "level/Board.h"

#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Ground.h"
#include "level/Level.h"
#include "support/ContactReport.h"
#include "support/DifferingPixels.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/OutputCapture.h"
#include "support/ProbeBlock.h"
#include "support/SceneSearch.h"

#include <osg/ShapeDrawable>

#include <cmath>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

using namespace physx;

namespace {

class BoardTest : public GameTest
{
protected:
    BoardTest() { loads({"S..", "...", "..."}); }

    ~BoardTest() override { GameInside::soundsOf(game) = sounds; }

    PxRigidActor* actor(unsigned int id) { return GameInside::actorsOf(game).at(id); }

    PxShape* shapeOf(unsigned int id)
    {
        PxShape* shape = nullptr;
        actor(id)->getShapes(&shape, 1);
        return shape;
    }

    ContactReport boardMeetsBall()
    {
        return ContactReport(actor(board().getId()), actor(ball().getId()));
    }

    void reports(const ContactReport& report)
    {
        board().onBallContact(report.header, report.pairs.data(), report.count());
    }

    /// Takes the sounds away: each hit then says its name on standard output.
    void listensToNames() { GameInside::soundsOf(game).clear(); }

    /// The joints of one kind, by their numbers.
    template <typename Joint>
    std::vector<Joint*> jointsOf(PxJointConcreteType::Enum type)
    {
        std::map<unsigned int, Joint*> found;
        for (const auto& [id, joint] : GameInside::jointsOf(game))
            if (joint->getConcreteType() == PxType(type))
                found[id] = static_cast<Joint*>(joint);
        std::vector<Joint*> result;
        for (const auto& [id, joint] : found)
            result.push_back(joint);
        return result;
    }

    const std::unordered_map<std::string, FMOD::Sound*> sounds = GameInside::soundsOf(game);

    osg::MatrixTransform* guide() { return GameInside::transformsOf(game).at(board().guideId); }
};

TEST_F(BoardTest, CostsNoActorAndNoJointForPlainBlocks)
{
    loads(LevelPicture(12, 9, cells::floor));
    EXPECT_EQ(GameInside::actorsOf(game).size(), 3u) << "ground, board and ball";
    EXPECT_EQ(GameInside::jointsOf(game).size(), 5u);
    EXPECT_EQ(actor(board().getId())->getNbShapes(), 108u) << "neighbours are never merged";
    EXPECT_EQ(board().getGeode()->getNumDrawables(), 1u) << "but they are drawn as one";
    EXPECT_NEAR(GameInside::bodyOf(game, board().getId()).getMass(), 54.0f, 1e-2f);
    for (const osg::ref_ptr<Block>& block : board().getBlocks())
        EXPECT_EQ(GameInside::actorsOf(game).count(block->getId()), 0u);
}

TEST_F(BoardTest, HasWoodFromTheOriginAndFloatsCalmly)
{
    EXPECT_EQ(valueOf<osg::Vec3f>(board().getTransform()->getParent(0)->getStateSet()->getUniform(
                  "a_TextureOffset")),
              osg::Vec3f());
    ticks();
    PxRigidDynamic& body = GameInside::bodyOf(game, board().getId());
    EXPECT_TRUE(body.getActorFlags() & PxActorFlag::eDISABLE_GRAVITY);
    EXPECT_EQ(body.getMaxAngularVelocity(), 1.0f);
    EXPECT_EQ(body.getAngularDamping(), 1.0f);
    EXPECT_EQ(shapeOf(board().getId())->getSimulationFilterData().word0, 2u);
    EXPECT_EQ(shapeOf(board().getId())->getSimulationFilterData().word1, 4u);
}

TEST_F(BoardTest, HangsOnOneConeAndFourCorners)
{
    const auto cones = jointsOf<PxSphericalJoint>(PxJointConcreteType::eSPHERICAL);
    ASSERT_EQ(cones.size(), 1u);
    EXPECT_EQ(cones[0]->getLimitCone().yAngle, 0.5235988f);
    EXPECT_EQ(cones[0]->getLimitCone().zAngle, 0.5235988f);
    EXPECT_TRUE(cones[0]->getSphericalJointFlags() & PxSphericalJointFlag::eLIMIT_ENABLED);
    const auto corners = jointsOf<PxDistanceJoint>(PxJointConcreteType::eDISTANCE);
    ASSERT_EQ(corners.size(), 4u);
    const PxVec3 places[] = {{-8, -8, 0}, {8, -8, 0}, {-8, 8, 0}, {8, 8, 0}};
    for (unsigned int i = 0; i < 4; ++i)
        EXPECT_EQ(corners[i]->getLocalPose(PxJointActorIndex::eACTOR0).p, places[i]);
}

TEST_F(BoardTest, FeelsNothingOfItsFourCornersInPlay)
{
    loads(LevelPicture(15, 15, cells::floor).set(7, 7, cells::start));
    const auto corners = jointsOf<PxDistanceJoint>(PxJointConcreteType::eDISTANCE);
    float farthest = 0.0f;
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Left, Qt::Key_Down, Qt::Key_Right, Qt::Key_Up}) {
        presses(key);
        for (int tick = 0; tick < 60; ++tick) {
            ticks();
            for (const PxDistanceJoint* joint : corners) {
                PxVec3 pull;
                PxVec3 twist;
                joint->getConstraint()->getForce(pull, twist);
                ASSERT_EQ(pull.magnitude(), 0.0f);
                farthest = std::max(farthest, joint->getDistance());
            }
        }
        releases(key);
    }
    EXPECT_GT(tiltDegrees(), 20.0);
    EXPECT_LT(farthest, 8.0f) << "they would engage past eleven units";
}

TEST_F(BoardTest, DrawsOneOfEightHits)
{
    ticks(30);
    listensToNames();
    OutputCapture output;
    ContactReport report = boardMeetsBall();
    report.touch(shapeOf(board().getId()), shapeOf(ball().getId()), {0.02f});
    for (int i = 0; i < 400; ++i)
        reports(report);
    const std::vector<std::string> lines = output.lines();
    EXPECT_EQ(lines.size(), 400u);
    std::set<std::string> names(lines.begin(), lines.end());
    std::set<std::string> expected;
    for (char digit = '1'; digit <= '8'; ++digit)
        expected.insert(std::string("I do not know the sound hit") + digit + " !");
    EXPECT_EQ(names, expected);
}

TEST_F(BoardTest, PlaysNoSoundForAnImpulseOfOneHundredth)
{
    ticks(30);
    listensToNames();
    OutputCapture output;
    const osg::ref_ptr<ProbeBlock> probe = new ProbeBlock(level());
    board().addContactShape(probe, board().getId());
    ContactReport report = boardMeetsBall();
    report.touch(shapeOf(board().getId()), shapeOf(ball().getId()), {0.01f});
    reports(report);
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(probe->heard, "contact ") << "a soft touch is a touch";
}

TEST_F(BoardTest, PlaysNoSoundWhenTheFirstPairIsNotBallAndBoard)
{
    ticks(30);
    listensToNames();
    const osg::ref_ptr<ProbeBlock> probe = new ProbeBlock(level());
    board().addContactShape(probe, board().getId());
    OutputCapture output;
    ContactReport report = boardMeetsBall();
    report.touch(shapeOf(board().getId()), shapeOf(level().ground->getId()), {0.5f})
        .touch(shapeOf(board().getId()), shapeOf(ball().getId()), {0.5f});
    reports(report);
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(probe->heard, "contact ") << "blocks are told all the same";
}

TEST_F(BoardTest, GoesByTheLastPointOfTheLastPair)
{
    ticks(30);
    listensToNames();
    OutputCapture output;
    ContactReport quiet = boardMeetsBall();
    quiet.touch(shapeOf(board().getId()), shapeOf(ball().getId()), {3.0f, 4.0f})
        .touch(shapeOf(board().getId()), shapeOf(ball().getId()), {5.0f, 0.001f});
    reports(quiet);
    EXPECT_EQ(output.text(), "");
    ContactReport loud = boardMeetsBall();
    loud.touch(shapeOf(board().getId()), shapeOf(ball().getId()), {0.001f})
        .touch(shapeOf(board().getId()), shapeOf(ball().getId()), {0.002f, 0.3f});
    reports(loud);
    EXPECT_EQ(output.lines().size(), 1u);
}

TEST_F(BoardTest, TellsABlockOnceAReportHoweverManyPointsItHas)
{
    const osg::ref_ptr<ProbeBlock> touched = new ProbeBlock(level());
    const osg::ref_ptr<ProbeBlock> other = new ProbeBlock(level());
    board().addContactShape(touched, board().getId());
    board().addContactShape(other, other->getId());
    ContactReport report = boardMeetsBall();
    report.touch(shapeOf(board().getId()), shapeOf(ball().getId()), {0.5f, 0.5f, 0.5f})
        .touch(shapeOf(board().getId()), shapeOf(ball().getId()), {0.5f, 0.5f});
    reports(report);
    EXPECT_EQ(touched->heard, "contact ");
    EXPECT_EQ(other->heard, "") << "not the one that took no part";
}

TEST_F(BoardTest, TellsOnlyTheBlockWhoseTriggerItIs)
{
    const osg::ref_ptr<ProbeBlock> own = new ProbeBlock(level());
    const osg::ref_ptr<ProbeBlock> other = new ProbeBlock(level());
    board().addTriggerShape(own, board().getId());
    board().addTriggerShape(other, other->getId());
    PxContactPairHeader actors;
    actors.actors[0] = actor(board().getId());
    actors.actors[1] = actor(ball().getId());
    PxTriggerPair pair;
    pair.status = PxPairFlag::eNOTIFY_TOUCH_FOUND;
    board().onBallTrigger(pair, actors);
    EXPECT_EQ(own->heard, "enter ");
    pair.status = PxPairFlag::eNOTIFY_TOUCH_LOST;
    board().onBallTrigger(pair, actors);
    EXPECT_EQ(own->heard, "enter leave ");
    EXPECT_EQ(other->heard, "");
}

TEST_F(BoardTest, HearsOfANewTouchAndNotOfRest)
{
    listensToNames();
    loads({"S"});
    OutputCapture output;
    ticks(60);
    EXPECT_EQ(output.lines().size(), 1u) << "it has dropped on its cell";
    ticks(60);
    EXPECT_EQ(output.lines().size(), 1u) << "and rests";
    game.setLinearVelocity(ball().getId(), osg::Vec3f(0.1f, 0.0f, 0.0f), true);
    ticks(30);
    EXPECT_GT(ballPosition().x(), 0.05);
    EXPECT_EQ(output.lines().size(), 1u) << "and rolls on";
}

TEST_F(BoardTest, ComesLevelAndLeavesItsBlocks)
{
    const osg::ref_ptr<ProbeBlock> probe = new ProbeBlock(level());
    auto& blocks = const_cast<std::vector<osg::ref_ptr<Block>>&>(board().getBlocks());
    blocks.push_back(probe.get());
    putsBall(osg::Vec3d(0.0, 0.0, 200.0));  // a light board would be thrown off by it
    holds(Qt::Key_Up, 20);
    ASSERT_GT(tiltDegrees(), 10.0);
    game.setAngularVelocity(board().getId(), osg::Vec3f(), true);
    game.setLinearVelocity(board().getId(), osg::Vec3f(), true);
    board().reset(false);
    ticks();
    EXPECT_LT(tiltDegrees(), 0.1);
    EXPECT_EQ(probe->heard, "");
    board().reset(true);
    EXPECT_EQ(probe->heard, "reset ");
}

TEST_F(BoardTest, TurnsOnFromLevelAsItTurnedBefore)
{
    presses(Qt::Key_Up);
    ticks(10);
    releases(Qt::Key_Up);
    const float before = GameInside::bodyOf(game, board().getId()).getAngularVelocity().magnitude();
    ASSERT_GT(before, 0.5f);
    board().reset(false);
    ticks();
    EXPECT_NEAR(GameInside::bodyOf(game, board().getId()).getAngularVelocity().magnitude(), before,
                0.1f);
}

TEST_F(BoardTest, ComesLevelInOneStepAfterAFallWithNineFlags)
{
    LevelPicture picture(13, 13, cells::floor);
    picture.set(2, 2, cells::start);
    for (int row = 5; row <= 7; ++row)
        for (int column = 5; column <= 7; ++column)
            picture.set(column, row, cells::required);
    loads(picture);
    ticks(20);
    std::vector<std::pair<Block*, osg::Vec3d>> flags;
    for (int row = 5; row <= 7; ++row) {
        for (int column = 5; column <= 7; ++column) {
            Block* flag = blockAt(column, row);
            flags.emplace_back(flag, flag->getTransform()->getMatrix().getTrans());
        }
    }
    holds(Qt::Key_Right, 40);
    ASSERT_GT(tiltDegrees(), 29.0);
    putsBall(osg::Vec3d(14.0, 0.0, -9.0));
    ticks();
    ASSERT_TRUE(ticksUntil([this] { return level().livesLeft() == 4; }, 60));
    ticks();
    EXPECT_LT(tiltDegrees(), 0.1);
    for (const auto& [flag, place] : flags)
        EXPECT_LT((flag->getTransform()->getMatrix().getTrans() - place).length(), 0.01);
    EXPECT_LT(ballVelocity().length(), 0.34f) << "a step of free fall and no kick";
    const osg::Vec3d start(blockAt(2, 2)->x, blockAt(2, 2)->y, 1.0);
    EXPECT_LT((ballPosition() - start).length(), 0.02);
    ASSERT_TRUE(ticksUntil([this] { return ballPosition().z() < 0.81; }, 60));
    EXPECT_LT(osg::Vec2d(ballPosition().x() - start.x(), ballPosition().y() - start.y()).length(),
              0.05)
        << "it lands on its cell";
}

TEST_F(BoardTest, HidesItsGuideUnlessTheGameWaitsForAHand)
{
    loads(LevelPicture(9, 9, cells::floor).set(4, 4, cells::start));
    ticks(2);
    const auto* plate =
        dynamic_cast<const osg::ShapeDrawable*>(guide()->getChild(0)->asGeode()->getDrawable(0));
    ASSERT_NE(plate, nullptr);
    EXPECT_EQ(plate->getColor(), osg::Vec4(0.0f, 9.0f, 0.0f, 0.3f));
    EXPECT_EQ(dynamic_cast<const osg::Box&>(*plate->getShape()).getHalfLengths() * 2.0f,
              osg::Vec3(9.0f, 9.0f, 2.0f));
    EXPECT_EQ(GameInside::actorsOf(game).count(board().guideId), 0u);

    const QImage withoutHand = frame(false);
    guide()->setNodeMask(~0u);  // a hand has been seen
    EXPECT_GT(differingPixels(frame(false), withoutHand), 1000);
    for (const GameState state :
         {GameState::Initial, GameState::CameraControl, GameState::Playing, GameState::PauseMenu,
          GameState::LevelCompleted, GameState::LevelFailed}) {
        game.state = state;
        EXPECT_LT(differingPixels(frame(false), withoutHand), 100) << int(state);
    }
}

TEST_F(BoardTest, LeavesItsGuideWhereItIsPut)
{
    guide()->setMatrix(osg::Matrixd::translate(1.0, 2.0, 3.0));
    ticks(3);
    EXPECT_EQ(guide()->getMatrix().getTrans(), osg::Vec3d(1.0, 2.0, 3.0));
}

TEST_F(BoardTest, KeepsOneGroupForEachKindOfBlock)
{
    osg::Group* first = board().shaderGroup("Probe");
    EXPECT_EQ(first->getNumParents(), 1u);
    EXPECT_EQ(board().shaderGroup("Probe"), first);
    EXPECT_NE(board().shaderGroup("Other"), first);
}

TEST_F(BoardTest, LinksBlocksByTheAlphaOfTheirPixels)
{
    LevelPicture picture(6, 2);
    Cell linked = cells::floor;
    linked.alpha = 254;
    Cell transparent = cells::floor;
    transparent.alpha = 0;
    picture.set(0, 0, cells::floor)
        .set(1, 0, linked)
        .set(2, 0, transparent)
        .set(3, 0, {20, 100, 100, 7})  // no kind has this hue
        .set(0, 1, linked)
        .set(5, 1, cells::start);
    QImage image = picture.image();
    image.setPixel(4, 0, qRgba(255, 255, 255, 8));
    image.setPixel(5, 0, qRgba(0, 0, 0, 9));
    loads(picture);
    image.save("data/Rollix/level0.png");
    OutputCapture output;
    game.loadLevel(0);
    EXPECT_EQ(output.text(), "reading level data/Rollix/level0.png\n") << "and not a word more";
    const auto& groups = board().getGroups();
    ASSERT_EQ(board().getBlocks().size(), 5u);
    EXPECT_EQ(groups.at(255), (BlockGroup{blockAt(0, 0), blockAt(5, 1)}));
    EXPECT_EQ(groups.at(254), (BlockGroup{blockAt(1, 0), blockAt(0, 1)})) << "in scan order";
    EXPECT_EQ(groups.at(0), BlockGroup{blockAt(2, 0)});
    ASSERT_EQ(groups.count(7), 1u);
    EXPECT_TRUE(groups.at(7).empty()) << "an ignored pixel leaves its group";
    EXPECT_EQ(groups.count(8), 1u);
    EXPECT_EQ(groups.count(9), 0u) << "an empty cell does not";
}

TEST_F(BoardTest, KnowsEveryAlphaFromEveryOther)
{
    LevelPicture picture(256, 1);
    for (int alpha = 0; alpha <= 255; ++alpha) {
        Cell cell = cells::floor;
        cell.alpha = alpha;
        picture.set(alpha, 0, cell);
    }
    loads(picture);
    ASSERT_EQ(board().getGroups().size(), 256u);
    for (int alpha = 0; alpha <= 255; ++alpha)
        EXPECT_EQ(board().getGroups().at(alpha), BlockGroup{blockAt(alpha, 0)}) << alpha;
}

}  // namespace
