#include "hand/HandCamera.h"

#include <Leap.h>

#include <cmath>

namespace {

constexpr float turnPerYaw = 0.016666668f;      // 1/60 of the hands' joint yaw a frame
constexpr float leastTurn = 0.01f;              // radians a frame
constexpr float neutralHeightSum = 400.0f;      // mm, of both palms together
constexpr float risePerHeight = 0.0033333334f;  // world units a mm, 1/300
constexpr float leastRise = 0.2f;               // world units a frame

// Radians in the sensor's level plane; 0 points straight away from the player.
float yawOf(const Leap::Hand& hand)
{
    const Leap::Vector direction = hand.direction();
    return std::atan2(direction.x, -direction.z);
}

}  // namespace

HandCamera::HandCamera() : osgGA::TrackballManipulator(UPDATE_MODEL_SIZE | PROCESS_MOUSE_WHEEL) {}

void HandCamera::setHeight(float height)
{
    height_ = height;
    updateView();
}

void HandCamera::setAngle(float angle)
{
    angle_ = angle;
    updateView();
}

void HandCamera::setCenter(const osg::Vec3f& center)
{
    center_ = center;
    updateView();
}

void HandCamera::setDistance(float distance)
{
    distance_ = distance;
    updateView();
}

void HandCamera::updateView()
{
    const osg::Vec3f eye(std::sin(angle_) * distance_, std::cos(angle_) * distance_, height_);
    setHomePosition(eye, center_, osg::Vec3d(0.0, 0.0, 1.0), false);
    home(0.0);
}

bool HandCamera::handleFrame(Leap::Frame frame)
{
    const Leap::HandList hands = frame.hands();
    if (!(hands.count() > 1))
        return false;
    const Leap::Hand first = hands[0];
    const Leap::Hand second = hands[1];

    const float turn = (yawOf(first) + yawOf(second)) * turnPerYaw;
    if (std::fabs(turn) > leastTurn) {
        angle_ += turn;
        updateView();
    }

    const float heightSum = first.palmPosition().y + second.palmPosition().y;
    const float rise = (heightSum - neutralHeightSum) * risePerHeight;
    if (std::fabs(rise) > leastRise) {
        height_ += rise;
        updateView();
    }
    return true;
}
