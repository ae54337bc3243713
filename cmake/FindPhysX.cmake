# Finds the PhysX SDK: under PhysX_ROOT if that is given, else in the cache that
# third_party/physx/build fills. Defines the target PhysX::PhysX.
if(NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
    set(_physx_cache "$ENV{XDG_CACHE_HOME}/rollix/physx-5.1.3")
else()
    set(_physx_cache "$ENV{HOME}/.cache/rollix/physx-5.1.3")
endif()

find_path(PhysX_INCLUDE_DIR PxPhysicsAPI.h
          HINTS ${PhysX_ROOT} "${_physx_cache}" PATH_SUFFIXES include physx/include)
find_library(PhysX_LIBRARY NAMES physx PhysX_static_64
             HINTS ${PhysX_ROOT} "${_physx_cache}" PATH_SUFFIXES lib)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PhysX
    REQUIRED_VARS PhysX_LIBRARY PhysX_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "run third_party/physx/build, or set PhysX_ROOT")

if(PhysX_FOUND AND NOT TARGET PhysX::PhysX)
    add_library(PhysX::PhysX STATIC IMPORTED)
    set_target_properties(PhysX::PhysX PROPERTIES
        IMPORTED_LOCATION "${PhysX_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${PhysX_INCLUDE_DIR}"
        # The headers insist on exactly one of NDEBUG and _DEBUG. The library is a release build, so
        # that its own view of its structures is NDEBUG whatever we are built as.
        INTERFACE_COMPILE_DEFINITIONS "PX_PHYSX_STATIC_LIB;$<$<CONFIG:Debug>:NDEBUG>"
        INTERFACE_LINK_LIBRARIES "Threads::Threads;${CMAKE_DL_LIBS}")
endif()
