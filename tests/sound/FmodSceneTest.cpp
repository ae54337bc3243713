#include "sound/FmodScene.h"

#include "sound/FmodManager.h"
#include "support/OutputCapture.h"
#include "support/SoundOutputs.h"

#include <gtest/gtest.h>
#include <osg/ref_ptr>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

namespace {

const std::string hit1 = "data/Rollix/wood-ball-hit-1.mp3";
const std::string hit2 = "data/Rollix/wood-ball-hit-2.mp3";
constexpr double pastTheEnd = 1.0;  // s, longer than any hit

/// Shows its tables.
class OpenScene : public FmodScene
{
public:
    using FmodScene::channels;
    using FmodScene::result;
    using FmodScene::sounds;

protected:
    ~OpenScene() override = default;
};

class FmodSceneTest : public testing::Test
{
protected:
    FmodSceneTest()
    {
        FmodManager::system();
        heard(pastTheEnd);
        said();
    }

    ~FmodSceneTest() override
    {
        scene = nullptr;
        // A failure's report went the way of all output.
        const std::string text = capture->text();
        capture = nullptr;
        if (HasFailure())
            std::fputs(text.c_str(), stdout);
    }

    /// What the process said since it was asked last.
    std::string said()
    {
        const std::string text = capture->text().substr(alreadyRead);
        alreadyRead += text.size();
        return text;
    }

    static float heard(double seconds)
    {
        FmodManager::system()->update();
        return peakOf(output().render(seconds));
    }

    // The process has one system, which keeps the device that it was initialized with.
    static LoopbackOutput& output()
    {
        static LoopbackOutput loopback;
        return loopback;
    }

