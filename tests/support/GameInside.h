#pragma once

#include "game/Rollix.h"

#include <osg/MatrixTransform>

/// What the game keeps to itself. A class that derives from another may name its protected members;
/// no object of this one is ever made.
class GameInside : private Rollix
{
public:
    static auto& actorsOf(Rollix& game) { return game.*&GameInside::actors; }
    static auto& jointsOf(Rollix& game) { return game.*&GameInside::joints; }
    static auto& materialsOf(Rollix& game) { return game.*&GameInside::materials; }
    static auto& transformsOf(Rollix& game) { return game.*&GameInside::actorTransforms; }
    static auto& tasksOf(Rollix& game) { return game.*&GameInside::tasks; }
    static auto& soundsOf(Rollix& game) { return game.*&GameInside::sounds; }

    static physx::PxRigidDynamic& bodyOf(Rollix& game, unsigned int id)
    {
        return *actorsOf(game).at(id)->is<physx::PxRigidDynamic>();
    }
};
