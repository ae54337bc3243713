#include "HandModel.h"

#include "PlayedHand.h"

namespace {

struct Finger
{
    float aside;  // of a right hand's knuckle, mm to the right of the palm's middle
    float knuckle;
    float reach;   // mm from the palm's middle to the tip
    float spread;  // mm that the tip is farther aside than the knuckle
};

// A grown-up's hand, fingers a little apart.
constexpr Finger fingers[fingerCount] = {
    {-30.0f, -25.0f, 35.0f, -38.0f}, {-25.0f, 28.0f, 108.0f, -8.0f}, {-2.0f, 32.0f, 122.0f, 0.0f},
    {18.0f, 28.0f, 112.0f, 7.0f},    {36.0f, 18.0f, 84.0f, 14.0f},
};

constexpr float wrist = -62.0f;
constexpr float shares[3] = {0.45f, 0.75f, 1.0f};  // where the bones beyond the knuckle end

}  // namespace

std::array<QVector3D, 5> fingerJoints(const PlayedHand& hand, int number)
{
    const Finger& finger = fingers[number];
    const float side = hand.isLeft ? -1.0f : 1.0f;
    const auto place = [&](float aside, float ahead) {
        return hand.palm + hand.orientation().rotatedVector(QVector3D(side * aside, 0.0f, -ahead));
    };
    std::array<QVector3D, 5> joints;
    joints[0] = place(0.4f * finger.aside, wrist);
    joints[1] = place(finger.aside, finger.knuckle);
    for (int bone = 0; bone < 3; ++bone) {
        joints[2 + bone] = place(finger.aside + shares[bone] * finger.spread,
                                 finger.knuckle + shares[bone] * (finger.reach - finger.knuckle));
    }
    if (number == indexFinger)
        for (int bone = 0; bone < 3; ++bone)
            joints[2 + bone] += hand.tipOffset * shares[bone];
    return joints;
}
