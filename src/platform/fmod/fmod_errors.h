#pragma once

#include <fmod.hpp>

/// A sentence for the terminal; static storage. "Unknown error." for a number that is no code here.
inline const char* FMOD_ErrorString(FMOD_RESULT result)
{
    switch (result) {
    case FMOD_OK:
        return "All is well.";
    case FMOD_ERR_FILE_BAD:
        return "The file could not be read.";
    case FMOD_ERR_FILE_EOF:
        return "The file holds no sound.";
    case FMOD_ERR_FILE_NOTFOUND:
        return "There is no such file.";
    case FMOD_ERR_FORMAT:
        return "The file is of no sound format known here.";
    case FMOD_ERR_INITIALIZED:
        return "The sound system is initialized already.";
    case FMOD_ERR_INVALID_FLOAT:
        return "A number is infinite or not a number.";
    case FMOD_ERR_INVALID_HANDLE:
        return "The system, sound or channel is gone.";
    case FMOD_ERR_INVALID_PARAM:
        return "An argument has a value that makes no sense here.";
    case FMOD_ERR_MEMORY:
        return "The sound takes more memory than there is for it.";
    case FMOD_ERR_OUTPUT_INIT:
        return "No sound output device could be opened.";
    case FMOD_ERR_UNINITIALIZED:
        return "The sound system is not initialized yet.";
    }
    return "Unknown error.";
}
