# The part of the support that tests and benchmarks share: it knows no test framework.
include_guard(GLOBAL)

add_library(rollix_game_world STATIC
    "${CMAKE_CURRENT_LIST_DIR}/GameWorld.cpp" "${CMAKE_CURRENT_LIST_DIR}/GameWorld.h"
    "${CMAKE_CURRENT_LIST_DIR}/LevelPicture.cpp" "${CMAKE_CURRENT_LIST_DIR}/LevelPicture.h"
)
target_include_directories(rollix_game_world PUBLIC "${CMAKE_CURRENT_LIST_DIR}/..")
target_compile_definitions(rollix_game_world PUBLIC ROLLIX_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
target_link_libraries(rollix_game_world PUBLIC rollix_core)
