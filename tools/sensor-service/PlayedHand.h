#pragma once

#include <QQuaternion>
#include <QVector3D>

/// A hand as a player would hold it over the sensor, in the sensor's axes: x to the right, y up, z
/// towards the player; millimetres and radians.
struct PlayedHand
{
    int id = 1;
    bool isLeft = false;
    QVector3D palm{0.0f, 200.0f, 0.0f};
    float pitch = 0.0f;  // above 0: fingertips up
    float yaw = 0.0f;    // above 0: fingers to the right
    float roll = 0.0f;   // above 0: right edge up
    /// Where the index fingertip is off its place, in the sensor's axes.
    QVector3D tipOffset;

    QQuaternion orientation() const;
    QVector3D normal() const;
    QVector3D direction() const;
    QVector3D indexTip() const;
};
