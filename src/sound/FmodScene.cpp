#include "sound/FmodScene.h"

#include "sound/FmodManager.h"

#include <fmod_errors.h>

#include <cstdio>
#include <iostream>

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
        std::printf("I do not know the sound %s !\n", name.c_str());
        std::fflush(stdout);
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
    std::cout << "FMOD error " << static_cast<int>(checked) << " - " << FMOD_ErrorString(checked)
              << std::endl;
    return false;
}
