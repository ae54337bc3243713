#pragma once

#include <osg/Vec3f>
#include <osgGA/TrackballManipulator>

#include <atomic>

namespace Leap {
class Frame;
}

/// The view's camera: its eye goes round the board on a level circle about the world's vertical
/// axis and looks at one point. Two hands over the sensor turn and lift it; the mouse handling of
/// the base stays live until the next move brings the eye back.
///
/// The sensor's thread turns and lifts it while the main thread draws what it sees: a view that is
/// half the last one and half this one is made up for by the next frame.
class HandCamera : public osgGA::TrackballManipulator
{
public:
    HandCamera();

    /// World units over the board's plane. Each setter moves the camera at once, without easing.
    void setHeight(float height);
    /// The eye's azimuth in radians; 0 looks from positive y.
    void setAngle(float angle);
    /// The point looked at; the circle stays about the world's axis.
    void setCenter(const osg::Vec3f& center);
    /// The radius of the eye's circle in world units.
    void setDistance(float distance);

    /// Radians, unbounded: turns add up.
    float angle() const { return angle_; }

    void updateView();

    /// True when the frame shows two or more hands. They are rate controls: each frame adds to the
    /// angle what both hands point aside, and to the height what they are over or under 200 mm.
    /// Sensor thread, no lock.
    bool handleFrame(Leap::Frame frame);

protected:
    ~HandCamera() override = default;

private:
    std::atomic<float> height_{0.0f};
    std::atomic<float> angle_{0.0f};
    osg::Vec3f center_;
    float distance_ = 10.0f;
};
