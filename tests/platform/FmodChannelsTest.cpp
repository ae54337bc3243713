#include "platform/FmodLayerFixture.h"

#include <fmod_errors.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <set>
#include <thread>
#include <unistd.h>

using namespace fmodlayer;

namespace {

/// Polls, so that a busy machine only takes longer.
bool comesTrue(const std::function<bool()>& condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

TEST_F(FmodLayerHeard, NumbersItsChannelsFromZero)
{
    FMOD::Sound* sound = load(wave("a.wav", {0.1f}, 44100));
    std::set<int> indices;
    for (int i = 0; i < channelCount; ++i) {
        int index = -1;
        EXPECT_EQ(play(sound)->getIndex(&index), FMOD_OK);
        indices.insert(index);
    }
    EXPECT_EQ(indices.size(), 42u);
    EXPECT_EQ(*indices.begin(), 0);
    EXPECT_EQ(*indices.rbegin(), 41);
}

TEST_F(FmodLayerHeard, StealsTheQuietestChannelForTheFortyThirdSound)
{
    FMOD::Sound* sound = load(wave("a.wav", {0.001f}, 44100));
    std::vector<FMOD::Channel*> playing;
    for (int i = 0; i < channelCount; ++i) {
        playing.push_back(play(sound));
        playing.back()->setVolume(i == 17 ? 0.5f : 1.0f);
    }
    int quietest = -1;
    playing[17]->getIndex(&quietest);

    int index = -1;
    EXPECT_EQ(play(sound)->getIndex(&index), FMOD_OK);
    EXPECT_EQ(index, quietest);
    EXPECT_EQ(playing[17]->setVolume(1.0f), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(playing[0]->setVolume(1.0f), FMOD_OK);
    EXPECT_NEAR(peakOf(output.render(0.05)), 0.042f, 1e-4f);
}

TEST_F(FmodLayerHeard, StealsTheOldestOfEquals)
{
    FMOD::Sound* sound = load(wave("a.wav", {0.001f}, 44100));
    std::vector<FMOD::Channel*> playing;
    for (int i = 0; i < channelCount + 5; ++i)
        playing.push_back(play(sound));
    for (int i = 0; i < channelCount + 5; ++i)
        EXPECT_EQ(playing[i]->setVolume(1.0f), i < 5 ? FMOD_ERR_INVALID_HANDLE : FMOD_OK) << i;
}

TEST_F(FmodLayerHeard, StealsAPausedChannelBeforeAnyThatIsHeard)
{
    FMOD::Sound* sound = load(wave("a.wav", {0.001f}, 44100));
    play(sound)->setVolume(0.01f);
    FMOD::Channel* paused = play(sound, true);
    for (int i = 2; i < channelCount; ++i)
        play(sound);
    play(sound);
    EXPECT_EQ(paused->setPaused(false), FMOD_ERR_INVALID_HANDLE);
}

TEST_F(FmodLayerHeard, AnswersInvalidHandleForASoundThatIsOver)
{
    FMOD::Channel* channel = play(load(wave("a.wav", {0.5f}, 441)));
    output.render(0.5);
    // Before and after the system has noticed.
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(channel->setVolume(1.0f), FMOD_ERR_INVALID_HANDLE);
        EXPECT_EQ(channel->setPaused(true), FMOD_ERR_INVALID_HANDLE);
        EXPECT_EQ(channel->setPaused(false), FMOD_ERR_INVALID_HANDLE);
        EXPECT_EQ(channel->setMode(FMOD_LOOP_NORMAL), FMOD_ERR_INVALID_HANDLE);
        EXPECT_EQ(peakOf(output.render(0.1)), 0.0f);
        EXPECT_EQ(system->update(), FMOD_OK);
    }
    int index = -1;
    EXPECT_EQ(channel->getIndex(&index), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(index, -1);
}

TEST_F(FmodLayerHeard, GivesTheChannelsOfFinishedSoundsBack)
{
    FMOD::Sound* brief = load(wave("a.wav", {0.001f}, 441));
    FMOD::Sound* lasting = load(wave("b.wav", {0.001f}, 441), FMOD_LOOP_NORMAL);
    FMOD::Channel* loop = play(lasting);
    for (int round = 0; round < 20; ++round) {
        for (int i = 1; i < channelCount; ++i)
            play(brief);
        output.render(0.1);
        EXPECT_EQ(system->update(), FMOD_OK);
    }
    EXPECT_EQ(loop->setVolume(0.5f), FMOD_OK);
}

TEST_F(FmodLayerHeard, KeepsOldChannelsApartOverThousandsOfSounds)
{
    FMOD::Sound* sound = load(wave("a.wav", {0.001f}, 441));
    FMOD::Channel* loop = play(sound);
    loop->setMode(FMOD_LOOP_NORMAL);
    FMOD::Channel* old = play(sound, true);
    for (int i = 0; i < 4000; ++i) {
        FMOD::Channel* channel = play(sound);
        ASSERT_NE(channel, old);
    }
    EXPECT_EQ(old->setPaused(false), FMOD_ERR_INVALID_HANDLE);
    // It was stolen as the oldest of equals. Now a louder one, which no later sound may drive out.
    loop = play(sound, true);
    loop->setMode(FMOD_LOOP_NORMAL);
    loop->setVolume(2.0f);
    loop->setPaused(false);
    for (int i = 0; i < 10000; ++i)
        ASSERT_NE(play(sound), loop);
    EXPECT_EQ(loop->setVolume(2.0f), FMOD_OK);
}

TEST_F(FmodLayerHeard, StopsAReleasedSound)
{
    FMOD::Sound* sound = load(wave("a.wav", {0.5f}, 44100));
    FMOD::Sound* other = load(wave("b.wav", {0.125f}, 44100));
    FMOD::Channel* channel = play(sound);
    play(other);
    output.render(0.05);
    EXPECT_EQ(sound->release(), FMOD_OK);
    output.render(0.05);
    EXPECT_NEAR(peakOf(output.render(0.05)), 0.125f, exact);
    EXPECT_EQ(channel->setVolume(1.0f), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(sound->release(), FMOD_ERR_INVALID_HANDLE);
    FMOD::Channel* none = nullptr;
    EXPECT_EQ(system->playSound(sound, nullptr, false, &none), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(none, nullptr);
}

TEST_F(FmodLayerHeard, AnswersInvalidHandleForAllThatAReleaseTook)
{
    FMOD::Sound* sound = load(hit);
    FMOD::Channel* channel = play(sound);
    output.render(0.05);
    EXPECT_EQ(system->release(), FMOD_OK);
    EXPECT_EQ(system->release(), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(system->update(), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(system->init(channelCount, FMOD_INIT_NORMAL, nullptr), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(create(hit), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(system->playSound(sound, nullptr, false, nullptr), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(sound->release(), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(channel->setPaused(true), FMOD_ERR_INVALID_HANDLE);
    unsigned int version = 7;
    EXPECT_EQ(system->getVersion(&version), FMOD_ERR_INVALID_HANDLE);
}

TEST_F(FmodLayerHeard, RefusesASecondInit)
{
    EXPECT_EQ(system->init(channelCount, FMOD_INIT_NORMAL, nullptr), FMOD_ERR_INITIALIZED);
}

TEST_F(FmodLayerHeard, RefusesArgumentsThatMakeNoSense)
{
    FMOD::Sound* sound = load(hit);
    EXPECT_EQ(FMOD_System_Create(nullptr), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->getVersion(nullptr), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->createSound(nullptr, FMOD_DEFAULT, nullptr, &sound), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->createSound(hit, FMOD_DEFAULT, nullptr, nullptr), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->createSound(hit, 3, nullptr, &sound), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->createSound(hit, 4, nullptr, &sound), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->playSound(nullptr, nullptr, false, nullptr), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(play(sound)->setMode(3), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(play(sound)->getIndex(nullptr), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->playSound(sound, nullptr, false, nullptr), FMOD_OK);
}

TEST_F(FmodLayerHeard, DoesNotPlayTheSoundOfAnotherSystem)
{
    FMOD::System* other = nullptr;
    LoopbackOutput second;
    FMOD_System_Create(&other);
    ASSERT_EQ(other->init(4, FMOD_INIT_NORMAL, nullptr), FMOD_OK);
    FMOD::Sound* sound = load(wave("a.wav", {0.5f}, 44100));
    EXPECT_EQ(other->playSound(sound, nullptr, false, nullptr), FMOD_ERR_INVALID_HANDLE);

    play(sound);
    EXPECT_EQ(peakOf(second.render(0.05)), 0.0f);
    EXPECT_NEAR(peakOf(output.render(0.05)), 0.5f, exact);
    EXPECT_EQ(other->release(), FMOD_OK);
    EXPECT_NEAR(peakOf(output.render(0.05)), 0.5f, exact);
    EXPECT_EQ(system->update(), FMOD_OK);
}

TEST_F(FmodLayer, KnowsItsVersionBeforeInit)
{
    FMOD_System_Create(&system);
    unsigned int version = 0;
    EXPECT_EQ(system->getVersion(&version), FMOD_OK);
    EXPECT_EQ(version, FMOD_VERSION);
}

TEST_F(FmodLayer, WantsAnInitFirst)
{
    FMOD_System_Create(&system);
    EXPECT_EQ(system->update(), FMOD_ERR_UNINITIALIZED);
    EXPECT_EQ(create(hit), FMOD_ERR_UNINITIALIZED);
    EXPECT_EQ(system->playSound(nullptr, nullptr, false, nullptr), FMOD_ERR_UNINITIALIZED);
    EXPECT_EQ(system->init(0, FMOD_INIT_NORMAL, nullptr), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->init(256, FMOD_INIT_NORMAL, nullptr), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->release(), FMOD_OK);
}

TEST_F(FmodLayerWithoutDevice, FailsToInitButGoesOnInSilence)
{
    EXPECT_EQ(initResult, FMOD_ERR_OUTPUT_INIT);
    FMOD::Channel* channel = play(load(hit));
    EXPECT_EQ(channel->setMode(FMOD_LOOP_OFF), FMOD_OK);
    EXPECT_EQ(channel->setVolume(2.0f), FMOD_OK);
    int index = -1;
    EXPECT_EQ(channel->getIndex(&index), FMOD_OK);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(system->update(), FMOD_OK);
    EXPECT_EQ(create(pathOf("missing.mp3")), FMOD_ERR_FILE_NOTFOUND);
    EXPECT_EQ(system->release(), FMOD_OK);
}

TEST_F(FmodLayerWithoutDevice, RunsOutAtTheLengthOfTheSound)
{
    constexpr double seconds = 0.05;
    FMOD::Sound* sound = load(wave("a.wav", {0.5f}, int(seconds * 44100)));
    const auto start = std::chrono::steady_clock::now();
    FMOD::Channel* channel = play(sound);
    int index;
    EXPECT_TRUE(comesTrue([&] {
        system->update();
        return channel->getIndex(&index) == FMOD_ERR_INVALID_HANDLE;
    }));
    const std::chrono::duration<double> lasted = std::chrono::steady_clock::now() - start;
    EXPECT_GE(lasted.count(), seconds);
}

TEST_F(FmodLayerWithoutDevice, NeverRunsOutWhilePausedOrLooping)
{
    FMOD::Sound* sound = load(wave("a.wav", {0.5f}, 44));
    FMOD::Channel* paused = play(sound, true);
    FMOD::Channel* loop = play(load(wave("b.wav", {0.5f}, 44), FMOD_LOOP_NORMAL));
    FMOD::Channel* once = play(sound);
    int index;
    const auto isOver = [&](FMOD::Channel* channel) {
        system->update();
        return channel->getIndex(&index) != FMOD_OK;
    };
    ASSERT_TRUE(comesTrue([&] { return isOver(once); }));
    EXPECT_FALSE(isOver(paused));
    EXPECT_FALSE(isOver(loop));
    paused->setPaused(false);
    loop->setMode(FMOD_LOOP_OFF);
    EXPECT_TRUE(comesTrue([&] { return isOver(paused) && isOver(loop); }));
}

TEST_F(FmodLayerWithoutDevice, StealsChannelsToo)
{
    FMOD::Sound* sound = load(hit, FMOD_LOOP_NORMAL);
    FMOD::Channel* first = play(sound);
    for (int i = 0; i < channelCount; ++i)
        play(sound);
    EXPECT_EQ(first->setVolume(1.0f), FMOD_ERR_INVALID_HANDLE);
}

TEST_F(FmodLayerWithoutDevice, FindsADeviceAtASecondInit)
{
    FMOD::Sound* sound = load(hit);
    FMOD::Channel* channel = play(sound);
    LoopbackOutput output;
    EXPECT_EQ(system->init(channelCount, FMOD_INIT_NORMAL, nullptr), FMOD_OK);
    EXPECT_EQ(sound->release(), FMOD_ERR_INVALID_HANDLE);
    EXPECT_EQ(channel->setPaused(true), FMOD_ERR_INVALID_HANDLE);
    play(load(hit));
    EXPECT_GT(peakOf(output.render(0.3)), 0.5f);
}

TEST(FmodErrorString, HasASentenceOfItsOwnForEveryCode)
{
    std::set<std::string> texts;
    const std::vector<FMOD_RESULT> codes = {
        FMOD_OK,
        FMOD_ERR_FILE_BAD,
        FMOD_ERR_FILE_EOF,
        FMOD_ERR_FILE_NOTFOUND,
        FMOD_ERR_FORMAT,
        FMOD_ERR_INITIALIZED,
        FMOD_ERR_INVALID_FLOAT,
        FMOD_ERR_INVALID_HANDLE,
        FMOD_ERR_INVALID_PARAM,
        FMOD_ERR_MEMORY,
        FMOD_ERR_OUTPUT_INIT,
        FMOD_ERR_UNINITIALIZED,
    };
    for (FMOD_RESULT code : codes)
        texts.insert(FMOD_ErrorString(code));
    EXPECT_EQ(texts.size(), codes.size());
    EXPECT_EQ(texts.count("Unknown error."), 0u);
    EXPECT_EQ(texts.count(""), 0u);
}

TEST(FmodErrorString, KnowsNothingAboveTheLastCode)
{
    EXPECT_STREQ(FMOD_ErrorString(static_cast<FMOD_RESULT>(FMOD_ERR_UNINITIALIZED + 1)),
                 "Unknown error.");
    EXPECT_STREQ(FMOD_ErrorString(static_cast<FMOD_RESULT>(127)), "Unknown error.");
}

// OpenAL reads its settings once a process, hence a process for it.
TEST(FmodLayerDeathTest, LetsNoLibraryChatterWhenTheDesktopHasNoDevice)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            std::fprintf(stderr, "output:\n");
            setenv("ALSOFT_DRIVERS", "pulse,alsa,oss,jack", 1);
            setenv("PULSE_SERVER", "unix:/nonexistent/pulse", 1);
            setenv("ALSA_CONFIG_PATH", "/nonexistent/alsa.conf", 1);
            setenv("JACK_DEFAULT_SERVER", "nonexistent", 1);
            FMOD::System* system = nullptr;
            FMOD_System_Create(&system);
            const FMOD_RESULT result = system->init(channelCount, FMOD_INIT_NORMAL, nullptr);
            system->release();
            std::exit(result);
        },
        testing::ExitedWithCode(FMOD_ERR_OUTPUT_INIT), "output:\n$");
}

}  // namespace
