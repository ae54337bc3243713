#pragma once

#include "FrameWriter.h"

#include <deque>
#include <vector>

/// Moves the first hand's index finger through the gestures asked for, frame by frame, and reports
/// them when a real service would. Its clock is the frames': nothing here looks at the time.
class HandPlayer
{
public:
    /// At a pace above 1 the finger goes so many times as fast as an unhurried one, which only a
    /// client that is told of the gestures can follow.
    explicit HandPlayer(int framesPerSecond, double pace = 1.0);

    std::vector<PlayedHand> hands;

    /// Rest, poke, back. What is asked for while another movement runs comes after it.
    void tap();
    /// Clockwise as the player sees it.
    void circle(double turns, bool clockwise);
    bool isMoving() const { return !movements.empty(); }
    bool isTapping() const;
    /// Gestures that are under way or wait for their turn.
    int movementCount() const { return static_cast<int>(movements.size()); }

    PlayedFrame nextFrame();

private:
    struct Movement
    {
        PlayedGesture::Type type = PlayedGesture::Type::ScreenTap;
        double turns = 0.0;
        bool clockwise = true;
        double time = 0.0;  // seconds of an unhurried finger since it began
        bool started = false;
    };

    bool moveTap(Movement& movement, PlayedHand& hand, PlayedFrame& frame);
    bool moveCircle(Movement& movement, PlayedHand& hand, PlayedFrame& frame);
    PlayedGesture report(const Movement& movement, const PlayedHand& hand, const char* state) const;

    double frameTime() const { return pace / framesPerSecond; }

    int framesPerSecond;
    double pace;
    qint64 frames = 0;
    int gestures = 0;
    std::deque<Movement> movements;
};
