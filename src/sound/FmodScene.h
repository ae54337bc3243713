#pragma once

#include <fmod.hpp>
#include <osg/Referenced>

#include <string>
#include <unordered_map>

/// Sounds by name. A sound is started and left alone: nothing stops it, moves it or follows it.
/// Failures are told on standard output, and callers may ignore them. Main thread only.
class FmodScene : public osg::Referenced
{
public:
    FmodScene() = default;

    /// Loads `file` as `name`. A sound that has the name already stays loaded, out of reach.
    bool loadSound(std::string name, std::string file);

    /// `volume` is a factor on the recording; it may be above 1. `mode` 1 loops, all others play
    /// once. If `channelIndex` is not null and `mode` is not 0, `*channelIndex` gets the number
    /// under which `channels` keeps the channel.
    bool playSound(std::string name, float volume, int mode, int* channelIndex);

protected:
    /// Releases the sounds that have a name.
    ~FmodScene() override;

    FMOD_RESULT result = FMOD_OK;  // of the latest call
    std::unordered_map<std::string, FMOD::Sound*> sounds;
    std::unordered_map<int, FMOD::Channel*> channels;

private:
    bool checkResult(FMOD_RESULT checked) const;
};
