#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/ContactReport.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/SoundOutputs.h"

namespace {

constexpr float hitPeak = 0.8f;  // of each of the eight recordings

/// The game makes its one sound system when it is built: the output comes before it.
class Listening
{
protected:
    Listening() { output(); }

    static LoopbackOutput& output()
    {
        static LoopbackOutput theOutput;
        return theOutput;
    }
};

class BoardSoundTest : protected Listening, public GameTest
{
protected:
    BoardSoundTest()
    {
        loads({"S..", "...", "..."});
        ticksUntil([this] { return ballVelocity().length() < 0.01f && ballPosition().z() < 0.81; },
                   100);
        output().render(2.0);
    }

    /// The loudest that is heard after a touch of this impulse.
    float loudness(const std::vector<float>& impulses)
    {
        physx::PxRigidActor* boardActor = GameInside::actorsOf(game).at(board().getId());
        physx::PxRigidActor* ballActor = GameInside::actorsOf(game).at(ball().getId());
        physx::PxShape* boardShape = nullptr;
        physx::PxShape* ballShape = nullptr;
        boardActor->getShapes(&boardShape, 1);
        ballActor->getShapes(&ballShape, 1);
        ContactReport report(boardActor, ballActor);
        report.touch(boardShape, ballShape, impulses);
        game.onContact(report.header, report.pairs.data(), report.count());
        return peakOf(output().render(1.0));
    }
};

TEST_F(BoardSoundTest, IsSilentForAnImpulseOfOneHundredth)
{
    EXPECT_EQ(loudness({0.01f}), 0.0f);
    EXPECT_EQ(loudness({0.0f}), 0.0f);
    EXPECT_EQ(loudness({}), 0.0f);
}

TEST_F(BoardSoundTest, IsHeardAtTwiceTheImpulse)
{
    for (const float impulse : {0.02f, 0.1f, 0.5f, 0.75f}) {
        // Each recording peaks within a sixteenth of the same height.
        EXPECT_NEAR(loudness({impulse}), 2.0f * impulse * hitPeak, 2.0f * impulse * 0.05f);
    }
}

TEST_F(BoardSoundTest, GoesByTheLastPointAlone)
{
    EXPECT_EQ(loudness({0.9f, 0.8f, 0.005f}), 0.0f) << "no sum and no maximum";
    EXPECT_NEAR(loudness({0.005f, 0.1f}), 0.2f * hitPeak, 0.01f);
}

TEST_F(BoardSoundTest, SoundsWhenTheBallIsDropped)
{
    putsBall(osg::Vec3d(0.0, 0.0, 1.8));
    ticks(60);
    const float low = peakOf(output().render(1.0));
    EXPECT_GT(low, 0.05f);
    putsBall(osg::Vec3d(0.0, 0.0, 4.8));
    ticks(60);
    EXPECT_GT(peakOf(output().render(1.0)), low * 1.5f) << "louder from higher up";
    ticks(60);
    EXPECT_EQ(peakOf(output().render(1.0)), 0.0f) << "and silent at rest";
}

}  // namespace
