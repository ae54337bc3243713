# The part of the support that tests and benchmarks share: it knows no test framework.
include_guard(GLOBAL)

# Pictures alone need no game.
add_library(rollix_level_picture STATIC
    "${CMAKE_CURRENT_LIST_DIR}/LevelPicture.cpp" "${CMAKE_CURRENT_LIST_DIR}/LevelPicture.h"
)
target_include_directories(rollix_level_picture PUBLIC "${CMAKE_CURRENT_LIST_DIR}/..")
target_compile_definitions(rollix_level_picture PUBLIC ROLLIX_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
target_link_libraries(rollix_level_picture PUBLIC rollix_level_map)

add_library(rollix_shared_world STATIC
    "${CMAKE_CURRENT_LIST_DIR}/SharedWorld.cpp" "${CMAKE_CURRENT_LIST_DIR}/SharedWorld.h"
)
target_link_libraries(rollix_shared_world PUBLIC rollix_level_picture rollix_game_world)
