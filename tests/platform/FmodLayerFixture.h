#pragma once

#include "support/SoundOutputs.h"

#include <QTemporaryDir>
#include <fmod.hpp>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <fstream>
#include <string>
#include <vector>

namespace fmodlayer {
inline constexpr int channelCount = 42;
inline constexpr float exact = 1e-5f;  // what the mixer rounds

inline constexpr const char* hit = "data/Rollix/wood-ball-hit-1.mp3";

class FmodLayer : public testing::Test
{
protected:
    ~FmodLayer() override
    {
        if (system)
            system->release();
    }

    std::string pathOf(const std::string& name) const
    {
        return folder.filePath(QString::fromStdString(name)).toStdString();
    }

    /// Writes floats as they are, `frames` times the values of one frame.
    std::string wave(const std::string& name, const std::vector<float>& frame, int frames,
                     int rate = LoopbackOutput::rate) const
    {
        SF_INFO info = {};
        info.samplerate = rate;
        info.channels = int(frame.size());
        info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
        const std::string path = pathOf(name);
        SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
        std::vector<float> samples;
        for (int i = 0; i < frames; ++i)
            samples.insert(samples.end(), frame.begin(), frame.end());
        sf_writef_float(file, samples.data(), frames);
        sf_close(file);
        return path;
    }

    std::string file(const std::string& name, const std::string& content) const
    {
        const std::string path = pathOf(name);
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

    FMOD_RESULT create(const std::string& path)
    {
        FMOD::Sound* sound = nullptr;
        return system->createSound(path.c_str(), FMOD_DEFAULT, nullptr, &sound);
    }

    FMOD::Sound* load(const std::string& path, FMOD_MODE mode = FMOD_DEFAULT)
    {
        FMOD::Sound* sound = nullptr;
        EXPECT_EQ(system->createSound(path.c_str(), mode, nullptr, &sound), FMOD_OK);
        return sound;
    }

    FMOD::Channel* play(FMOD::Sound* sound, bool paused = false)
    {
        FMOD::Channel* channel = nullptr;
        EXPECT_EQ(system->playSound(sound, nullptr, paused, &channel), FMOD_OK);
        return channel;
    }

    QTemporaryDir folder;
    FMOD::System* system = nullptr;
};

class FmodLayerHeard : public FmodLayer
{
protected:
    FmodLayerHeard()
    {
        FMOD_System_Create(&system);
        EXPECT_EQ(system->init(channelCount, FMOD_INIT_NORMAL, nullptr), FMOD_OK);
    }

    // A member is there before the constructor opens it.
    LoopbackOutput output;
};

class FmodLayerWithoutDevice : public FmodLayer
{
protected:
    FmodLayerWithoutDevice()
    {
        FMOD_System_Create(&system);
        initResult = system->init(channelCount, FMOD_INIT_NORMAL, nullptr);
    }

    NoOutput none;
    FMOD_RESULT initResult;
};
}  // namespace fmodlayer
