#pragma once

#include "platform/leap/Leap.h"

#include <cmath>

/// What this layer itself calculates with; the interface needs no arithmetic.
namespace Leap {

inline Vector operator+(const Vector& a, const Vector& b)
{
    return Vector(a.x + b.x, a.y + b.y, a.z + b.z);
}

inline Vector operator-(const Vector& a, const Vector& b)
{
    return Vector(a.x - b.x, a.y - b.y, a.z - b.z);
}

inline Vector operator*(const Vector& vector, float factor)
{
    return Vector(vector.x * factor, vector.y * factor, vector.z * factor);
}

inline Vector cross(const Vector& a, const Vector& b)
{
    return Vector(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}

inline float length(const Vector& vector)
{
    return std::sqrt(vector.magnitudeSquared());
}

/// The zero vector stays as it is.
inline Vector normalized(const Vector& vector)
{
    const float size = length(vector);
    return size > 0.0f ? vector * (1.0f / size) : vector;
}

}  // namespace Leap
