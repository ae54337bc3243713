#pragma once

#include <AL/al.h>

#include <chrono>
#include <memory>

class OutputDevice;

/// One of the things that can make a sound at a time: it is loaded, told how, started, and is over
/// some time later.
class Voice
{
public:
    virtual ~Voice() = default;

    /// Ready to start from the beginning, at gain 1, without a loop.
    virtual void load(ALuint buffer, double seconds) = 0;
    virtual void unload() = 0;

    virtual void start() = 0;
    virtual void pause() = 0;
    virtual void setGain(float gain) = 0;
    virtual void setLooping(bool looping) = 0;

    /// False as long as it was not started, is paused or loops.
    virtual bool isOver() const = 0;
};

/// A voice on an output device. The device must outlive it.
class SourceVoice : public Voice
{
public:
    /// Null when the device has no more of them.
    static std::unique_ptr<SourceVoice> create(const OutputDevice& output);
    ~SourceVoice() override;

    void load(ALuint buffer, double seconds) override;
    void unload() override;
    void start() override;
    void pause() override;
    void setGain(float gain) override;
    void setLooping(bool looping) override;
    bool isOver() const override;

private:
    SourceVoice(const OutputDevice& device, ALuint generatedSource);

    const OutputDevice& output;
    ALuint source;
};

/// A voice that nobody hears: it takes as long as the sound would, and that is all.
class ClockVoice : public Voice
{
public:
    void load(ALuint buffer, double seconds) override;
    void unload() override;
    void start() override;
    void pause() override;
    void setGain(float gain) override;
    void setLooping(bool looping) override;
    bool isOver() const override;

private:
    using Clock = std::chrono::steady_clock;

    double playedSeconds() const;

    double length = 0;  // seconds
    double played = 0;  // seconds up to the latest start
    Clock::time_point startTime;
    bool running = false;
    bool loops = false;
};
