#pragma once

#include "level/GameObject.h"

#include <osg/Geode>
#include <osg/ref_ptr>

class Ball;
class Board;
class Relief;
class ShaderProgram;

/// The floor of the world, ten units under the board: a thin dark square to look at and an endless
/// plane to hit. The ball has fallen exactly when it touches it.
class Ground : public GameObject
{
public:
    explicit Ground(Level& level);

    /// Catches the board's shadow from now on. Once, when all blocks of the board stand.
    void catchShadow(const Board& board, const Relief& relief);

    /// Costs a life. Inside the physics step; every report counts, there is no guard.
    void hitByBall(Ball* ball);

protected:
    ~Ground() override;

private:
    void createShader();

    osg::ref_ptr<osg::Geode> geode;
    osg::ref_ptr<ShaderProgram> shader;
};
