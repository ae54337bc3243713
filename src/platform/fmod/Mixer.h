#pragma once

#include <AL/al.h>
#include <fmod.hpp>

#include <memory>
#include <vector>

class OutputDevice;
class Voice;
struct SoundFile;

/// A sound in the mixer's memory.
class Sample
{
public:
    /// `buffer` is OpenAL's, or 0 without a device.
    Sample(Mixer& owner, ALuint buffer, double seconds, bool loops);

    Mixer& mixer;
    const ALuint buffer;
    const double seconds;
    const bool loops;
};

/// A sound that is playing, or is about to.
class Playback
{
public:
    Playback(Voice& usedVoice, int channelIndex, std::shared_ptr<Sample> playedSample);
    ~Playback();

    void setVolume(float newVolume);
    void setPaused(bool pause);
    void setLooping(bool looping);

    bool isOver() const;
    /// 0 while paused.
    float audibility() const { return paused ? 0.0f : volume; }

    const int index;
    const std::shared_ptr<Sample> sample;

private:
    Voice& voice;
    float volume = 1.0f;
    bool paused = true;
};

/// What an initialized system consists of: device, voices, sounds.
class Mixer
{
public:
    /// Without a device (null) the voices run by the clock. Null when the device has too few.
    static std::unique_ptr<Mixer> create(std::unique_ptr<OutputDevice> output, int channels);
    ~Mixer();

    bool isAudible() const { return output != nullptr; }

    FMOD_RESULT load(const SoundFile& file, bool loops, std::weak_ptr<Sample>& sample);
    /// Stops what plays it.
    void unload(const std::shared_ptr<Sample>& sample);

    /// Paused, at volume 1; steals a channel if it must.
    std::shared_ptr<Playback> play(std::shared_ptr<Sample> sample);
    void reclaimFinished();

private:
    explicit Mixer(std::unique_ptr<OutputDevice> openedOutput);

    void remove(const std::shared_ptr<Sample>& sample);
    void stealQuietest();
    int freeChannel() const;

    // In this order: each needs the ones before it until its end.
    std::unique_ptr<OutputDevice> output;
    std::vector<std::unique_ptr<Voice>> voices;
    std::vector<std::shared_ptr<Sample>> samples;
    /// Oldest first.
    std::vector<std::shared_ptr<Playback>> playbacks;
};
