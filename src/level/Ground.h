#pragma once

#include "level/GameObject.h"

#include <osg/Geode>
#include <osg/ref_ptr>

class Ball;

/// The floor of the world, ten units under the board: a thin dark square to look at and an endless
/// plane to hit. The ball has fallen exactly when it touches it.
class Ground : public GameObject
{
public:
    explicit Ground(Level& level);

    /// Costs a life. Inside the physics step; every report counts, there is no guard.
    void hitByBall(Ball* ball);

protected:
    ~Ground() override = default;

private:
    osg::ref_ptr<osg::Geode> geode;
};
