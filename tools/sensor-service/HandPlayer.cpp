#include "HandPlayer.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double restTime = 0.25;   // s, before and after each movement
constexpr double returnTime = 0.2;  // s, from where a circle ended to where it began
constexpr double pokeTime = 0.1;    // s, one way
constexpr float pokeDepth = 30.0f;  // mm
constexpr double turnTime = 0.5;    // s
constexpr float radius = 30.0f;     // mm
constexpr double startProgress = 0.75;

}  // namespace

HandPlayer::HandPlayer(int framesPerSecond_, double pace_)
    : framesPerSecond(framesPerSecond_), pace(pace_)
{
}

void HandPlayer::tap()
{
    movements.push_back(Movement());
}

void HandPlayer::circle(double turns, bool clockwise)
{
    Movement movement;
    movement.type = PlayedGesture::Type::Circle;
    movement.turns = turns;
    movement.clockwise = clockwise;
    movements.push_back(movement);
}

bool HandPlayer::isTapping() const
{
    return std::any_of(
        movements.begin(), movements.end(),
        [](const Movement& movement) { return movement.type == PlayedGesture::Type::ScreenTap; });
}

PlayedFrame HandPlayer::nextFrame()
{
    ++frames;
    PlayedFrame frame;
    frame.id = frames;
    frame.timestamp = frames * 1000000 / framesPerSecond;
    frame.frameRate = framesPerSecond;
    if (!movements.empty() && !hands.empty()) {
        Movement& movement = movements.front();
        PlayedHand& hand = hands.front();
        if (!movement.started) {
            movement.started = true;
            ++gestures;
        }
        movement.time += frameTime();
        const bool goesOn = movement.type == PlayedGesture::Type::Circle
                                ? moveCircle(movement, hand, frame)
                                : moveTap(movement, hand, frame);
        if (!goesOn) {
            hand.tipOffset = QVector3D();
            movements.pop_front();
        }
    }
    frame.hands = hands;
    return frame;
}

bool HandPlayer::moveTap(Movement& movement, PlayedHand& hand, PlayedFrame& frame)
{
    const double before = movement.time - frameTime() - restTime;
    const double time = movement.time - restTime;
    const double depth = 1.0 - std::fabs(std::clamp(time, 0.0, 2.0 * pokeTime) / pokeTime - 1.0);
    hand.tipOffset = QVector3D(0.0f, 0.0f, -pokeDepth * float(depth));
    if (before < 2.0 * pokeTime && time >= 2.0 * pokeTime)
        frame.gestures.push_back(report(movement, hand, "stop"));
    return time < 2.0 * pokeTime + restTime;
}

bool HandPlayer::moveCircle(Movement& movement, PlayedHand& hand, PlayedFrame& frame)
{
    const double step = frameTime() / turnTime;
    const double turned = (movement.time - restTime) / turnTime;
    const double before = turned - step;
    const auto angle = float(2.0 * pi * std::clamp(turned, 0.0, movement.turns));
    const float sense = movement.clockwise ? 1.0f : -1.0f;
    const double back = movement.time - restTime - movement.turns * turnTime -
                        restTime;  // s since the way back began
    const auto away = float(1.0 - std::clamp(back / returnTime, 0.0, 1.0));
    hand.tipOffset =
        QVector3D(sense * std::sin(angle), std::cos(angle) - 1.0f, 0.0f) * radius * away;

    if (before < movement.turns && turned >= movement.turns) {
        if (movement.turns >= startProgress)
            frame.gestures.push_back(report(movement, hand, "stop"));
    } else if (turned >= startProgress && turned < movement.turns) {
        frame.gestures.push_back(
            report(movement, hand, before < startProgress ? "start" : "update"));
    }
    return back < returnTime;
}

PlayedGesture HandPlayer::report(const Movement& movement, const PlayedHand& hand,
                                 const char* state) const
{
    PlayedGesture gesture;
    gesture.type = movement.type;
    gesture.id = gestures;
    gesture.state = state;
    gesture.handId = hand.id;
    gesture.duration = qint64((movement.time - restTime) / pace * 1e6);
    gesture.place = hand.indexTip();
    if (movement.type == PlayedGesture::Type::Circle) {
        gesture.place -= hand.tipOffset + QVector3D(0.0f, radius, 0.0f);
        gesture.normal = QVector3D(0.0f, 0.0f, movement.clockwise ? -1.0f : 1.0f);
        gesture.progress = std::min((movement.time - restTime) / turnTime, movement.turns);
        gesture.radius = double(radius);
    }
    return gesture;
}
