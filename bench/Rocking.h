#pragma once

#include <osg/Vec3f>

/// The torque of a tick, in rad/s, as of a held key: the board is rocked about level, so that
/// everything stays awake and the ball where it is.
osg::Vec3f rockingTorque(int tick);
