#include "PointerHand.h"

namespace {

constexpr float tiltPerPixel = 0.43633231f / pointerReach;  // 25 degrees

}  // namespace

void PointerHand::take()
{
    *this = PointerHand();
    taken = true;
}

void PointerHand::letGo()
{
    *this = PointerHand();
}

void PointerHand::move(const QVector2D& pixels)
{
    if (secondHand) {
        camera.drag(pixels);
        return;
    }
    tilt += pixels * tiltPerPixel;
    if (tilt.length() > farthestTilt)
        tilt = farthestTilt * tilt.normalized();
}

void PointerHand::level()
{
    tilt = QVector2D();
}

void PointerHand::raiseSecondHand(bool up)
{
    secondHand = up;
    camera.forget();
    level();
}

HandWish PointerHand::wish() const
{
    HandWish wish;
    wish.present = taken;
    wish.tilt = tilt;
    wish.secondHand = secondHand;
    wish.yaw = camera.yaw();
    wish.lift = camera.lift();
    return wish;
}

void PointerHand::sent(float yaw, float lift)
{
    camera.pay(yaw, lift);
}
