#pragma once

#include <fmod.hpp>

#include <vector>

/// A sound file in memory: two channels, left and right in turn, 1 at full scale.
struct SoundFile
{
    std::vector<float> samples;
    int rate = 0;  // frames a second

    double seconds() const { return samples.size() / 2.0 / rate; }

    /// Decodes a file of any format that libsndfile knows. One channel goes to both sides, as it
    /// stands; of more than two, both sides get the mean. FMOD_ERR_FILE_NOTFOUND, _FILE_BAD,
    /// _FORMAT, _FILE_EOF (no frame in it) or _MEMORY (too long) on failure. Of a damaged file,
    /// what can be decoded is taken; its decoder may complain on standard error.
    FMOD_RESULT read(const char* path);
};
