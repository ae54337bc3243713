#include "sound/FmodManager.h"

#include "sound/FmodScene.h"
#include "support/SoundOutputs.h"

#include <gtest/gtest.h>
#include <osg/ref_ptr>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

// There is one system a process, and the first call decides whether it has a device: each of these
// has a process of its own, whose two outputs are read as one. Where it ends by _exit, a line that
// was not flushed is lost.
class FmodManagerDeathTest : public testing::Test
{
protected:
    FmodManagerDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    /// What is written from here on is what counts: starting up, Qt may have something to say.
    static void readAllOutput()
    {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        std::fprintf(stderr, "output:\n");
    }

    static constexpr const char* noDeviceLine =
        "output:\nFMOD error 51 - No sound output device could be opened\\.\n$";
};

const testing::ExitedWithCode succeeds(EXIT_SUCCESS);

TEST_F(FmodManagerDeathTest, HandsOutTheSameSystemEveryTime)
{
    EXPECT_EXIT(
        {
            readAllOutput();
            LoopbackOutput output;
            FMOD::System* system = FmodManager::system();
            std::exit(system && system == FmodManager::system() ? EXIT_SUCCESS : EXIT_FAILURE);
        },
        succeeds, "output:\n$");
}

TEST_F(FmodManagerDeathTest, HasFortyTwoChannels)
{
    EXPECT_EXIT(
        {
            NoOutput none;
            FMOD::Sound* sound = nullptr;
            FmodManager::system()->createSound("data/Rollix/wood-ball-hit-1.mp3", FMOD_DEFAULT,
                                               nullptr, &sound);
            FMOD::Channel* first = nullptr;
            FmodManager::system()->playSound(sound, nullptr, true, &first);
            for (int i = 1; i < 42; ++i)
                FmodManager::system()->playSound(sound, nullptr, true, nullptr);
            const bool allFit = first->setVolume(1) == FMOD_OK;
            FmodManager::system()->playSound(sound, nullptr, true, nullptr);
            std::exit(allFit && first->setVolume(1) != FMOD_OK ? EXIT_SUCCESS : EXIT_FAILURE);
        },
        succeeds, "");
}

TEST_F(FmodManagerDeathTest, SaysOnceThatThereIsNoDevice)
{
    EXPECT_EXIT(
        {
            readAllOutput();
            NoOutput none;
            FmodManager::system();
            FmodManager::system();
            _exit(EXIT_SUCCESS);
        },
        succeeds, noDeviceLine);
}

TEST_F(FmodManagerDeathTest, SaysNothingMoreInAWholeGameWithoutADevice)
{
    EXPECT_EXIT(
        {
            readAllOutput();
            NoOutput none;
            // As in the game, which ends without deleting it.
            static FmodScene* const scene = new FmodScene;
            for (int i = 1; i <= 8; ++i)
                scene->loadSound("hit" + std::to_string(i),
                                 "data/Rollix/wood-ball-hit-" + std::to_string(i) + ".mp3");
            bool allPlayed = true;
            for (int tick = 0; tick < 1000; ++tick) {
                FmodManager::system()->update();
                const std::string name = "hit" + std::to_string(tick % 8 + 1);
                allPlayed = scene->playSound(name, 2.5f, tick % 50 == 0, nullptr) && allPlayed;
            }
            FmodManager::shutdown();
            std::exit(allPlayed ? EXIT_SUCCESS : EXIT_FAILURE);
        },
        succeeds, noDeviceLine);
}

TEST_F(FmodManagerDeathTest, CreatesTheSystemToShutItDown)
{
    EXPECT_EXIT(
        {
            readAllOutput();
            NoOutput none;
            FmodManager::shutdown();
            const FMOD_RESULT afterwards = FmodManager::system()->update();
            std::exit(afterwards == FMOD_ERR_INVALID_HANDLE ? EXIT_SUCCESS : EXIT_FAILURE);
        },
        succeeds, noDeviceLine);
}

TEST_F(FmodManagerDeathTest, ShutsDownWithSoundsLoadedAndPlaying)
{
    EXPECT_EXIT(
        {
            readAllOutput();
            LoopbackOutput output;
            // As in the game, which ends without deleting it.
            static FmodScene* const scene = new FmodScene;
            scene->loadSound("hit1", "data/Rollix/wood-ball-hit-1.mp3");
            scene->playSound("hit1", 1, 1, nullptr);
            output.render(0.1);
            FmodManager::shutdown();
            std::exit(EXIT_SUCCESS);
        },
        succeeds, "output:\n$");
}

TEST_F(FmodManagerDeathTest, SaysSoWhenTheSystemDoesNotTerminate)
{
    EXPECT_EXIT(
        {
            readAllOutput();
            LoopbackOutput output;
            FmodManager::shutdown();
            FmodManager::shutdown();
            _exit(EXIT_SUCCESS);
        },
        succeeds, "output:\nFMOD ERROR: System did not terminate properly!\n$");
}

TEST_F(FmodManagerDeathTest, LetsASceneGoAfterTheSystemIsReleased)
{
    EXPECT_EXIT(
        {
            readAllOutput();
            LoopbackOutput output;
            {
                osg::ref_ptr<FmodScene> scene = new FmodScene;
                scene->loadSound("hit1", "data/Rollix/wood-ball-hit-1.mp3");
                FmodManager::shutdown();
                // What comes too late is told, and does no harm.
                scene->playSound("hit1", 1, 0, nullptr);
                scene->loadSound("hit2", "data/Rollix/wood-ball-hit-2.mp3");
            }
            _exit(EXIT_SUCCESS);
        },
        succeeds,
        "output:\nFMOD error 30 - The system, sound or channel is gone\\.\n"
        "FMOD error 30 - The system, sound or channel is gone\\.\n$");
}

}  // namespace
