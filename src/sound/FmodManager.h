#pragma once

#include <fmod.hpp>
#include <osg/Referenced>

/// Owner of the process's one sound system. It comes into being when somebody first asks for it,
/// and is never initialized anew. Main thread only.
class FmodManager : public osg::Referenced
{
public:
    /// Creates and initializes the system at the first call; a failure of that is reported once,
    /// and the system is handed out all the same.
    static FMOD::System* system();

    /// Releases the system with all its sounds. The manager keeps pointing at it.
    static void shutdown();

protected:
    ~FmodManager() override = default;

private:
    FmodManager();

    static FmodManager* instance();

    FMOD_RESULT result;  // of the latest call
    unsigned int version = 0;
    FMOD::System* system_ = nullptr;
};
