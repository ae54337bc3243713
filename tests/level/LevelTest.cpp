#include "level/Level.h"

#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/BlockCheckpoint.h"
#include "level/Board.h"
#include "level/Ground.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/OutputCapture.h"
#include "support/SceneSearch.h"

#include <osgText/Text>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

class LevelTest : public GameTest
{
protected:
    LevelTest()
    {
        loads({"SRG", "..."});
        ticks();
    }

    Lines imagesShown() { return imagesBelow(game.getSceneData()); }

    bool showsLives(int count)
    {
        const Lines images = imagesShown();
        const std::string file = "data/Rollix/lives-" + std::to_string(count) + ".png";
        return std::find(images.begin(), images.end(), file) != images.end();
    }

    bool showsScore(const std::string& score)
    {
        const Lines texts = textsBelow(game.getSceneData());
        return std::find(texts.begin(), texts.end(), score) != texts.end();
    }

    BlockCheckpoint& checkpoint(int column)
    {
        return static_cast<BlockCheckpoint&>(*blockAt(column, 0));
    }
};

TEST_F(LevelTest, SaysWhatItReads)
{
    OutputCapture output;
    game.loadLevel(12);
    EXPECT_EQ(output.text(), "reading level data/Rollix/level12.png\n");
    EXPECT_EQ(level().pictureFile, "data/Rollix/level12.png");
}

TEST_F(LevelTest, CountsItsObjectsFromZero)
{
    EXPECT_EQ(level().ground->getId(), 0u);
    EXPECT_EQ(board().getId(), 1u);
    ASSERT_EQ(board().getBlocks().size(), 6u);
    for (unsigned int i = 0; i < 6; ++i)
        EXPECT_EQ(board().getBlocks()[i]->getId(), 2 + i);
    EXPECT_EQ(board().guideId, 8u);
    EXPECT_EQ(ball().getId(), 9u);
    EXPECT_EQ(level().nextObjectId(), 10u);
    EXPECT_EQ(level().nextObjectId(), 11u);
    game.loadLevel(0);
    EXPECT_EQ(ball().getId(), 9u) << "anew in every level";
}

TEST_F(LevelTest, HasOneMaterialForEverything)
{
    const auto& materials = GameInside::materialsOf(game);
    ASSERT_EQ(materials.size(), 1u);
    const physx::PxMaterial* wood = materials.at("holz");
    EXPECT_EQ(wood->getStaticFriction(), 0.2f);
    EXPECT_EQ(wood->getDynamicFriction(), 0.05f);
    EXPECT_EQ(wood->getRestitution(), 0.0f);
    for (const auto& [id, actor] : GameInside::actorsOf(game)) {
        std::vector<physx::PxShape*> shapes(actor->getNbShapes());
        actor->getShapes(shapes.data(), physx::PxU32(shapes.size()));
        for (const physx::PxShape* shape : shapes) {
            physx::PxMaterial* material = nullptr;
            shape->getMaterials(&material, 1);
            EXPECT_EQ(material, wood) << id;
        }
    }
}

TEST_F(LevelTest, BeginsWithFiveLivesAndNoCoinsOnTheStart)
{
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_EQ(level().coinCount(), 0);
    EXPECT_EQ(level().checkpoint, blockAt(0, 0));
    EXPECT_TRUE(showsLives(5));
    EXPECT_TRUE(showsScore("0"));
    const Lines images = imagesShown();
    EXPECT_EQ(std::count(images.begin(), images.end(), "data/Rollix/coins.png"), 1);
    EXPECT_EQ(level().number, 0u);
    EXPECT_EQ(level().game(), &game);
}

TEST_F(LevelTest, ShowsLivesCoinAndNumberInTheUpperRightCorner)
{
    // Right edges at 0.9 and 0.95 of the window's width, tops at 0.97 of its height, 0.03 of it
    // high, and as wide as the picture is for that.
    game.getCamera()->setViewport(0, 0, 800, 600);
    game.loadLevel(0);
    const osg::Drawable* lives = drawableOfImage(game.getSceneData(), "data/Rollix/lives-5.png");
    ASSERT_NE(lives, nullptr);
    EXPECT_EQ(lives->getBoundingBox().corner(7), osg::Vec3(720, 582, 0));
    EXPECT_EQ(lives->getBoundingBox().corner(0), osg::Vec3(720 - 72, 564, 0));
    const osg::Drawable* coin = drawableOfImage(game.getSceneData(), "data/Rollix/coins.png");
    ASSERT_NE(coin, nullptr);
    EXPECT_EQ(coin->getBoundingBox().corner(7), osg::Vec3(760, 582, 0));
    EXPECT_EQ(coin->getBoundingBox().corner(0), osg::Vec3(760 - 18, 564, 0));

    const osgText::Text* score = textReading("0", game.getSceneData());
    ASSERT_NE(score, nullptr);
    EXPECT_EQ(score->getPosition(), osg::Vec3(764, 579, 0));
    EXPECT_EQ(score->getAlignment(), osgText::TextBase::LEFT_TOP);
    EXPECT_EQ(score->getCharacterHeight(), 30.0f);
    EXPECT_EQ(score->getColor(), osg::Vec4(0, 0, 0, 1));
}

