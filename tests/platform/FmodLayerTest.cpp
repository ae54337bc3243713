#include "support/SoundOutputs.h"

#include <QTemporaryDir>
#include <fmod_errors.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {
constexpr int channelCount = 42;
constexpr float exact = 1e-5f;

const char* hit = "data/Rollix/wood-ball-hit-1.mp3";

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

class FmodLayer : public testing::Test
{
protected:
    ~FmodLayer() override
    {
        if (system)
            system->release();
    }

    std::string pathOf(const std::string& name) const
    {
        return folder.filePath(QString::fromStdString(name)).toStdString();
    }

    /// Writes floats as they are, `frames` times the values of one frame.
    std::string wave(const std::string& name, const std::vector<float>& frame, int frames,
                     int rate = LoopbackOutput::rate) const
    {
        SF_INFO info = {};
        info.samplerate = rate;
        info.channels = static_cast<int>(frame.size());
        info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
        const std::string path = pathOf(name);
        SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
        std::vector<float> samples;
        for (int i = 0; i < frames; ++i)
            samples.insert(samples.end(), frame.begin(), frame.end());
        sf_writef_float(file, samples.data(), frames);
        sf_close(file);
        return path;
    }

    std::string file(const std::string& name, const std::string& content) const
    {
        const std::string path = pathOf(name);
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

    FMOD_RESULT create(const std::string& path)
    {
        FMOD::Sound* sound = nullptr;
        return system->createSound(path.c_str(), FMOD_DEFAULT, nullptr, &sound);
    }

    FMOD::Sound* load(const std::string& path, FMOD_MODE mode = FMOD_DEFAULT)
    {
        FMOD::Sound* sound = nullptr;
        EXPECT_EQ(system->createSound(path.c_str(), mode, nullptr, &sound), FMOD_OK);
        return sound;
    }

    FMOD::Channel* play(FMOD::Sound* sound, bool paused = false)
    {
        FMOD::Channel* channel = nullptr;
        EXPECT_EQ(system->playSound(sound, nullptr, paused, &channel), FMOD_OK);
        return channel;
    }

    QTemporaryDir folder;
    FMOD::System* system = nullptr;
};

class FmodLayerHeard : public FmodLayer
{
protected:
    FmodLayerHeard()
    {
        FMOD_System_Create(&system);
        EXPECT_EQ(system->init(channelCount, FMOD_INIT_NORMAL, nullptr), FMOD_OK);
    }

    // Before the system, which plays into it.
    LoopbackOutput output;
};

class FmodLayerWithoutDevice : public FmodLayer
{
protected:
    FmodLayerWithoutDevice()
    {
        FMOD_System_Create(&system);
        initResult = system->init(channelCount, FMOD_INIT_NORMAL, nullptr);
    }

