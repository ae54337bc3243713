#include "platform/leap/GestureRecognizer.h"

#include "platform/leap/VectorMath.h"

#include <algorithm>

namespace Leap {

namespace {

constexpr int indexFinger = 1;
constexpr std::int64_t longestGap = 100000;  // us; after it, nobody knows how the finger moved
constexpr std::size_t samplesForSpeed = 3;
constexpr float forwardEnough = -0.5f;  // z of the finger's direction

const PointableData* indexFingerOf(const HandData& hand, const FrameData& frame)
{
    const auto found = std::find_if(
        frame.pointables.begin(), frame.pointables.end(), [&](const PointableData& pointable) {
            return pointable.handId == hand.id && pointable.finger == indexFinger &&
                   pointable.extended && !(pointable.tipPosition == Vector());
        });
    return found == frame.pointables.end() ? nullptr : &*found;
}

}  // namespace

void GestureRecognizer::recognize(FrameData& frame)
{
    for (auto entry = fingers.begin(); entry != fingers.end();) {
        const auto hand =
            std::find_if(frame.hands.begin(), frame.hands.end(),
                         [&](const HandData& data) { return data.id == entry->first; });
        if (hand == frame.hands.end() || !indexFingerOf(*hand, frame)) {
            lose(entry->second, frame);
            entry = fingers.erase(entry);
        } else {
            ++entry;
        }
    }
    for (const HandData& hand : frame.hands)
        if (const PointableData* pointable = indexFingerOf(hand, frame))
            follow(fingers[hand.id], hand, *pointable, frame);
}

void GestureRecognizer::reset()
{
    fingers.clear();
}

void GestureRecognizer::follow(Finger& finger, const HandData& hand, const PointableData& pointable,
                               FrameData& frame)
{
    auto& samples = finger.samples;
    if (!samples.empty()) {
        const std::int64_t passed = frame.timestamp - samples.back().time;
        if (passed <= 0)
            return;
        if (passed > longestGap)
            lose(finger, frame);
    }
    finger.pointable = pointable;
    TapTracker::Sample sample;
    sample.time = frame.timestamp;
    sample.tip = pointable.tipPosition;
    sample.palm = hand.palmPosition;
    sample.pointsForward = pointable.direction.z < forwardEnough;
    samples.push_back(sample);
    if (samples.size() < 2)
        return;
    if (samples.size() > samplesForSpeed)
        samples.pop_front();
    const auto seconds = float(sample.time - samples.front().time) * 1e-6f;
    sample.tipSpeed = length(sample.tip - samples.front().tip) / seconds;

    const bool wasCircling = finger.circle.isRunning();
    if (const auto circle = finger.circle.follow(sample.time, sample.tip, sample.tipSpeed)) {
        if (!wasCircling)
            finger.circleId = nextId++;
        report(finger, *circle, frame);
    }
    if (finger.circle.isRunning()) {
        finger.tap.forgetMovement();
    } else if (finger.tap.follow(sample)) {
        GestureData tap;
        tap.id = nextId++;
        tap.type = Gesture::TYPE_SCREEN_TAP;
        tap.state = Gesture::STATE_STOP;
        tap.progress = 1.0f;
        tap.pointable = Pointable(pointable.id, pointable.direction);
        frame.gestures.push_back(tap);
    }
}

void GestureRecognizer::lose(Finger& finger, FrameData& frame)
{
    if (const auto circle = finger.circle.lose())
        report(finger, *circle, frame);
    finger.tap.forgetMovement();
    finger.samples.clear();
}

void GestureRecognizer::report(Finger& finger, const CircleTracker::Report& circle,
                               FrameData& frame)
{
    GestureData gesture;
    gesture.id = finger.circleId;
    gesture.type = Gesture::TYPE_CIRCLE;
    gesture.state = circle.state;
    gesture.progress = circle.progress;
    gesture.normal = circle.normal;
    gesture.pointable = Pointable(finger.pointable.id, finger.pointable.direction);
    frame.gestures.push_back(gesture);
}

}  // namespace Leap
