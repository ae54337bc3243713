#include "support/SoundOutputs.h"

#include "platform/fmod/OutputDevice.h"

#include <AL/alext.h>

#include <algorithm>
#include <cmath>

namespace {

template <typename Function>
Function find(const char* name)
{
    return reinterpret_cast<Function>(alcGetProcAddress(nullptr, name));
}

}  // namespace

LoopbackOutput::LoopbackOutput()
{
    OutputDevice::openWith([this](std::vector<ALCint>& attributes) {
        attributes.insert(attributes.end(),
                          {ALC_FREQUENCY, rate, ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT,
                           ALC_FORMAT_TYPE_SOFT, ALC_FLOAT_SOFT});
        device = find<LPALCLOOPBACKOPENDEVICESOFT>("alcLoopbackOpenDeviceSOFT")(nullptr);
        return device;
    });
}

LoopbackOutput::~LoopbackOutput()
{
    OutputDevice::openWith({});
}

std::vector<float> LoopbackOutput::render(double seconds)
{
    const auto frames = static_cast<ALCsizei>(std::lround(seconds * rate));
    std::vector<float> samples(2 * std::size_t(frames));
    find<LPALCRENDERSAMPLESSOFT>("alcRenderSamplesSOFT")(device, samples.data(), frames);
    return samples;
}

NoOutput::NoOutput()
{
    OutputDevice::openWith([](std::vector<ALCint>&) { return nullptr; });
}

NoOutput::~NoOutput()
{
    OutputDevice::openWith({});
}

float peakOf(const std::vector<float>& samples)
{
    float peak = 0;
    for (float sample : samples)
        peak = std::max(peak, std::fabs(sample));
    return peak;
}
