#pragma once

#include "level/Block.h"
#include "level/BlockOptions.h"
#include "level/UniformAnimation.h"

#include <osg/Geode>

#include <memory>
#include <unordered_set>

class ShaderProgram;

/// Everything along the way of a run: the start cell, the flags that may or must be passed, and the
/// goal, told apart by the pixel's saturation.
class BlockCheckpoint : public Block
{
public:
    BlockCheckpoint(Level& level, float x, float y, int saturation, int value, BlockGroup& group);

    /// A flag pays and sinks at its first touch and is where the ball comes back to; the goal ends
    /// the level once all required flags have been passed.
    void onBallContact(Ball* ball) override;

    /// The flag stands again and can be passed anew.
    void reset() override;

    /// All living checkpoints; the goal asks them. World lock held.
    static std::unordered_set<BlockCheckpoint*> allCheckpoints;

protected:
    ~BlockCheckpoint() override;

private:
    void createFlag();
    void createFlagProgram();
    void createPole();
    void passFlag();
    void reachGoal();

    CheckpointType type = CheckpointType::Start;
    osg::ref_ptr<osg::Geode> flagGeode;
    osg::ref_ptr<ShaderProgram> flagShader;
    osg::ref_ptr<osg::Geode> poleGeode;
    std::unique_ptr<UniformAnimation<osg::Vec3f>> pose;  // null for the start cell, no flag
    bool required = false;
    bool passed = false;
    int coins = 10;
};
