// The linker sends the call of FMOD::System::release here: a sound system that does not end.

#include <fmod.hpp>

extern "C" FMOD_RESULT __wrap__ZN4FMOD6System7releaseEv(FMOD::System* system);

FMOD_RESULT __wrap__ZN4FMOD6System7releaseEv(FMOD::System*)
{
    return FMOD_ERR_INVALID_HANDLE;
}
