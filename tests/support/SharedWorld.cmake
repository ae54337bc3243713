# The part of the support that tests and benchmarks share: it knows no test framework.
include_guard(GLOBAL)

add_library(rollix_shared_world STATIC
    "${CMAKE_CURRENT_LIST_DIR}/LevelPicture.cpp" "${CMAKE_CURRENT_LIST_DIR}/LevelPicture.h"
    "${CMAKE_CURRENT_LIST_DIR}/SharedWorld.cpp" "${CMAKE_CURRENT_LIST_DIR}/SharedWorld.h"
)
target_include_directories(rollix_shared_world PUBLIC "${CMAKE_CURRENT_LIST_DIR}/..")
target_compile_definitions(rollix_shared_world PUBLIC ROLLIX_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
target_link_libraries(rollix_shared_world PUBLIC rollix_game_world rollix_level_map)
