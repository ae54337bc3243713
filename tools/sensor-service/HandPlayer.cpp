#include "HandPlayer.h"

#include <algorithm>

#include <cmath>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double restTime = 0.15;   // s, before and after each movement
constexpr double pokeTime = 0.1;    // s, one way
constexpr float pokeDepth = 30.0f;  // mm
constexpr double turnTime = 0.5;    // s
constexpr float radius = 30.0f;     // mm
constexpr double startProgress = 0.75;

}  // namespace

HandPlayer::HandPlayer(int framesPerSecond_) : framesPerSecond(framesPerSecond_) {}

void HandPlayer::tap()
{
    movements.append(Movement());
}

void HandPlayer::circle(double turns, bool clockwise)
{
    Movement movement;
    movement.type = PlayedGesture::Type::Circle;
    movement.turns = turns;
    movement.clockwise = clockwise;
    movements.append(movement);
}

PlayedFrame HandPlayer::nextFrame()
{
    ++frames;
    PlayedFrame frame;
    frame.id = frames;
    frame.timestamp = frames * 1000000 / framesPerSecond;
    frame.frameRate = framesPerSecond;
    if (!movements.isEmpty() && !hands.isEmpty()) {
        Movement& movement = movements.first();
        PlayedHand& hand = hands.first();
        if (!movement.started) {
            movement.started = true;
            ++gestures;
        }
        movement.time += 1.0 / framesPerSecond;
        const bool goesOn = movement.type == PlayedGesture::Type::Circle
                                ? moveCircle(movement, hand, frame)
                                : moveTap(movement, hand, frame);
        if (!goesOn) {
            hand.tipOffset = QVector3D();
            movements.removeFirst();
        }
    }
    frame.hands = hands;
    return frame;
}

bool HandPlayer::moveTap(Movement& movement, PlayedHand& hand, PlayedFrame& frame)
{
    const double before = movement.time - 1.0 / framesPerSecond - restTime;
    const double time = movement.time - restTime;
    const double depth = 1.0 - std::fabs(std::clamp(time, 0.0, 2.0 * pokeTime) / pokeTime - 1.0);
    hand.tipOffset = QVector3D(0.0f, 0.0f, -pokeDepth * static_cast<float>(depth));
    if (before < 2.0 * pokeTime && time >= 2.0 * pokeTime) {
        frame.gestures.append(report(movement, hand, "stop"));
    }
    return time < 2.0 * pokeTime + restTime;
}

bool HandPlayer::moveCircle(Movement& movement, PlayedHand& hand, PlayedFrame& frame)
{
    const double step = 1.0 / framesPerSecond / turnTime;
    const double turned = (movement.time - restTime) / turnTime;
    const double before = turned - step;
    const auto angle = static_cast<float>(2.0 * pi * std::clamp(turned, 0.0, movement.turns));
    const float sense = movement.clockwise ? 1.0f : -1.0f;
    hand.tipOffset = QVector3D(sense * std::sin(angle), std::cos(angle) - 1.0f, 0.0f) * radius;

    if (before < movement.turns && turned >= movement.turns) {
        if (movement.turns >= startProgress) {
            frame.gestures.append(report(movement, hand, "stop"));
        }
    } else if (turned >= startProgress && turned < movement.turns) {
        frame.gestures.append(report(movement, hand, before < startProgress ? "start" : "update"));
    }
    return turned < movement.turns + restTime / turnTime;
}

PlayedGesture HandPlayer::report(const Movement& movement, const PlayedHand& hand,
                                 const char* state) const
{
    PlayedGesture gesture;
    gesture.type = movement.type;
    gesture.id = gestures;
    gesture.state = state;
    gesture.handId = hand.id;
    gesture.duration = static_cast<qint64>((movement.time - restTime) * 1e6);
    gesture.place = hand.indexTip();
    if (movement.type == PlayedGesture::Type::Circle) {
        gesture.place -= hand.tipOffset + QVector3D(0.0f, radius, 0.0f);
        gesture.normal = QVector3D(0.0f, 0.0f, movement.clockwise ? -1.0f : 1.0f);
        gesture.progress = std::min((movement.time - restTime) / turnTime, movement.turns);
        gesture.radius = static_cast<double>(radius);
    }
    return gesture;
}
