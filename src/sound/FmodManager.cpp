#include "sound/FmodManager.h"

#include "base/Say.h"

#include <fmod_errors.h>
#include <osg/ref_ptr>

#include <cstdlib>

namespace {

constexpr int channelCount = 42;

osg::ref_ptr<FmodManager> manager;
bool created = false;

void dropManager()
{
    manager = nullptr;
}

}  // namespace

FmodManager::FmodManager()
{
    // The vendor's C function for this takes another type of pointer; the C++ spelling fits all.
    result = FMOD::System_Create(&system_);
    result = system_->getVersion(&version);
    result = system_->init(channelCount, FMOD_INIT_NORMAL, nullptr);
    if (result != FMOD_OK)
        say("FMOD error ", int(result), " - ", FMOD_ErrorString(result));
}

FmodManager* FmodManager::instance()
{
    if (!created) {
        manager = new FmodManager;
        created = true;
        std::atexit(dropManager);
    }
    return manager.get();
}

FMOD::System* FmodManager::system()
{
    return instance()->system_;
}

void FmodManager::shutdown()
{
    FmodManager* owner = instance();
    owner->result = owner->system_->release();
    if (owner->result != FMOD_OK)
        say("FMOD ERROR: System did not terminate properly!");
}
