#include "PlayedHand.h"

#include "HandModel.h"

#include <QtMath>

QQuaternion PlayedHand::orientation() const
{
    const auto turn = [](float x, float y, float z, float angle) {
        return QQuaternion::fromAxisAndAngle(x, y, z, qRadiansToDegrees(angle));
    };
    return turn(0, 1, 0, -yaw) * turn(1, 0, 0, pitch) * turn(0, 0, 1, roll);
}

QVector3D PlayedHand::normal() const
{
    return orientation().rotatedVector({0, -1, 0});
}

QVector3D PlayedHand::direction() const
{
    return orientation().rotatedVector({0, 0, -1});
}

QVector3D PlayedHand::indexTip() const
{
    return fingerJoints(*this, indexFinger).back();
}