TEST_F(LevelTest, ShowsTheLivesThatAreLeft)
{
    for (int lives = 4; lives > 0; --lives) {
        level().changeLives(-1, true);
        EXPECT_EQ(level().livesLeft(), lives);
        EXPECT_TRUE(showsLives(lives));
        EXPECT_FALSE(showsLives(lives + 1));
        EXPECT_EQ(game.state, GameState::WaitingForRest);
    }
    level().changeLives(-1, true);
    EXPECT_EQ(level().livesLeft(), 5) << "the last one gone, the run starts over";
    EXPECT_TRUE(showsLives(5));
    EXPECT_FALSE(showsLives(0));
    EXPECT_EQ(game.state, GameState::LevelFailed);
    const Lines texts = textsBelow(game.getSceneData());
    EXPECT_NE(std::find(texts.begin(), texts.end(), "Not even close..."), texts.end());
}

TEST_F(LevelTest, NeverHasMoreThanFiveLives)
{
    level().changeLives(1, false);
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_TRUE(showsLives(5));
    level().changeLives(-3, false);
    level().changeLives(100, false);
    EXPECT_EQ(level().livesLeft(), 5);
}

TEST_F(LevelTest, LeavesTheBallWhereALifeIsOnlyPaid)
{
    game.state = GameState::Playing;
    putsBall(osg::Vec3d(0.5, -0.5, 0.8));
    ticks(2);
    const osg::Vec3d before = ballPosition();
    level().changeLives(-1, false);
    ticks(2);
    EXPECT_EQ(level().livesLeft(), 4);
    EXPECT_LT((ballPosition() - before).length(), 0.05);
    EXPECT_EQ(game.state, GameState::Playing);
    level().changeLives(-10, false);
    EXPECT_EQ(level().livesLeft(), 5) << "without a life there is no going on";
    EXPECT_EQ(game.state, GameState::LevelFailed);
    ticks();
    EXPECT_NEAR(ballPosition().x(), -1.0, 1e-3);
}

TEST_F(LevelTest, NeverOwesCoins)
{
    level().changeCoins(30);
    EXPECT_EQ(level().coinCount(), 30);
    EXPECT_TRUE(showsScore("30"));
    level().changeCoins(-10);
    EXPECT_TRUE(showsScore("20"));
    level().changeCoins(-100);
    EXPECT_EQ(level().coinCount(), 0);
    EXPECT_TRUE(showsScore("0"));
    level().changeCoins(170);
    EXPECT_EQ(level().coinCount(), 170);
}

TEST_F(LevelTest, KeepsWhatWasEarnedThroughAFall)
{
    checkpoint(1).onBallContact(&ball());
    ASSERT_EQ(level().coinCount(), 10);
    ASSERT_EQ(level().checkpoint, blockAt(1, 0));
    level().changeLives(-1, true);
    EXPECT_EQ(level().coinCount(), 10);
    EXPECT_EQ(level().checkpoint, blockAt(1, 0));
    ticks();
    EXPECT_NEAR(ballPosition().x(), 0.0, 1e-3) << "back to the last flag";
    checkpoint(1).onBallContact(&ball());
    EXPECT_EQ(level().coinCount(), 10) << "which stays passed";
}

TEST_F(LevelTest, StartsOverWithTheLastLife)
{
    checkpoint(1).onBallContact(&ball());
    level().changeLives(-5, false);
    EXPECT_EQ(level().coinCount(), 0);
    EXPECT_TRUE(showsScore("0"));
    EXPECT_EQ(level().checkpoint, blockAt(0, 0));
    ticks();
    EXPECT_NEAR(ballPosition().x(), -1.0, 1e-3);
    checkpoint(1).onBallContact(&ball());
    EXPECT_EQ(level().coinCount(), 10) << "the flags pay anew";
}

