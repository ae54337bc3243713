#pragma once

// The sound interface that the game is written for, on OpenAL Soft and libsndfile. It has the calls
// that the game makes and no more, under the vendor's names and result codes, so that the vendor's
// own library fits in its place.
//
// One thread at a time may use a system and what belongs to it; mixing runs on OpenAL's thread. No
// call throws, and no object handed out here is ever freed: once the thing behind it is gone, every
// call on it answers FMOD_ERR_INVALID_HANDLE.

#include <memory>

class Mixer;
class Playback;
class Sample;

/// The result codes that occur here; the gaps between the numbers are the vendor's other codes.
enum FMOD_RESULT {
    FMOD_OK = 0,
    FMOD_ERR_FILE_BAD = 13,
    FMOD_ERR_FILE_EOF = 16,
    FMOD_ERR_FILE_NOTFOUND = 18,
    FMOD_ERR_FORMAT = 19,
    FMOD_ERR_INITIALIZED = 27,
    FMOD_ERR_INVALID_FLOAT = 29,
    FMOD_ERR_INVALID_HANDLE = 30,
    FMOD_ERR_INVALID_PARAM = 31,
    FMOD_ERR_MEMORY = 38,
    FMOD_ERR_OUTPUT_INIT = 51,
    FMOD_ERR_UNINITIALIZED = 67
};

using FMOD_MODE = unsigned int;
constexpr FMOD_MODE FMOD_DEFAULT = 0;
constexpr FMOD_MODE FMOD_LOOP_OFF = 1;
constexpr FMOD_MODE FMOD_LOOP_NORMAL = 2;

using FMOD_INITFLAGS = unsigned int;
constexpr FMOD_INITFLAGS FMOD_INIT_NORMAL = 0;

/// 0xaaaabbcc: product, major, minor. It counts this layer, not the vendor's releases.
constexpr unsigned int FMOD_VERSION = 0x00010000;

struct FMOD_CREATESOUNDEXINFO;

namespace FMOD {
class Channel;
class ChannelGroup;
class Sound;
class System;
struct Handles;
}  // namespace FMOD

/// Makes a system that waits for init(). FMOD_ERR_INVALID_PARAM for a null pointer.
FMOD_RESULT FMOD_System_Create(FMOD::System** system);

namespace FMOD {
/// The vendor's C function takes another type of pointer than ours; this spelling fits both.
inline FMOD_RESULT System_Create(System** system)
{
    return FMOD_System_Create(system);
}

/// The process's way to the loudspeakers: one output device, the sounds loaded for it, and a fixed
/// number of channels on which they play.
class System
{
public:
    System(const System&) = delete;
    System& operator=(const System&) = delete;
    ~System();

    FMOD_RESULT getVersion(unsigned int* version);

    /// Opens the default device. FMOD_ERR_OUTPUT_INIT if there is none: then the system stays up
    /// without output. Sounds load and channels run out by the clock, in silence, so that a game
    /// that was told once need not be told again at every sound. Such a system may be given a
    /// second init(), which forgets its sounds; one that has a device answers FMOD_ERR_INITIALIZED.
    /// `maxChannels` is from 1 to 255; flags and driver data have no meaning here.
    FMOD_RESULT init(int maxChannels, FMOD_INITFLAGS flags, void* extraDriverData);

    /// Gives the channels of sounds that are over back.
    FMOD_RESULT update();

    /// Ends everything that plays, forgets all sounds and closes the device. A second call answers
    /// FMOD_ERR_INVALID_HANDLE.
    FMOD_RESULT release();

    /// Decodes the whole file, so that playing never touches the disk: any rate, any number of
    /// channels (more than two are folded into one), at most three minutes or so. `mode` is the
    /// loop mode that channels start with; `exInfo` must be null. The sound belongs to the system,
    /// which release() takes with it. On failure `*sound` keeps its value.
    FMOD_RESULT createSound(const char* file, FMOD_MODE mode, FMOD_CREATESOUNDEXINFO* exInfo,
                            Sound** sound);

    /// Takes a channel at volume 1; `group` must be null, `channel` may be. When all channels are
    /// taken, the quietest of them is stolen (a paused one counts as silent), of equals the oldest.
    FMOD_RESULT playSound(Sound* sound, ChannelGroup* group, bool paused, Channel** channel);

private:
    friend struct Handles;
    System();

    bool released = false;
    std::unique_ptr<Mixer> mixer;
};

/// A decoded sound.
class Sound
{
public:
    Sound(const Sound&) = delete;
    Sound& operator=(const Sound&) = delete;

    /// Stops the channels that play it and forgets its samples.
    FMOD_RESULT release();

private:
    friend class System;
    friend struct Handles;
    Sound() = default;

    std::weak_ptr<Sample> sample;
};

/// What can be told to something that plays.
class ChannelControl
{
public:
    ChannelControl(const ChannelControl&) = delete;
    ChannelControl& operator=(const ChannelControl&) = delete;

    /// Factor on the samples, 1 as recorded. Values above 1 amplify, up to OpenAL's own limit of
    /// 16; a negative one is as loud as its positive twin. FMOD_ERR_INVALID_FLOAT if not finite.
    FMOD_RESULT setVolume(float volume);

    FMOD_RESULT setPaused(bool paused);

protected:
    ChannelControl() = default;
    ~ChannelControl() = default;

    /// Null once the sound is over or its channel was stolen.
    std::shared_ptr<Playback> live() const;

    std::weak_ptr<Playback> playback;
};

/// One playing of a sound. The object is used again for another playing after some thousands more.
class Channel : public ChannelControl
{
public:
    /// FMOD_LOOP_OFF or FMOD_LOOP_NORMAL; FMOD_DEFAULT is the former.
    FMOD_RESULT setMode(FMOD_MODE mode);

    /// From 0 to one less than the number of channels. A sound that is over keeps it until
    /// update().
    FMOD_RESULT getIndex(int* index);

private:
    friend class System;
    friend struct Handles;
    Channel() = default;
};
}  // namespace FMOD
