#include "platform/fmod/Mixer.h"

#include "platform/fmod/OutputDevice.h"
#include "platform/fmod/SoundFile.h"
#include "platform/fmod/Voice.h"

#include <AL/alext.h>

#include <algorithm>
#include <utility>

Sample::Sample(Mixer& owner, ALuint loadedBuffer, double length, bool looping)
    : mixer(owner), buffer(loadedBuffer), seconds(length), loops(looping)
{
}

Playback::Playback(Voice& usedVoice, int channelIndex, std::shared_ptr<Sample> playedSample)
    : index(channelIndex), sample(std::move(playedSample)), voice(usedVoice)
{
    voice.load(sample->buffer, sample->seconds);
    voice.setLooping(sample->loops);
}

Playback::~Playback()
{
    voice.unload();
}

void Playback::setVolume(float newVolume)
{
    volume = newVolume;
    voice.setGain(volume);
}

void Playback::setPaused(bool pause)
{
    // Started twice, a source begins anew.
    if (pause == paused)
        return;
    paused = pause;
    if (paused)
        voice.pause();
    else
        voice.start();
}

void Playback::setLooping(bool looping)
{
    voice.setLooping(looping);
}

bool Playback::isOver() const
{
    return voice.isOver();
}

std::unique_ptr<Mixer> Mixer::create(std::unique_ptr<OutputDevice> output, int channels)
{
    std::unique_ptr<Mixer> mixer(new Mixer(std::move(output)));
    for (int i = 0; i < channels; ++i) {
        std::unique_ptr<Voice> voice;
        if (mixer->output)
            voice = SourceVoice::create(*mixer->output);
        else
            voice = std::make_unique<ClockVoice>();
        if (!voice)
            return nullptr;
        mixer->voices.push_back(std::move(voice));
    }
    return mixer;
}

Mixer::Mixer(std::unique_ptr<OutputDevice> openedOutput) : output(std::move(openedOutput)) {}

Mixer::~Mixer()
{
    playbacks.clear();
    while (!samples.empty())
        remove(samples.back());
}

FMOD_RESULT Mixer::load(const SoundFile& file, bool loops, std::weak_ptr<Sample>& sample)
{
    ALuint buffer = 0;
    if (output) {
        output->makeCurrent();
        alGetError();
        alGenBuffers(1, &buffer);
        if (alGetError() != AL_NO_ERROR)
            return FMOD_ERR_MEMORY;
        alBufferData(buffer, AL_FORMAT_STEREO_FLOAT32, file.samples.data(),
                     static_cast<ALsizei>(file.samples.size() * sizeof(float)), file.rate);
        if (alGetError() != AL_NO_ERROR) {
            alDeleteBuffers(1, &buffer);
            return FMOD_ERR_MEMORY;
        }
    }
    samples.push_back(std::make_shared<Sample>(*this, buffer, file.seconds(), loops));
    sample = samples.back();
    return FMOD_OK;
}

void Mixer::unload(const std::shared_ptr<Sample>& sample)
{
    playbacks.erase(
        std::remove_if(playbacks.begin(), playbacks.end(),
                       [&](const auto& playback) { return playback->sample == sample; }),
        playbacks.end());
    remove(sample);
}

void Mixer::remove(const std::shared_ptr<Sample>& sample)
{
    if (output) {
        output->makeCurrent();
        alDeleteBuffers(1, &sample->buffer);
    }
    samples.erase(std::find(samples.begin(), samples.end(), sample));
}

std::shared_ptr<Playback> Mixer::play(std::shared_ptr<Sample> sample)
{
    reclaimFinished();
    if (playbacks.size() == voices.size())
        stealQuietest();
    const int index = freeChannel();
    playbacks.push_back(
        std::make_shared<Playback>(*voices[std::size_t(index)], index, std::move(sample)));
    return playbacks.back();
}

void Mixer::reclaimFinished()
{
    playbacks.erase(std::remove_if(
                        playbacks.begin(), playbacks.end(),
                        [](const auto& playback) { return playback->isOver(); }),
                    playbacks.end());
}

void Mixer::stealQuietest()
{
    playbacks.erase(std::min_element(
        playbacks.begin(), playbacks.end(),
        [](const auto& left, const auto& right) {
            return left->audibility() < right->audibility();
        }));
}

int Mixer::freeChannel() const
{
    std::vector<bool> taken(voices.size(), false);
    for (const auto& playback : playbacks)
        taken[std::size_t(playback->index)] = true;
    return int(std::find(taken.begin(), taken.end(), false) - taken.begin());
}
