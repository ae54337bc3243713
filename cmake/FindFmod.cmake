# The sound interface: the vendor's SDK when FMOD_ROOT names one, else our own layer of the same
# names on OpenAL Soft and libsndfile. Defines the target Fmod::Fmod, and FMOD_IS_OWN.
if(FMOD_ROOT)
    find_path(FMOD_INCLUDE_DIR fmod.hpp HINTS ${FMOD_ROOT}
              PATH_SUFFIXES api/core/inc api/lowlevel/inc inc include)
    find_library(FMOD_LIBRARY fmod HINTS ${FMOD_ROOT}
                 PATH_SUFFIXES api/core/lib/x86_64 api/lowlevel/lib/x86_64 lib)
    include(FindPackageHandleStandardArgs)
    find_package_handle_standard_args(Fmod REQUIRED_VARS FMOD_LIBRARY FMOD_INCLUDE_DIR)
    add_library(Fmod::Fmod UNKNOWN IMPORTED)
    set_target_properties(Fmod::Fmod PROPERTIES
        IMPORTED_LOCATION "${FMOD_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${FMOD_INCLUDE_DIR}")
    set(FMOD_IS_OWN OFF)
else()
    find_package(OpenAL REQUIRED)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
    set(FMOD_IS_OWN ON)
    set(Fmod_FOUND ON)
endif()
