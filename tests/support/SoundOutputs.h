#pragma once

#include <AL/alc.h>

#include <vector>

/// As long as it lives, sound systems that are initialized play into memory instead of the
/// loudspeakers: exactly as much as is asked for, at no clock's mercy. One at a time.
class LoopbackOutput
{
public:
    static constexpr int rate = 44100;  // frames a second

    LoopbackOutput();
    ~LoopbackOutput();

    /// What the latest system gives next: left and right in turn, 1 at full scale, not clipped.
    std::vector<float> render(double seconds);

private:
    ALCdevice* device = nullptr;
};

/// As long as it lives, there is no output device.
class NoOutput
{
public:
    NoOutput();
    ~NoOutput();
};

/// The greatest distance from zero.
float peakOf(const std::vector<float>& samples);
