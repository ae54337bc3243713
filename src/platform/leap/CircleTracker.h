#pragma once

#include "platform/leap/FrameData.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Leap {

/// Finds circles in the path of one fingertip, for services that report none.
///
/// A circle is taken for one after three quarters of a turn in one sense, with a radius of 5 to 120
/// mm and a tolerable roundness; its progress counts from where it began. It ends when the tip
/// leaves it, rests or turns back.
class CircleTracker
{
public:
    struct Report
    {
        Gesture::State state = Gesture::STATE_INVALID;
        float progress = 0.0f;  // turns
        Vector normal;          // by the right-hand rule of the movement
    };

    /// Time in microseconds, greater than the one before; position in mm, speed in mm/s.
    std::optional<Report> follow(std::int64_t time, const Vector& tip, float speed);
    /// The finger is gone: what runs is over.
    std::optional<Report> lose();
    bool isRunning() const { return running; }

private:
    struct Point
    {
        std::int64_t time = 0;
        Vector position;
    };
    struct Fit
    {
        Vector centre;
        float radius = 0.0f;
    };

    void addToPath(std::int64_t time, const Vector& tip);
    std::optional<Report> begin();
    std::optional<Report> proceed(std::int64_t time, const Vector& tip, float speed);
    void followDrift();
    Report stop();
    std::optional<Fit> fitFrom(std::size_t first) const;
    float angleBetween(const Vector& from, const Vector& to) const;

    std::vector<Point> path;
    bool running = false;
    Vector normal;
    Fit circle;
    Vector lastTip;
    float turned = 0.0f;      // radians
    float turnedMost = 0.0f;  // radians, the last good value
    int framesOff = 0;
    std::int64_t slowSince = 0;
    bool slow = false;
};

}  // namespace Leap