    NoOutput none;
    FMOD_RESULT initResult;
};

TEST_F(FmodLayerHeard, PlaysAsRecordedOnBothSides)
{
    play(load(wave("a.wav", {0.25f}, 4410)));
    const std::vector<float> heard = output.render(0.09);
    for (float sample : heard)
        ASSERT_NEAR(sample, 0.25f, exact);
}

TEST_F(FmodLayerHeard, MultipliesTheSamplesByTheVolume)
{
    FMOD::Sound* sound = load(wave("a.wav", {0.01f}, 44100));
    for (float volume : {0.0f, 0.01f, 0.5f, 1.0f, 1.5f, 4.0f, 15.9f, -2.0f}) {
        SCOPED_TRACE(volume);
        FMOD::Channel* channel = play(sound, true);
        EXPECT_EQ(channel->setVolume(volume), FMOD_OK);
        EXPECT_EQ(channel->setPaused(false), FMOD_OK);
        EXPECT_NEAR(peakOf(output.render(0.05)), 0.01f * std::fabs(volume), exact);
        EXPECT_EQ(channel->setPaused(true), FMOD_OK);
        output.render(0.05);
    }
}

TEST_F(FmodLayerHeard, StaysAtSixteenTimesForAnythingLouder)
{
    FMOD::Channel* channel = play(load(wave("a.wav", {0.01f}, 44100)), true);
    EXPECT_EQ(channel->setVolume(1000.0f), FMOD_OK);
    channel->setPaused(false);
    EXPECT_NEAR(peakOf(output.render(0.05)), 0.16f, exact);
}

TEST_F(FmodLayerHeard, AddsWhatPlaysTogether)
{
    FMOD::Sound* sound = load(wave("a.wav", {0.125f}, 44100));
    for (int i = 0; i < 3; ++i)
        play(sound);
    EXPECT_NEAR(peakOf(output.render(0.05)), 0.375f, exact);
}

TEST_F(FmodLayerHeard, RefusesAVolumeThatIsNoNumber)
{
    FMOD::Channel* channel = play(load(wave("a.wav", {0.25f}, 44100)));
    EXPECT_EQ(channel->setVolume(std::nanf("")), FMOD_ERR_INVALID_FLOAT);
    EXPECT_EQ(channel->setVolume(std::numeric_limits<float>::infinity()), FMOD_ERR_INVALID_FLOAT);
    EXPECT_NEAR(peakOf(output.render(0.05)), 0.25f, exact);
}

TEST_F(FmodLayerHeard, StartsSilentWhenPausedAndGoesOnWhereItWas)
{
    FMOD::Channel* channel = play(load(wave("a.wav", {0.5f}, 4410)), true);
    EXPECT_EQ(peakOf(output.render(0.5)), 0.0f);
    channel->setPaused(false);
    EXPECT_GT(peakOf(output.render(0.05)), 0.4f);
    channel->setPaused(true);
    output.render(0.05);
    EXPECT_EQ(peakOf(output.render(0.5)), 0.0f);
    EXPECT_EQ(channel->setPaused(false), FMOD_OK);
    EXPECT_GT(peakOf(output.render(0.04)), 0.4f);
    output.render(0.1);
    EXPECT_EQ(peakOf(output.render(0.5)), 0.0f);
}

TEST_F(FmodLayerHeard, DoesNotStartAnewWhenUnpausedTwice)
{
    FMOD::Channel* channel = play(load(wave("a.wav", {0.5f}, 4410)));
    output.render(0.08);
    EXPECT_EQ(channel->setPaused(false), FMOD_OK);
    output.render(0.04);
    EXPECT_EQ(peakOf(output.render(0.05)), 0.0f);
}

TEST_F(FmodLayerHeard, EndsAfterTheLengthOfTheSound)
{
    play(load(wave("a.wav", {0.5f}, 4410)));
    EXPECT_NEAR(peakOf(output.render(0.1)), 0.5f, exact);
    output.render(0.01);
    EXPECT_EQ(peakOf(output.render(0.5)), 0.0f);
}

TEST_F(FmodLayerHeard, LoopsUntilToldOtherwise)
{
    FMOD::Channel* channel = play(load(wave("a.wav", {0.5f}, 441)), true);
    EXPECT_EQ(channel->setMode(FMOD_LOOP_NORMAL), FMOD_OK);
    channel->setPaused(false);
    output.render(3);
    system->update();
    EXPECT_NEAR(peakOf(output.render(0.1)), 0.5f, exact);
    EXPECT_EQ(channel->setMode(FMOD_LOOP_OFF), FMOD_OK);
    output.render(0.1);
    EXPECT_EQ(peakOf(output.render(0.1)), 0.0f);
}

TEST_F(FmodLayerHeard, TakesTheLoopModeOfTheSound)
{
    play(load(wave("a.wav", {0.5f}, 441), FMOD_LOOP_NORMAL));
    output.render(1);
    EXPECT_NEAR(peakOf(output.render(0.1)), 0.5f, exact);
}

TEST_F(FmodLayerHeard, KeepsLeftAndRightApart)
{
    play(load(wave("a.wav", {0.25f, -0.5f}, 4410)));
    const std::vector<float> heard = output.render(0.05);
    for (std::size_t i = 0; i < heard.size(); i += 2) {
        ASSERT_NEAR(heard[i], 0.25f, exact);
        ASSERT_NEAR(heard[i + 1], -0.5f, exact);
    }
}

TEST_F(FmodLayerHeard, FoldsMoreThanTwoChannelsIntoTheirMean)
{
    play(load(wave("a.wav", {0.6f, 0.0f, 0.3f, 0.0f, 0.0f, 0.3f}, 4410)));
    EXPECT_NEAR(peakOf(output.render(0.05)), 0.2f, exact);
}

TEST_F(FmodLayerHeard, KeepsTheLengthAtAnyRate)
{
    for (int rate : {8000, 11025, 22050, 32000, 44100, 48000, 96000, 192000}) {
        SCOPED_TRACE(rate);
        play(load(wave("a.wav", {0.5f}, rate / 5, rate)));
        const std::vector<float> heard = output.render(0.4);
        std::size_t loud = 0;
        for (float sample : heard)
            loud += sample > 0.25f;
        EXPECT_NEAR(loud / 2.0 / LoopbackOutput::rate, 0.2, 0.002);
    }
}

TEST_F(FmodLayerHeard, PlaysAnMp3)
{
    play(load(hit));
    EXPECT_GT(peakOf(output.render(0.5)), 0.5f);
    EXPECT_EQ(peakOf(output.render(0.5)), 0.0f);
}

TEST_F(FmodLayerHeard, TakesSamplesThatAreNoNumbersAsSilence)
{
    play(load(wave("a.wav", {std::nanf(""), std::numeric_limits<float>::infinity()}, 4410)));
    EXPECT_EQ(peakOf(output.render(0.2)), 0.0f);
    play(load(wave("b.wav", {0.5f}, 4410)));
    EXPECT_NEAR(peakOf(output.render(0.1)), 0.5f, exact);
}

TEST_F(FmodLayerHeard, TellsWhyAFileIsNoSound)
{
    EXPECT_EQ(create(pathOf("missing.mp3")), FMOD_ERR_FILE_NOTFOUND);
    EXPECT_EQ(create(hit + std::string("/below.mp3")), FMOD_ERR_FILE_NOTFOUND);
    EXPECT_EQ(create(folder.path().toStdString()), FMOD_ERR_FILE_BAD);
    EXPECT_EQ(create("/dev/zero"), FMOD_ERR_FILE_BAD);
    EXPECT_EQ(create(file("empty.mp3", "")), FMOD_ERR_FORMAT);
    EXPECT_EQ(create(file("text.mp3", "This is not a sound, whatever it is called.\n")),
              FMOD_ERR_FORMAT);
    EXPECT_EQ(create(wave("nothing.wav", {0.0f}, 0)), FMOD_ERR_FILE_EOF);
}

TEST_F(FmodLayerHeard, RefusesASoundOfMoreThanSomeMinutes)
{
    SF_INFO info = {};
    info.samplerate = 8000;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_U8;
    const std::string path = pathOf("long.wav");
    SNDFILE* written = sf_open(path.c_str(), SFM_WRITE, &info);
    const std::vector<short> minute(1024 * 1024, 0);
    for (int i = 0; i < 9; ++i)
        sf_write_short(written, minute.data(), static_cast<sf_count_t>(minute.size()));
    sf_close(written);
    EXPECT_EQ(create(path), FMOD_ERR_MEMORY);
}

TEST_F(FmodLayerHeard, SurvivesFilesThatAreCutOrDamaged)
{
    std::ifstream stream(hit, std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(stream)), {});
    ASSERT_FALSE(whole.empty());
    // The decoder has a lot to say of these.
    testing::internal::CaptureStderr();
    for (std::size_t length = 0; length < whole.size(); length += 37)
        create(file("cut.mp3", whole.substr(0, length)));
    unsigned int random = 1;
    for (int i = 0; i < 200; ++i) {
        std::string damaged = whole;
        for (int j = 0; j < 20; ++j) {
            random = random * 1103515245u + 12345u;
            damaged[(random >> 8) % damaged.size()] = static_cast<char>(random >> 24);
        }
        create(file("damaged.mp3", damaged));
    }
    testing::internal::GetCapturedStderr();
    // None of it harmed what comes after.
    EXPECT_EQ(create(hit), FMOD_OK);
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
    FMOD::Sound* sound = load(wave("a.wav", {0.5f}, static_cast<int>(seconds * 44100)));
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
            unsetenv("ALSOFT_LOGLEVEL");
            FMOD::System* system = nullptr;
            FMOD_System_Create(&system);
            const FMOD_RESULT result = system->init(channelCount, FMOD_INIT_NORMAL, nullptr);
            system->release();
            std::exit(result);
        },
        testing::ExitedWithCode(FMOD_ERR_OUTPUT_INIT), "output:\n$");
}
}  // namespace
