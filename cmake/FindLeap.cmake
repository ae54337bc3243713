# The sensor interface: the vendor's SDK when LEAP_ROOT names one, else our own layer of the same
# names on the sensor service's WebSocket. Defines the target Leap::Leap, and LEAP_IS_OWN.
if(LEAP_ROOT)
    find_path(LEAP_INCLUDE_DIR Leap.h HINTS ${LEAP_ROOT} PATH_SUFFIXES include)
    find_library(LEAP_LIBRARY Leap HINTS ${LEAP_ROOT} PATH_SUFFIXES lib/x64 lib)
    include(FindPackageHandleStandardArgs)
    find_package_handle_standard_args(Leap REQUIRED_VARS LEAP_LIBRARY LEAP_INCLUDE_DIR)
    add_library(Leap::Leap UNKNOWN IMPORTED)
    set_target_properties(Leap::Leap PROPERTIES
        IMPORTED_LOCATION "${LEAP_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${LEAP_INCLUDE_DIR}")
    set(LEAP_IS_OWN OFF)
else()
    set(LEAP_IS_OWN ON)
    set(Leap_FOUND ON)
endif()
