#include "Rocking.h"

namespace {

constexpr float torque = 0.1f;   // rad/s a tick, that of a held key
constexpr int quarterSwing = 5;  // ticks

}  // namespace

osg::Vec3f rockingTorque(int tick)
{
    const int phase = tick % (4 * quarterSwing);
    const bool forth = phase < quarterSwing || phase >= 3 * quarterSwing;
    return osg::Vec3f(forth ? torque : -torque, 0.0f, 0.0f);
}
