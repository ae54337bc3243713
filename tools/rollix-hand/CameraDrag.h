#pragma once

#include <QVector2D>

/// Drags the game's camera by a pointer. The camera knows no positions, only hands that point aside
/// for as long as it is to turn; so this keeps the account of what the pointer has asked for and
/// the hands have not yet done.
class CameraDrag
{
public:
    /// Pixels, to the right and up.
    void drag(const QVector2D& pixels);
    void forget();

    /// What both hands are to do for what is still owed.
    float yaw() const;   // radians
    float lift() const;  // mm

    /// What both hands have done in a frame.
    void pay(float yaw, float lift);

private:
    float turn = 0.0f;  // radians owed
    float rise = 0.0f;  // world units owed
};
