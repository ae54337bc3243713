#include "platform/fmod/Mixer.h"
#include "platform/fmod/OutputDevice.h"
#include "platform/fmod/SoundFile.h"

#include <fmod.hpp>

#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr int mostChannels = 255;                 // OpenAL gives a device that many sources
constexpr std::size_t mostChannelObjects = 4096;  // a few minutes of the wildest play
constexpr FMOD_MODE knownModes = FMOD_LOOP_OFF | FMOD_LOOP_NORMAL;

bool isKnownMode(FMOD_MODE mode)
{
    return (mode & ~knownModes) == 0 && mode != knownModes;
}

}  // namespace

namespace FMOD {
// What is handed out to callers stays valid to the end of the process, however long a caller keeps
// it: systems and sounds because there are few, channels because they are used in turn.
struct Handles
{
    static Handles& instance()
    {
        // Not destroyed: exit handlers of the game may still come by.
        static Handles& handles = *new Handles;
        return handles;
    }

    System* makeSystem()
    {
        systems.emplace_back(new System);
        return systems.back().get();
    }

    Sound* makeSound()
    {
        sounds.emplace_back(new Sound);
        return sounds.back().get();
    }

    Channel* makeChannel()
    {
        if (channels.size() < mostChannelObjects) {
            channels.emplace_back(new Channel);
            return channels.back().get();
        }
        // The one that was handed out the longest ago, unless its sound still plays.
        for (std::size_t i = 0; i < channels.size(); ++i) {
            Channel* channel = channels[nextChannel++ % channels.size()].get();
            if (channel->playback.expired())
                return channel;
        }
        channels.emplace_back(new Channel);
        return channels.back().get();
    }

    std::vector<std::unique_ptr<System>> systems;
    std::vector<std::unique_ptr<Sound>> sounds;
    std::vector<std::unique_ptr<Channel>> channels;
    std::size_t nextChannel = 0;
};

System::System() = default;
System::~System() = default;

FMOD_RESULT System::getVersion(unsigned int* version)
{
    if (released)
        return FMOD_ERR_INVALID_HANDLE;
    if (!version)
        return FMOD_ERR_INVALID_PARAM;
    *version = FMOD_VERSION;
    return FMOD_OK;
}

FMOD_RESULT System::init(int maxChannels, FMOD_INITFLAGS, void*)
{
    if (released)
        return FMOD_ERR_INVALID_HANDLE;
    if (maxChannels < 1 || maxChannels > mostChannels)
        return FMOD_ERR_INVALID_PARAM;
    if (mixer && mixer->isAudible())
        return FMOD_ERR_INITIALIZED;

    mixer.reset();
    if (std::unique_ptr<OutputDevice> output = OutputDevice::open())
        mixer = Mixer::create(std::move(output), maxChannels);
    if (mixer)
        return FMOD_OK;
    mixer = Mixer::create(nullptr, maxChannels);
    return FMOD_ERR_OUTPUT_INIT;
}

FMOD_RESULT System::update()
{
    if (released)
        return FMOD_ERR_INVALID_HANDLE;
    if (!mixer)
        return FMOD_ERR_UNINITIALIZED;
    mixer->reclaimFinished();
    return FMOD_OK;
}

FMOD_RESULT System::release()
{
    if (released)
        return FMOD_ERR_INVALID_HANDLE;
    released = true;
    mixer.reset();
    return FMOD_OK;
}

FMOD_RESULT System::createSound(const char* file, FMOD_MODE mode, FMOD_CREATESOUNDEXINFO* exInfo,
                                Sound** sound)
{
    if (released)
        return FMOD_ERR_INVALID_HANDLE;
    if (!mixer)
        return FMOD_ERR_UNINITIALIZED;
    if (!file || !sound || exInfo || !isKnownMode(mode))
        return FMOD_ERR_INVALID_PARAM;

    SoundFile decoded;
    if (const FMOD_RESULT result = decoded.read(file); result != FMOD_OK)
        return result;
    std::weak_ptr<Sample> sample;
    const FMOD_RESULT result = mixer->load(decoded, (mode & FMOD_LOOP_NORMAL) != 0, sample);
    if (result != FMOD_OK)
        return result;
    *sound = Handles::instance().makeSound();
    (*sound)->sample = sample;
    return FMOD_OK;
}

FMOD_RESULT System::playSound(Sound* sound, ChannelGroup* group, bool paused, Channel** channel)
{
    if (released)
        return FMOD_ERR_INVALID_HANDLE;
    if (!mixer)
        return FMOD_ERR_UNINITIALIZED;
    if (!sound || group)
        return FMOD_ERR_INVALID_PARAM;
    const std::shared_ptr<Sample> sample = sound->sample.lock();
    if (!sample || &sample->mixer != mixer.get())
        return FMOD_ERR_INVALID_HANDLE;

    const std::shared_ptr<Playback> playback = mixer->play(sample);
    playback->setPaused(paused);
    if (channel) {
        *channel = Handles::instance().makeChannel();
        (*channel)->playback = playback;
    }
    return FMOD_OK;
}

FMOD_RESULT Sound::release()
{
    const std::shared_ptr<Sample> released = sample.lock();
    if (!released)
        return FMOD_ERR_INVALID_HANDLE;
    released->mixer.unload(released);
    return FMOD_OK;
}

std::shared_ptr<Playback> ChannelControl::live() const
{
    std::shared_ptr<Playback> found = playback.lock();
    return found && !found->isOver() ? found : nullptr;
}

FMOD_RESULT ChannelControl::setVolume(float volume)
{
    if (!std::isfinite(volume))
        return FMOD_ERR_INVALID_FLOAT;
    const auto playing = live();
    if (!playing)
        return FMOD_ERR_INVALID_HANDLE;
    playing->setVolume(std::fabs(volume));
    return FMOD_OK;
}

FMOD_RESULT ChannelControl::setPaused(bool paused)
{
    const auto playing = live();
    if (!playing)
        return FMOD_ERR_INVALID_HANDLE;
    playing->setPaused(paused);
    return FMOD_OK;
}

FMOD_RESULT Channel::setMode(FMOD_MODE mode)
{
    if (!isKnownMode(mode))
        return FMOD_ERR_INVALID_PARAM;
    const auto playing = live();
    if (!playing)
        return FMOD_ERR_INVALID_HANDLE;
    playing->setLooping((mode & FMOD_LOOP_NORMAL) != 0);
    return FMOD_OK;
}

FMOD_RESULT Channel::getIndex(int* index)
{
    if (!index)
        return FMOD_ERR_INVALID_PARAM;
    // A sound that is over keeps its number until update() takes the channel back.
    const auto playing = playback.lock();
    if (!playing)
        return FMOD_ERR_INVALID_HANDLE;
    *index = playing->index;
    return FMOD_OK;
}
}  // namespace FMOD

FMOD_RESULT FMOD_System_Create(FMOD::System** system)
{
    if (!system)
        return FMOD_ERR_INVALID_PARAM;
    *system = FMOD::Handles::instance().makeSystem();
    return FMOD_OK;
}
