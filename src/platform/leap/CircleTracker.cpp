#include "platform/leap/CircleTracker.h"

#include "platform/leap/VectorMath.h"

#include <algorithm>
#include <cmath>

namespace Leap {

namespace {

constexpr float pi = 3.14159265f;
constexpr float leastArc = 1.5f * pi;
// The directions of motion turn a little ahead of the places that they lead to.
constexpr float arcTolerance = 0.9f;
constexpr float leastRadius = 5.0f;       // mm
constexpr float greatestRadius = 120.0f;  // mm
constexpr float greatestSpread = 0.35f;   // of the radius
constexpr float greatestReversal = 0.25f * pi;

// A quarter of a turn between two frames is no drawing any more.
constexpr float greatestStep = 0.5f * pi;
constexpr float offCircleShare = 0.5f;   // of the radius
constexpr float offCircleLeast = 10.0f;  // mm
constexpr int framesOffToStop = 3;
constexpr float slowSpeed = 30.0f;         // mm/s
constexpr std::int64_t slowTime = 150000;  // us

// The path is kept by distance, not by time: a finger that rests adds noise, not turns.
constexpr float pathStep = 2.0f;  // mm
constexpr std::size_t longestPath = 512;
constexpr std::int64_t longestPathTime = 2000000;  // us

}  // namespace

std::optional<CircleTracker::Report> CircleTracker::follow(std::int64_t time, const Vector& tip,
                                                           float speed)
{
    addToPath(time, tip);
    const auto report = running ? proceed(time, tip, speed) : begin();
    lastTip = tip;
    return report;
}

std::optional<CircleTracker::Report> CircleTracker::lose()
{
    const bool wasRunning = running;
    const Report report = stop();
    return wasRunning ? std::optional<Report>(report) : std::nullopt;
}

void CircleTracker::addToPath(std::int64_t time, const Vector& tip)
{
    if (path.empty() || length(tip - path.back().position) >= pathStep)
        path.push_back({time, tip});
    std::size_t old = path.size() > longestPath ? path.size() - longestPath : 0;
    while (old < path.size() && time - path[old].time > longestPathTime)
        ++old;
    path.erase(path.begin(), path.begin() + std::ptrdiff_t(old));
}

// Goes back along the path, adding up how it turns, until there are three quarters of a turn.
std::optional<CircleTracker::Report> CircleTracker::begin()
{
    Vector turn;
    float largest = 0.0f;
    for (std::size_t i = path.size(); i >= 3; --i) {
        const Vector later = normalized(path[i - 1].position - path[i - 2].position);
        const Vector earlier = normalized(path[i - 2].position - path[i - 3].position);
        const Vector axis = cross(earlier, later);
        turn = turn + normalized(axis) * std::atan2(length(axis), earlier.dot(later));
        const float arc = length(turn);
        largest = std::max(largest, arc);
        if (largest - arc > greatestReversal)
            return std::nullopt;
        if (arc < leastArc)
            continue;
        normal = normalized(turn);
        const auto fit = fitFrom(i - 3);
        if (!fit)
            return std::nullopt;
        circle = *fit;
        turned = 0.0f;
        for (std::size_t k = i - 2; k < path.size(); ++k)
            turned += angleBetween(path[k - 1].position, path[k].position);
        if (turned < arcTolerance * leastArc)
            return std::nullopt;
        turnedMost = turned;
        running = true;
        framesOff = 0;
        slow = false;
        return Report{Gesture::STATE_START, turnedMost / (2.0f * pi), normal};
    }
    return std::nullopt;
}

std::optional<CircleTracker::Report> CircleTracker::proceed(std::int64_t time, const Vector& tip,
                                                            float speed)
{
    const Vector fromCentre = tip - circle.centre;
    const float error = std::fabs(length(fromCentre) - circle.radius);
    framesOff =
        error > std::max(offCircleShare * circle.radius, offCircleLeast) ? framesOff + 1 : 0;
    if (speed >= slowSpeed) {
        slow = false;
    } else if (!slow) {
        slow = true;
        slowSince = time;
    }
    const float step = angleBetween(lastTip, tip);
    const bool jumped = std::fabs(step) > greatestStep;
    if (framesOff == 0 && !jumped) {
        followDrift();
        turned += step;
        turnedMost = std::max(turnedMost, turned);
    }
    if (jumped || framesOff >= framesOffToStop || (slow && time - slowSince >= slowTime) ||
        turnedMost - turned > greatestReversal)
        return stop();
    return Report{Gesture::STATE_UPDATE, turnedMost / (2.0f * pi), normal};
}

// Nobody draws two turns about the same centre: the last turn's is the one that counts.
void CircleTracker::followDrift()
{
    float arc = 0.0f;
    std::size_t first = path.size() - 1;
    while (first > 0 && arc < 2.0f * pi) {
        arc += angleBetween(path[first - 1].position, path[first].position);
        --first;
    }
    if (arc >= arcTolerance * leastArc)
        circle = fitFrom(first).value_or(circle);
}

CircleTracker::Report CircleTracker::stop()
{
    const Report report{Gesture::STATE_STOP, turnedMost / (2.0f * pi), normal};
    *this = CircleTracker();
    return report;
}

// The circle of least algebraic error (Kasa's method) through the path from its point first on, in
// the plane of normal; none when it is too small, too large or too little round.
std::optional<CircleTracker::Fit> CircleTracker::fitFrom(std::size_t first) const
{
    const auto count = float(path.size() - first);
    Vector mean;
    for (std::size_t i = first; i < path.size(); ++i)
        mean = mean + path[i].position * (1.0f / count);
    const Vector aside = std::fabs(normal.x) < 0.7f ? Vector(1, 0, 0) : Vector(0, 1, 0);
    const Vector uAxis = normalized(cross(normal, aside));
    const Vector vAxis = cross(normal, uAxis);

    double uu = 0, uv = 0, vv = 0, uuu = 0, uvv = 0, vvv = 0, vuu = 0;
    for (std::size_t i = first; i < path.size(); ++i) {
        const Vector offset = path[i].position - mean;
        const double u = offset.dot(uAxis);
        const double v = offset.dot(vAxis);
        uu += u * u;
        uv += u * v;
        vv += v * v;
        uuu += u * u * u;
        uvv += u * v * v;
        vvv += v * v * v;
        vuu += v * u * u;
    }
    const double determinant = uu * vv - uv * uv;
    if (!(std::fabs(determinant) > 1e-6 * uu * vv))
        return std::nullopt;
    const double uSide = 0.5 * (uuu + uvv);
    const double vSide = 0.5 * (vvv + vuu);
    const auto u = float((uSide * vv - vSide * uv) / determinant);
    const auto v = float((vSide * uu - uSide * uv) / determinant);

    Fit fit;
    fit.centre = mean + uAxis * u + vAxis * v;
    for (std::size_t i = first; i < path.size(); ++i)
        fit.radius += length(path[i].position - fit.centre) / count;
    float variance = 0.0f;
    for (std::size_t i = first; i < path.size(); ++i) {
        const float error = length(path[i].position - fit.centre) - fit.radius;
        const float height = (path[i].position - fit.centre).dot(normal);
        variance += (error * error + height * height) / count;
    }
    const bool isCircle = fit.radius >= leastRadius && fit.radius <= greatestRadius &&
                          std::sqrt(variance) <= greatestSpread * fit.radius;
    return isCircle ? std::optional<Fit>(fit) : std::nullopt;
}

// Signed radians about the circle's axis.
float CircleTracker::angleBetween(const Vector& from, const Vector& to) const
{
    const Vector a = from - circle.centre;
    const Vector b = to - circle.centre;
    const Vector flatA = a - normal * a.dot(normal);
    const Vector flatB = b - normal * b.dot(normal);
    return std::atan2(cross(flatA, flatB).dot(normal), flatA.dot(flatB));
}

}  // namespace Leap
