#include "sound/FmodScene.h"

#include "base/Say.h"
#include "sound/FmodManager.h"

#include <fmod_errors.h>

namespace {

constexpr int playOnce = 0;
constexpr int playLooped = 1;

}  // namespace

FmodScene::~FmodScene()
{
    for (const auto& entry : sounds)
        entry.second->release();
    sounds.clear();
    channels.clear();
}

bool FmodScene::loadSound(std::string name, std::string file)
{
    FMOD::Sound* sound = nullptr;
    result = FmodManager::system()->createSound(file.c_str(), FMOD_DEFAULT, nullptr, &sound);
    if (!checkResult(result))
        return false;
    sounds[name] = sound;
    return true;
}

bool FmodScene::playSound(std::string name, float volume, int mode, int* channelIndex)
{
    const auto found = sounds.find(name);
    if (found == sounds.end()) {
        say("I do not know the sound ", name, " !");
        return false;
    }

    // Paused, so that not one sample is heard at the wrong volume.
    FMOD::Channel* channel = nullptr;
    result = FmodManager::system()->playSound(found->second, nullptr, true, &channel);
    if (!checkResult(result))
        return false;
    result = channel->setMode(mode == playLooped ? FMOD_LOOP_NORMAL : FMOD_LOOP_OFF);
    if (!checkResult(result))
        return false;
    result = channel->setVolume(volume);
    if (!checkResult(result))
        return false;
    result = channel->setPaused(false);
    if (!checkResult(result))
        return false;

    if (channelIndex && mode != playOnce) {
        result = channel->getIndex(channelIndex);
        channels[*channelIndex] = channel;
    }
    return true;
}

bool FmodScene::checkResult(FMOD_RESULT checked) const
{
    if (checked == FMOD_OK)
        return true;
    say("FMOD error ", int(checked), " - ", FMOD_ErrorString(checked));
    return false;
}
