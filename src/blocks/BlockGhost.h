#pragma once

#include "level/Block.h"
#include "level/BlockOptions.h"

#include <osg/Uniform>

#include <functional>

/// A block that is either solid and visible or open and faded out. It changes on a rhythm of its
/// own, at the signals of buttons, or both. The way is open or shut from the next physics step on;
/// the picture follows by a fade, which the shader draws alone.
class BlockGhost : public Block
{
public:
    BlockGhost(Level& level, float x, float y, int saturation, int value, BlockGroup& group);

    /// Changes the state, whoever signals. Also the rhythm's turn.
    void onSignal(Block* source) override;

    /// Back to the state of the level's start; the rhythm goes on in its phase.
    void reset() override;

    bool isRestless() const override;
    float presence() const override;

protected:
    ~BlockGhost() override;

private:
    void startRhythm();
    void shareProgram();
    void createUniforms();
    void setOpaque(bool opaque);

    const GhostOption option;
    bool opaque = true;
    std::function<void()> toggleTask;
    osg::ref_ptr<osg::Uniform> opaqueStart;
    osg::ref_ptr<osg::Uniform> opaqueEnd;
    osg::ref_ptr<osg::Uniform> opaqueUniform;
};
