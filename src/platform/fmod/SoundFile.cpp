#include "platform/fmod/SoundFile.h"

#include <sndfile.h>

#include <cerrno>
#include <cmath>
#include <memory>
#include <sys/stat.h>

namespace {

// 64 MB of decoded sound, three minutes at 44.1 kHz: far over a hit, far under a machine's memory.
constexpr std::size_t maxFrames = 8 * std::size_t(1024) * 1024;
constexpr int maxChannels = 64;
constexpr sf_count_t framesAtOnce = 4096;

struct CloseFile
{
    void operator()(SNDFILE* file) const { sf_close(file); }
};

// A value that is not finite would stay in the mixer's filters for good.
float finite(float value)
{
    return std::isfinite(value) ? value : 0.0f;
}

void appendStereo(std::vector<float>& samples, const float* frames, sf_count_t count, int channels)
{
    for (sf_count_t i = 0; i < count; ++i, frames += channels) {
        if (channels == 2) {
            samples.push_back(finite(frames[0]));
            samples.push_back(finite(frames[1]));
            continue;
        }
        float sum = 0;
        for (int channel = 0; channel < channels; ++channel)
            sum += frames[channel];
        const float mean = finite(sum / channels);
        samples.insert(samples.end(), {mean, mean});
    }
}

FMOD_RESULT checkFile(const char* path)
{
    struct stat status;
    if (stat(path, &status) != 0)
        return errno == ENOENT || errno == ENOTDIR ? FMOD_ERR_FILE_NOTFOUND : FMOD_ERR_FILE_BAD;
    // A pipe or a device could keep the game waiting for ever.
    return S_ISREG(status.st_mode) ? FMOD_OK : FMOD_ERR_FILE_BAD;
}

}  // namespace

FMOD_RESULT SoundFile::read(const char* path)
{
    if (const FMOD_RESULT result = checkFile(path); result != FMOD_OK)
        return result;

    SF_INFO info = {};
    const std::unique_ptr<SNDFILE, CloseFile> file(sf_open(path, SFM_READ, &info));
    if (!file)
        return sf_error(nullptr) == SF_ERR_SYSTEM ? FMOD_ERR_FILE_BAD : FMOD_ERR_FORMAT;
    if (info.channels > maxChannels)
        return FMOD_ERR_FORMAT;

    // The header's count of frames is not to be trusted: the file may be cut short, or lie.
    std::vector<float> block(std::size_t(framesAtOnce) * info.channels);
    samples.clear();
    rate = info.samplerate;
    while (const sf_count_t count = sf_readf_float(file.get(), block.data(), framesAtOnce)) {
        if (count < 0)
            return FMOD_ERR_FILE_BAD;
        if (samples.size() / 2 + std::size_t(count) > maxFrames)
            return FMOD_ERR_MEMORY;
        appendStereo(samples, block.data(), count, info.channels);
    }
    return samples.empty() ? FMOD_ERR_FILE_EOF : FMOD_OK;
}