    LoopbackOutput& initializedBeforeTheManager = output();
    std::unique_ptr<OutputCapture> capture = std::make_unique<OutputCapture>();
    std::size_t alreadyRead = 0;
    osg::ref_ptr<OpenScene> scene = new OpenScene;
};

TEST_F(FmodSceneTest, PlaysALoadedSoundByItsName)
{
    EXPECT_TRUE(scene->loadSound("hit1", hit1));
    EXPECT_TRUE(scene->playSound("hit1", 1.0f, 0, nullptr));
    EXPECT_NEAR(heard(0.4), 0.8f, 0.05f);
    EXPECT_EQ(scene->result, FMOD_OK);
    EXPECT_EQ(said(), "");
}

TEST_F(FmodSceneTest, PassesAVolumeAboveOneOnAsItIs)
{
    scene->loadSound("hit1", hit1);
    scene->playSound("hit1", 3.0f, 0, nullptr);
    EXPECT_NEAR(heard(pastTheEnd), 2.4f, 0.15f);
    scene->playSound("hit1", 0.02f, 0, nullptr);
    EXPECT_NEAR(heard(pastTheEnd), 0.016f, 0.001f);
}

TEST_F(FmodSceneTest, StartsASoundOfVolumeZeroSilently)
{
    scene->loadSound("hit1", hit1);
    int index = -1;
    // Mode 2, for a look at the channel.
    EXPECT_TRUE(scene->playSound("hit1", 0.0f, 2, &index));
    EXPECT_EQ(heard(0.01), 0.0f);
    EXPECT_EQ(said(), "");
    // It runs all the same: what is left of it is there to be heard.
    ASSERT_EQ(scene->channels[index]->setVolume(1.0f), FMOD_OK);
    EXPECT_GT(heard(0.2), 0.1f);
}

TEST_F(FmodSceneTest, DoesNotKnowTheNinthHit)
{
    scene->loadSound("hit1", hit1);
    EXPECT_FALSE(scene->playSound("hit9", 1.0f, 0, nullptr));
    EXPECT_EQ(said(), "I do not know the sound hit9 !\n");
    EXPECT_EQ(heard(0.1), 0.0f);

    int index = -1;
    EXPECT_FALSE(scene->playSound("hit9", 1.0f, 1, &index));
    EXPECT_EQ(index, -1);
    EXPECT_TRUE(scene->channels.empty());
    // The first channel is still free.
    EXPECT_TRUE(scene->playSound("hit1", 1.0f, 1, &index));
    EXPECT_EQ(index, 0);
}

TEST_F(FmodSceneTest, LoopsInModeOneThoughNobodyCanStopIt)
{
    scene->loadSound("hit1", hit1);
    EXPECT_TRUE(scene->playSound("hit1", 1.0f, 1, nullptr));
    EXPECT_TRUE(scene->channels.empty());
    heard(20 * pastTheEnd);
    EXPECT_NEAR(heard(pastTheEnd), 0.8f, 0.05f);
}

TEST_F(FmodSceneTest, PlaysOnceInEveryOtherMode)
{
    scene->loadSound("hit1", hit1);
    for (int mode : {0, 2, 3, -1, 1000}) {
        SCOPED_TRACE(mode);
        EXPECT_TRUE(scene->playSound("hit1", 1.0f, mode, nullptr));
        EXPECT_NEAR(heard(pastTheEnd), 0.8f, 0.05f);
        EXPECT_EQ(heard(pastTheEnd), 0.0f);
    }
}

TEST_F(FmodSceneTest, LeavesTheChannelIndexAloneInModeZero)
{
    scene->loadSound("hit1", hit1);
    int index = 1234;
    EXPECT_TRUE(scene->playSound("hit1", 1.0f, 0, &index));
    EXPECT_EQ(index, 1234);
    EXPECT_TRUE(scene->channels.empty());
}

TEST_F(FmodSceneTest, KeepsTheChannelUnderItsIndexInEveryOtherMode)
{
    scene->loadSound("hit1", hit1);
    for (int mode : {1, 2, -1}) {
        int index = -1;
        EXPECT_TRUE(scene->playSound("hit1", 1.0f, mode, &index));
        ASSERT_EQ(scene->channels.count(index), 1u) << mode;
        int ofChannel = -2;
        EXPECT_EQ(scene->channels[index]->getIndex(&ofChannel), FMOD_OK);
        EXPECT_EQ(ofChannel, index);
    }
    EXPECT_EQ(scene->channels.size(), 3u);
}

TEST_F(FmodSceneTest, PlaysTheSecondOfTwoSoundsLoadedUnderOneName)
{
    EXPECT_TRUE(scene->loadSound("hit", hit1));
    FMOD::Sound* first = scene->sounds["hit"];
    scene->playSound("hit", 1.0f, 0, nullptr);
    const float firstHeard = heard(0.003);
    heard(pastTheEnd);
    EXPECT_TRUE(scene->loadSound("hit", hit2));
    FMOD::Sound* second = scene->sounds["hit"];
    EXPECT_NE(first, second);
    EXPECT_EQ(scene->sounds.size(), 1u);

    // At three milliseconds the second is at its peak, and the first is not.
    scene->playSound("hit", 1.0f, 0, nullptr);
    EXPECT_GT(std::fabs(heard(0.003) - firstHeard), 0.1f);
    EXPECT_EQ(said(), "");

    // The scene lets only the second go.
    scene = nullptr;
    EXPECT_EQ(second->release(), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(first->release(), FMOD_OK);
}

TEST_F(FmodSceneTest, TellsOfAFileThatIsMissing)
{
    EXPECT_FALSE(scene->loadSound("hit1", "data/Rollix/no-such-hit.mp3"));
    EXPECT_EQ(said(), "FMOD error 18 - There is no such file.\n");
    EXPECT_EQ(scene->result, FMOD_ERR_FILE_NOTFOUND);
    EXPECT_TRUE(scene->sounds.empty());
    EXPECT_FALSE(scene->playSound("hit1", 1.0f, 0, nullptr));
    EXPECT_EQ(said(), "I do not know the sound hit1 !\n");
}

TEST_F(FmodSceneTest, TellsOfAFileThatIsNoSound)
{
    EXPECT_FALSE(scene->loadSound("list", "CMakeLists.txt"));
    EXPECT_EQ(said(), "FMOD error 19 - The file is of no sound format known here.\n");
}

TEST_F(FmodSceneTest, KeepsTheOldSoundWhenTheNewOneDoesNotLoad)
{
    scene->loadSound("hit1", hit1);
    EXPECT_FALSE(scene->loadSound("hit1", "data/Rollix/no-such-hit.mp3"));
    EXPECT_TRUE(scene->playSound("hit1", 1.0f, 0, nullptr));
    EXPECT_GT(heard(0.1), 0.5f);
}

TEST_F(FmodSceneTest, LeavesThePausedChannelWhenACallFails)
{
    scene->loadSound("hit1", hit1);
    EXPECT_FALSE(scene->playSound("hit1", std::nanf(""), 0, nullptr));
    EXPECT_EQ(said(), "FMOD error 29 - A number is infinite or not a number.\n");
    EXPECT_EQ(heard(pastTheEnd), 0.0f);
    // It still holds the first channel.
    int index = -1;
    EXPECT_TRUE(scene->playSound("hit1", 1.0f, 1, &index));
    EXPECT_EQ(index, 1);
}

TEST_F(FmodSceneTest, PlaysOnWhenMoreSoundsStartThanThereAreChannels)
{
    scene->loadSound("hit1", hit1);
    for (int i = 0; i < 200; ++i)
        EXPECT_TRUE(scene->playSound("hit1", 0.01f * i, 0, nullptr));
    EXPECT_GT(heard(0.1), 1.0f);
    EXPECT_EQ(said(), "");
}

TEST_F(FmodSceneTest, TakesItsSoundsWithIt)
{
    scene->loadSound("hit1", hit1);
    FMOD::Sound* sound = scene->sounds["hit1"];
    scene->playSound("hit1", 1.0f, 1, nullptr);
    heard(0.05);
    scene = nullptr;
    heard(0.05);
    EXPECT_EQ(heard(pastTheEnd), 0.0f);
    EXPECT_EQ(sound->release(), FMOD_ERR_INVALID_HANDLE);
}

}  // namespace