TEST_F(LevelTest, LevelsTheBoardOfALevelWithoutAStart)
{
    loads({"...", "..."});
    ticks();
    game.setPose(board().getId(), osg::Matrixd::rotate(0.3, osg::Vec3d(1.0, 0.0, 0.0)));
    putsBall(osg::Vec3d(0.0, 0.0, 40.0));
    ticks();
    ASSERT_GT(tiltDegrees(), 15.0);
    ASSERT_EQ(level().checkpoint, nullptr);
    game.state = GameState::Playing;
    level().restart(false);
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    ticks();
    EXPECT_LT(tiltDegrees(), 0.1);
    EXPECT_GT(ballPosition().z(), 39.0) << "the ball stays where it is";
}

TEST_F(LevelTest, BeginsAnewWithoutAStartAndLeavesTheBallWhereItIs)
{
    loads({"...", "..."});
    ticks();
    putsBall(osg::Vec3d(0.0, 0.0, 40.0));
    ticks();
    level().changeCoins(7);
    level().changeLives(-2, false);
    OutputCapture output;
    level().restart(true);
    ticks();
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(level().checkpoint, nullptr);
    EXPECT_EQ(level().livesLeft(), 5);
    EXPECT_EQ(level().coinCount(), 0);
    EXPECT_EQ(game.state, GameState::LevelFailed);
    EXPECT_GT(ballPosition().z(), 39.0);
}

TEST_F(LevelTest, TellsTheGameThatItIsWon)
{
    level().complete();
    EXPECT_EQ(game.state, GameState::LevelCompleted);
}

TEST_F(LevelTest, TakesTheLastStartOfSeveral)
{
    loads({"S.S", ".S."});
    EXPECT_EQ(level().checkpoint, blockAt(1, 1));
    ticks();
    EXPECT_NEAR(ballPosition().x(), 0.0, 1e-3);
    EXPECT_NEAR(ballPosition().y(), -0.5, 1e-3);
}

TEST_F(LevelTest, LeavesNothingBehind)
{
    const osg::observer_ptr<Board> oldBoard(game.level->board.get());
    const osg::observer_ptr<Ball> oldBall(game.level->ball.get());
    auto* root = static_cast<osg::Group*>(game.getSceneData());
    const unsigned int children = root->getNumChildren();
    EXPECT_EQ(BlockCheckpoint::allCheckpoints.size(), 3u);
    game.level = nullptr;
    EXPECT_FALSE(oldBoard.valid());
    EXPECT_FALSE(oldBall.valid());
    EXPECT_EQ(root->getNumChildren(), children - 1);
    EXPECT_TRUE(GameInside::actorsOf(game).empty());
    EXPECT_TRUE(GameInside::jointsOf(game).empty());
    EXPECT_TRUE(GameInside::materialsOf(game).empty());
    EXPECT_TRUE(BlockCheckpoint::allCheckpoints.empty());
    game.loadLevel(0);
}

TEST_F(LevelTest, PrintsTheGenericEventsThatMeanNothing)
{
    OutputCapture output;
    GameObject& object = *level().ground;
    object.contact(&ball());
    object.contactedBy(&ball());
    object.trigger(&ball());
    object.triggeredBy(&ball());
    object.untrigger(&ball());
    object.untriggeredBy(&ball());
    EXPECT_EQ(output.lines(),
              (Lines{"standard contact", "standard contactedBy", "standard trigger",
                     "standard triggeredBy", "standard untrigger", "standard untriggeredBy"}));
}

TEST_F(LevelTest, PrintsThemForEveryObject)
{
    GameObject* objects[] = {level().ground.get(), &board(), &ball(), blockAt(0, 0), blockAt(0, 1)};
    for (GameObject* object : objects) {
        OutputCapture output;
        object->contact(&ball());
        object->untriggeredBy(&ball());
        EXPECT_EQ(output.text(), "standard contact\nstandard untriggeredBy\n");
        EXPECT_EQ(object->game(), &game);
    }
}

TEST_F(LevelTest, HasNothingToResetInGroundAndBoard)
{
    putsBall(osg::Vec3d(0.0, 0.0, 200.0));
    holds(Qt::Key_Up, 20);
    ASSERT_GT(tiltDegrees(), 3.0);
    OutputCapture output;
    level().ground->reset();
    static_cast<GameObject&>(board()).reset();
    ticks();
    EXPECT_GT(tiltDegrees(), 3.0);
    EXPECT_EQ(output.text(), "");
}

}  // namespace
