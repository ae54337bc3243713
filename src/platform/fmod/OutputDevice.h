#pragma once

#include <AL/alc.h>

#include <functional>
#include <memory>
#include <vector>

/// An open OpenAL device with its one context.
class OutputDevice
{
public:
    /// Gives a device, and may add context attributes; null for "no device".
    using Opener = std::function<ALCdevice*(std::vector<ALCint>& attributes)>;

    /// Null when there is no device. Nothing is written to the terminal either way.
    static std::unique_ptr<OutputDevice> open();

    /// Lets open() take its devices from somewhere else than the desktop: a loopback device whose
    /// samples can be read, or none at all. An empty function goes back to the default device.
    static void openWith(Opener opener);

    OutputDevice(const OutputDevice&) = delete;
    OutputDevice& operator=(const OutputDevice&) = delete;
    ~OutputDevice();

    /// To be called before any al* call: the current context is the process's, and there may be
    /// several devices.
    void makeCurrent() const;

private:
    OutputDevice(ALCdevice* openedDevice, ALCcontext* createdContext);

    ALCdevice* device;
    ALCcontext* context;
};
