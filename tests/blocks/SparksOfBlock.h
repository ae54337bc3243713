#pragma once

#include <osg/Vec3d>
#include <osg/Vec3f>

#include <vector>

namespace osg {
class Geode;
}

namespace osgParticle {
class ModularEmitter;
class ModularProgram;
class ParticleSystem;
}  // namespace osgParticle

class Block;

/// The one fountain of sparks that hangs on a block, wherever it hangs there. Fails the test unless
/// its parts belong together and are served in their order.
class SparksOfBlock
{
public:
    explicit SparksOfBlock(const Block& block);

    /// What the fountains of all blocks have alike.
    void expectsCommonSettings() const;
    void expectsRate(float least, float most) const;
    /// The corners of the line on which sparks are born.
    void expectsSource(const std::vector<osg::Vec3d>& corners) const;
    void expectsWind(const osg::Vec3f& wind) const;

    const osgParticle::ParticleSystem* system = nullptr;

private:
    const osg::Geode* geode = nullptr;
    const osgParticle::ModularProgram* motion = nullptr;
    const osgParticle::ModularEmitter* emitter = nullptr;
};
