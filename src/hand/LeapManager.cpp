#include "hand/LeapManager.h"

#include <osg/ref_ptr>

#include <cstdlib>

namespace {

osg::ref_ptr<LeapManager> manager;
bool created = false;

}  // namespace

LeapManager* LeapManager::instance()
{
    if (!created) {
        manager = new LeapManager;
        created = true;
        std::atexit([] { manager = nullptr; });
    }
    return manager.get();
}

void LeapManager::setListener(Leap::Listener* newListener)
{
    LeapManager* self = instance();
    if (self->listener)
        self->controller.removeListener(*self->listener);
    self->listener = newListener;
    self->controller.addListener(*newListener);
}

void LeapManager::removeListener()
{
    LeapManager* self = instance();
    if (self->listener)
        self->controller.removeListener(*self->listener);
}

void LeapManager::forget(Leap::Listener* listener)
{
    // Also from what ends after the exit handlers.
    if (!manager || manager->listener != listener)
        return;
    removeListener();
    manager->listener = nullptr;
}
