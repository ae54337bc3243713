#pragma once

/// What a sensor frame means to the game just now.
enum class GameState : int {
    Initial = 0,         // only while the game is being built
    CameraControl = 1,   // two hands steer the camera
    WaitingForRest = 2,  // until the hand matches the board's pose
    Playing = 3,         // the hand tilts the board
    PauseMenu = 4,
    LevelCompleted = 5,  // the goal was reached; the end menu follows
    LevelFailed = 6,     // the lives ran out; the end menu follows
};
