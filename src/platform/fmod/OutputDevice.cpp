#include "platform/fmod/OutputDevice.h"

#include <cstdlib>
#include <dlfcn.h>
#include <utility>

namespace {

OutputDevice::Opener& currentOpener()
{
    static OutputDevice::Opener opener;
    return opener;
}

void dropAlsaMessage(const char*, int, const char*, int, const char*, ...) {}

// ALSA reports every configuration it tries on standard error, and goes on doing so while it plays.
// OpenAL loads the library by itself, so that it is met here by name; absent, it cannot chatter.
void silenceAlsa()
{
    using Handler = void (*)(const char*, int, const char*, int, const char*, ...);
    using SetHandler = int (*)(Handler);

    void* library = dlopen("libasound.so.2", RTLD_LAZY | RTLD_LOCAL);
    if (!library)
        return;
    if (auto setHandler = reinterpret_cast<SetHandler>(dlsym(library, "snd_lib_error_set_handler")))
        setHandler(dropAlsaMessage);
    // The library stays open: closed and loaded anew by OpenAL it would have forgotten the handler.
}

// OpenAL reads the level at the first call into it. Somebody who set it wants to hear. The
// environment moves when it grows, under the eyes of any thread that reads it: this is done before
// there are any.
// NOLINTNEXTLINE(concurrency-mt-unsafe): before there are any threads
[[maybe_unused]] const int openAlSilenced = setenv("ALSOFT_LOGLEVEL", "0", 0);

ALCdevice* openDefaultDevice(std::vector<ALCint>&)
{
    return alcOpenDevice(nullptr);
}

}  // namespace

void OutputDevice::openWith(Opener opener)
{
    currentOpener() = std::move(opener);
}

std::unique_ptr<OutputDevice> OutputDevice::open()
{
    static const bool silenced = (silenceAlsa(), true);
    static_cast<void>(silenced);

    std::vector<ALCint> attributes;
    const Opener& opener = currentOpener();
    ALCdevice* device = opener ? opener(attributes) : openDefaultDevice(attributes);
    if (!device)
        return nullptr;
    attributes.push_back(0);
    ALCcontext* context = alcCreateContext(device, attributes.data());
    if (!context) {
        alcCloseDevice(device);
        return nullptr;
    }
    return std::unique_ptr<OutputDevice>(new OutputDevice(device, context));
}

OutputDevice::OutputDevice(ALCdevice* openedDevice, ALCcontext* createdContext)
    : device(openedDevice), context(createdContext)
{
}

OutputDevice::~OutputDevice()
{
    if (alcGetCurrentContext() == context)
        alcMakeContextCurrent(nullptr);
    alcDestroyContext(context);
    alcCloseDevice(device);
}

void OutputDevice::makeCurrent() const
{
    if (alcGetCurrentContext() != context)
        alcMakeContextCurrent(context);
}
