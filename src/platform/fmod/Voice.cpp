#include "platform/fmod/Voice.h"

#include "platform/fmod/OutputDevice.h"

#include <AL/alext.h>

#include <cmath>
#include <limits>

std::unique_ptr<SourceVoice> SourceVoice::create(const OutputDevice& output)
{
    output.makeCurrent();
    alGetError();
    ALuint source = 0;
    alGenSources(1, &source);
    if (alGetError() != AL_NO_ERROR)
        return nullptr;
    // OpenAL holds gains to 1 as long as it is not told otherwise.
    alSourcef(source, AL_MAX_GAIN, std::numeric_limits<float>::max());
    // Left to the left and right to the right: no placing in space, no headphone filter.
    alSourcei(source, AL_DIRECT_CHANNELS_SOFT, AL_TRUE);
    return std::unique_ptr<SourceVoice>(new SourceVoice(output, source));
}

SourceVoice::SourceVoice(const OutputDevice& device, ALuint generatedSource)
    : output(device), source(generatedSource)
{
}

SourceVoice::~SourceVoice()
{
    output.makeCurrent();
    alDeleteSources(1, &source);
}

void SourceVoice::load(ALuint buffer, double)
{
    output.makeCurrent();
    alSourcei(source, AL_BUFFER, static_cast<ALint>(buffer));
    // A stopped source would be taken for one that is over.
    alSourceRewind(source);
    alSourcef(source, AL_GAIN, 1.0f);
    alSourcei(source, AL_LOOPING, AL_FALSE);
}

void SourceVoice::unload()
{
    output.makeCurrent();
    alSourceStop(source);
    alSourcei(source, AL_BUFFER, 0);
}

void SourceVoice::start()
{
    output.makeCurrent();
    alSourcePlay(source);
}

void SourceVoice::pause()
{
    output.makeCurrent();
    alSourcePause(source);
}

void SourceVoice::setGain(float gain)
{
    output.makeCurrent();
    alSourcef(source, AL_GAIN, gain);
}

void SourceVoice::setLooping(bool looping)
{
    output.makeCurrent();
    alSourcei(source, AL_LOOPING, looping ? AL_TRUE : AL_FALSE);
}

bool SourceVoice::isOver() const
{
    output.makeCurrent();
    ALint state = AL_STOPPED;
    alGetSourcei(source, AL_SOURCE_STATE, &state);
    return state == AL_STOPPED;
}

void ClockVoice::load(ALuint, double seconds)
{
    length = seconds;
    played = 0;
    running = false;
    loops = false;
}

void ClockVoice::unload()
{
    running = false;
}

void ClockVoice::start()
{
    startTime = Clock::now();
    running = true;
}

void ClockVoice::pause()
{
    played = playedSeconds();
    running = false;
}

void ClockVoice::setGain(float) {}

void ClockVoice::setLooping(bool looping)
{
    // What was a loop plays its present round to the end.
    if (loops && !looping) {
        played = std::fmod(playedSeconds(), length);
        startTime = Clock::now();
    }
    loops = looping;
}

bool ClockVoice::isOver() const
{
    return running && !loops && playedSeconds() >= length;
}

double ClockVoice::playedSeconds() const
{
    if (!running)
        return played;
    return played + std::chrono::duration<double>(Clock::now() - startTime).count();
}
