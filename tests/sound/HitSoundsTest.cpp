#include "platform/fmod/SoundFile.h"
#include "support/SoundOutputs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace {

constexpr int hitCount = 8;

/// The eight hits as the game loads them.
class HitSounds : public testing::Test
{
protected:
    HitSounds()
    {
        for (int i = 1; i <= hitCount; ++i) {
            const std::string path = "data/Rollix/wood-ball-hit-" + std::to_string(i) + ".mp3";
            SoundFile file;
            EXPECT_EQ(file.read(path.c_str()), FMOD_OK) << path;
            hits.push_back(file);
        }
    }

    static std::size_t frames(double seconds, const SoundFile& hit)
    {
        return std::size_t(seconds * hit.rate);
    }

    std::vector<SoundFile> hits;
};

/// Of the left sides, over the shorter one's length: 1 for alike, at whatever loudness.
double correlation(const SoundFile& first, const SoundFile& second)
{
    double product = 0;
    double firstPower = 0;
    double secondPower = 0;
    const std::size_t end = std::min(first.samples.size(), second.samples.size());
    for (std::size_t i = 0; i < end; i += 2) {
        product += first.samples[i] * second.samples[i];
        firstPower += first.samples[i] * first.samples[i];
        secondPower += second.samples[i] * second.samples[i];
    }
    return product / std::sqrt(firstPower * secondPower);
}

double loudness(const SoundFile& hit)
{
    double power = 0;
    for (float sample : hit.samples)
        power += sample * sample;
    return std::sqrt(power / hit.samples.size());
}

TEST_F(HitSounds, AreBriefAndOfCdRate)
{
    for (const SoundFile& hit : hits) {
        EXPECT_EQ(hit.rate, 44100);
        EXPECT_GE(hit.seconds(), 0.3);
        EXPECT_LE(hit.seconds(), 0.6);
    }
}

TEST_F(HitSounds, ReachTheSamePeakBelowFullScale)
{
    for (const SoundFile& hit : hits)
        EXPECT_NEAR(peakOf(hit.samples), 0.8f, 0.05f);
}

TEST_F(HitSounds, AreAboutAsLoudAsOneAnother)
{
    std::vector<double> levels;
    for (const SoundFile& hit : hits)
        levels.push_back(loudness(hit));
    EXPECT_LT(*std::max_element(levels.begin(), levels.end()),
              2 * *std::min_element(levels.begin(), levels.end()));
}

TEST_F(HitSounds, BeginWithinTenMilliseconds)
{
    for (const SoundFile& hit : hits) {
        const auto loud = std::find_if(hit.samples.begin(), hit.samples.end(),
                                       [](float sample) { return std::fabs(sample) > 0.1f; });
        EXPECT_LT(std::size_t(loud - hit.samples.begin()) / 2, frames(0.01, hit));
    }
}

TEST_F(HitSounds, BeginAndEndWithoutAClick)
{
    for (const SoundFile& hit : hits) {
        const std::vector<float>& samples = hit.samples;
        EXPECT_LT(std::fabs(samples.front()), 0.01f);
        const std::size_t tail = 2 * frames(0.01, hit);
        EXPECT_LT(peakOf({samples.end() - std::ptrdiff_t(tail), samples.end()}), 0.001f);
    }
}

TEST_F(HitSounds, DieAway)
{
    for (const SoundFile& hit : hits) {
        const auto middle = hit.samples.begin() + std::ptrdiff_t(hit.samples.size() / 2);
        EXPECT_LT(peakOf({middle, hit.samples.end()}), 0.1f * peakOf(hit.samples));
    }
}

TEST_F(HitSounds, AllDiffer)
{
    for (int i = 0; i < hitCount; ++i)
        for (int j = 0; j < i; ++j)
            EXPECT_LT(std::fabs(correlation(hits[i], hits[j])), 0.9) << i + 1 << " and " << j + 1;
}

}  // namespace
