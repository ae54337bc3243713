#pragma once

#include <QVector3D>

#include <array>

struct PlayedHand;

constexpr int fingerCount = 5;
constexpr int indexFinger = 1;

/// The five joints of a finger from wrist to bone end, in the sensor's axes; finger 0 is the thumb.
std::array<QVector3D, 5> fingerJoints(const PlayedHand& hand, int finger);
