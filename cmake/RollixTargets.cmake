# Flags that every target of our own carries; library headers are SYSTEM and stay out of it.
add_library(rollix_flags INTERFACE)
target_compile_options(rollix_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
# QMutex::Recursive and the like live on in Qt 5.15; what Qt 6 took away is not our concern here.
target_compile_definitions(rollix_flags INTERFACE QT_NO_DEPRECATED_WARNINGS)

if(ROLLIX_WERROR)
    target_compile_options(rollix_flags INTERFACE -Werror)
endif()
if(ROLLIX_SANITIZER)
    target_compile_options(rollix_flags INTERFACE
        -fsanitize=${ROLLIX_SANITIZER} -fno-omit-frame-pointer)
    target_link_options(rollix_flags INTERFACE -fsanitize=${ROLLIX_SANITIZER})
    if(ROLLIX_SANITIZER MATCHES "undefined")
        # PhysX, Qt and OpenSceneGraph are built without RTTI data for this check: vptr would
        # report their classes and not ours.
        target_compile_options(rollix_flags INTERFACE
            -fno-sanitize=vptr -fno-sanitize-recover=undefined)
    endif()
    if(ROLLIX_SANITIZER MATCHES "address")
        # Into each program itself: an archive's member is taken in only where a symbol is missing.
        target_sources(rollix_flags INTERFACE
            "$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:${CMAKE_CURRENT_LIST_DIR}/LeakChecks.cpp>")
    endif()
endif()
if(ROLLIX_COVERAGE)
    target_compile_options(rollix_flags INTERFACE --coverage)
    target_link_options(rollix_flags INTERFACE --coverage)
endif()

# The scene graph, as its find module tells it.
add_library(rollix_osg INTERFACE)
target_include_directories(rollix_osg SYSTEM INTERFACE ${OPENSCENEGRAPH_INCLUDE_DIRS})
target_link_libraries(rollix_osg INTERFACE ${OPENSCENEGRAPH_LIBRARIES})
