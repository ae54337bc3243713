#include "HandMotion.h"

#include "HandPlayer.h"

#include <cmath>

namespace {

const QVector3D restingPalm(0.0f, 200.0f, 0.0f);  // mm
constexpr float besideTheOther = 110.0f;          // mm from the sensor's middle to either hand

constexpr float smoothing = 0.012f;  // s: what is left of a way after it is a third
constexpr float mostTurn = 0.157f;   // radians a frame, 9 degrees
constexpr float mostWay = 20.0f;     // mm a frame

constexpr float levelWithin = 0.035f;  // radians

// The board follows the palm within these times: near enough for the game to find the hand at rest,
// and altogether, from its utmost tilt, so that nothing moves it any more.
constexpr float timeToFollow = 0.15f;  // s
constexpr float timeToSettle = 0.6f;

constexpr int mostTaps = 2;

QVector3D approached(const QVector3D& from, const QVector3D& to, float share, float most)
{
    const QVector3D step = share * (to - from);
    const float length = step.length();
    return from + (length > most ? step * (most / length) : step);
}

}  // namespace

HandMotion::HandMotion(int framesPerSecond_)
    : framesPerSecond(framesPerSecond_),
      share(1.0f - std::exp(-1.0f / (float(framesPerSecond_) * smoothing)))
{
}

void HandMotion::tap()
{
    if (tapsToCome < mostTaps)
        ++tapsToCome;
}

float HandMotion::lift() const
{
    return secondHand ? palm.y() - restingPalm.y() : 0.0f;
}

void HandMotion::step(HandPlayer& player)
{
    const bool busy = tapsToCome > 0 || player.isMoving();
    if (!here && (wish.present || busy))
        come();
    if (!here) {
        player.hands.clear();
        return;
    }

    const bool keepsLevel =
        !wish.present || wish.secondHand || tapsToCome > 0 || player.isTapping();
    const QVector2D tilt = keepsLevel ? QVector2D() : wish.tilt;
    const bool twoWished = wish.present && wish.secondHand;
    secondHand = twoWished && (secondHand || isCalmFor(timeToSettle));
    QVector3D wantedPalm = restingPalm;
    if (twoWished)
        wantedPalm.setX(besideTheOther);
    if (secondHand)
        wantedPalm.setY(restingPalm.y() + wish.lift);
    moveTowards(QVector3D(-tilt.y(), secondHand ? wish.yaw : 0.0f, -tilt.x()), wantedPalm);

    if (tapsToCome > 0 && isCalmFor(timeToFollow)) {
        --tapsToCome;
        player.tap();
    }
    if (!wish.present && !busy && isCalmFor(timeToSettle))
        here = false;

    std::vector<PlayedHand> hands;
    if (here) {
        PlayedHand right;
        right.id = handNumber;
        right.palm = palm;
        right.pitch = pose.x();
        right.yaw = pose.y();
        right.roll = pose.z();
        // The finger's way through a gesture belongs to the player.
        if (!player.hands.empty())
            right.tipOffset = player.hands.front().tipOffset;
        hands.push_back(right);
        if (secondHand) {
            PlayedHand left = right;
            left.id = handNumber + 1;
            left.isLeft = true;
            left.palm.setX(-besideTheOther);
            left.tipOffset = QVector3D();
            hands.push_back(left);
        }
    }
    player.hands = hands;
}

void HandMotion::come()
{
    here = true;
    handNumber += 2;
    pose = QVector3D();
    palm = restingPalm;
    calmFrames = 0;
}

void HandMotion::moveTowards(const QVector3D& wantedPose, const QVector3D& wantedPalm)
{
    pose = approached(pose, wantedPose, share, mostTurn);
    palm = approached(palm, wantedPalm, share, mostWay);
    const bool level = std::hypot(pose.x(), pose.z()) < levelWithin;
    calmFrames = level ? calmFrames + 1 : 0;
}

bool HandMotion::isCalmFor(float seconds) const
{
    return float(calmFrames) >= seconds * float(framesPerSecond);
}
