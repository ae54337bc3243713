#pragma once

#include <osg/Vec3d>

namespace Leap {
class Listener;
}

/// Hands the listener one frame of the sensor, on this thread: a hand that asks for a board whose
/// upper side looks along `up` (world, unit length). It goes the way of every frame from the place
/// on where the service's messages have been read.
void showHand(Leap::Listener& listener, const osg::Vec3d& up, long long frameId);
