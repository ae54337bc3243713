#include "platform/FmodLayerFixture.h"

#include <cmath>
#include <iterator>
#include <limits>
#include <sys/resource.h>

using namespace fmodlayer;

namespace {

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

TEST_F(FmodLayerHeard, RefusesAHeaderWithoutRateOrChannels)
{
    std::ifstream stream(wave("sound.wav", {0.25f}, 4410), std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(stream)), {});
    struct Field
    {
        std::size_t place;
        std::size_t size;
    };
    for (const Field& field : {Field{22, 2}, Field{24, 4}}) {
        std::string without = whole;
        without.replace(field.place, field.size, field.size, '\0');
        EXPECT_EQ(create(file("without.wav", without)), FMOD_ERR_FORMAT) << field.place;
    }
}

TEST_F(FmodLayerHeard, TellsASoundThatTheSystemDoesNotOpenFromNoSound)
{
    rlimit usual = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit noMore = {0, usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &noMore), 0);
    EXPECT_EQ(create(hit), FMOD_ERR_FILE_BAD);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
    EXPECT_EQ(create(hit), FMOD_OK);
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
            damaged[(random >> 8) % damaged.size()] = char(random >> 24);
        }
        create(file("damaged.mp3", damaged));
    }
    testing::internal::GetCapturedStderr();
    // None of it harmed what comes after.
    EXPECT_EQ(create(hit), FMOD_OK);
}

}  // namespace
