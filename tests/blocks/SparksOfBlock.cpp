#include "SparksOfBlock.h"

#include "level/Block.h"

#include <gtest/gtest.h>
#include <osg/BlendFunc>
#include <osg/Geode>
#include <osg/NodeVisitor>
#include <osg/StateSet>
#include <osgParticle/FluidFrictionOperator>
#include <osgParticle/ModularEmitter>
#include <osgParticle/ModularProgram>
#include <osgParticle/MultiSegmentPlacer>
#include <osgParticle/ParticleSystem>
#include <osgParticle/ParticleSystemUpdater>
#include <osgParticle/RadialShooter>
#include <osgParticle/RandomRateCounter>

#include <stdexcept>
#include <utility>

namespace {

/// The nodes below another, in the order in which a traversal meets them.
class Nodes : public osg::NodeVisitor
{
public:
    explicit Nodes(osg::Node* top) : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) { top->accept(*this); }

    void apply(osg::Node& node) override
    {
        found.push_back(&node);
        traverse(node);
    }

    /// The one node of this class, and its place.
    template <typename Kind>
    std::pair<const Kind*, std::size_t> only() const
    {
        std::pair<const Kind*, std::size_t> result(nullptr, 0);
        for (std::size_t i = 0; i < found.size(); ++i) {
            const auto* node = dynamic_cast<const Kind*>(found[i]);
            if (!node)
                continue;
            if (result.first)
                throw std::runtime_error("more than one part of a fountain of one kind");
            result = {node, i};
        }
        if (!result.first)
            throw std::runtime_error("a part of a fountain is missing");
        return result;
    }

private:
    std::vector<const osg::Node*> found;
};

void expectsRange(const osgParticle::rangef& range, float least, float most)
{
    EXPECT_FLOAT_EQ(range.minimum, least);
    EXPECT_FLOAT_EQ(range.maximum, most);
}

}  // namespace

SparksOfBlock::SparksOfBlock(const Block& block)
{
    const Nodes nodes(block.getTransform());
    const auto [foundSystem, placeOfSystem] = nodes.only<osgParticle::ParticleSystem>();
    const auto [updater, placeOfUpdater] = nodes.only<osgParticle::ParticleSystemUpdater>();
    const auto [foundMotion, placeOfMotion] = nodes.only<osgParticle::ModularProgram>();
    const auto [foundEmitter, placeOfEmitter] = nodes.only<osgParticle::ModularEmitter>();
    system = foundSystem;
    motion = foundMotion;
    emitter = foundEmitter;
    geode = system->getParent(0)->asGeode();

    EXPECT_LT(placeOfSystem, placeOfUpdater);
    EXPECT_LT(placeOfUpdater, placeOfMotion);
    EXPECT_LT(placeOfMotion, placeOfEmitter);
    EXPECT_TRUE(updater->containsParticleSystem(system));
    EXPECT_EQ(motion->getParticleSystem(), system);
    EXPECT_EQ(emitter->getParticleSystem(), system);
}

void SparksOfBlock::expectsCommonSettings() const
{
    const osgParticle::Particle& spark = system->getDefaultParticleTemplate();
    EXPECT_DOUBLE_EQ(spark.getLifeTime(), 1.0);
    EXPECT_FLOAT_EQ(spark.getMass(), 0.01f);

    // Light upon light, after what is solid.
    const osg::StateSet* state = system->getStateSet();
    ASSERT_TRUE(state);
    EXPECT_EQ(state->getRenderingHint(), int(osg::StateSet::TRANSPARENT_BIN));
    const auto* blend =
        dynamic_cast<const osg::BlendFunc*>(state->getAttribute(osg::StateAttribute::BLENDFUNC));
    ASSERT_TRUE(blend);
    EXPECT_EQ(blend->getSource(), GLenum(GL_SRC_ALPHA));
    EXPECT_EQ(blend->getDestination(), GLenum(GL_ONE));
    EXPECT_TRUE(state->getMode(GL_BLEND) & osg::StateAttribute::ON);

    ASSERT_TRUE(geode);
    EXPECT_EQ(geode->getNumDrawables(), 1u) << "the sparks have it to themselves";
    ASSERT_TRUE(geode->getStateSet());
    EXPECT_TRUE(geode->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM));

    const auto* shooter = dynamic_cast<const osgParticle::RadialShooter*>(emitter->getShooter());
    ASSERT_TRUE(shooter);
    const osg::ref_ptr<osgParticle::RadialShooter> untouched = new osgParticle::RadialShooter;
    expectsRange(shooter->getThetaRange(), 0.0f, 3.1415927f);
    expectsRange(shooter->getPhiRange(), untouched->getPhiRange().minimum,
                 untouched->getPhiRange().maximum);
    expectsRange(shooter->getInitialSpeedRange(), 1.0f, 2.0f);
    EXPECT_EQ(shooter->getInitialRotationalSpeedRange().minimum,
              untouched->getInitialRotationalSpeedRange().minimum);
    EXPECT_EQ(shooter->getInitialRotationalSpeedRange().maximum,
              untouched->getInitialRotationalSpeedRange().maximum);
}

void SparksOfBlock::expectsRate(float least, float most) const
{
    const auto* counter =
        dynamic_cast<const osgParticle::RandomRateCounter*>(emitter->getCounter());
    ASSERT_TRUE(counter);
    expectsRange(counter->getRateRange(), least, most);
}

void SparksOfBlock::expectsSource(const std::vector<osg::Vec3d>& corners) const
{
    const auto* placer = dynamic_cast<const osgParticle::MultiSegmentPlacer*>(emitter->getPlacer());
    ASSERT_TRUE(placer);
    ASSERT_EQ(placer->numVertices(), int(corners.size()));
    for (int i = 0; i < placer->numVertices(); ++i)
        EXPECT_NEAR((osg::Vec3d(placer->getVertex(i)) - corners[std::size_t(i)]).length(), 0.0,
                    1e-6)
            << i;
}

void SparksOfBlock::expectsWind(const osg::Vec3f& wind) const
{
    ASSERT_EQ(motion->numOperators(), 1);
    const auto* air =
        dynamic_cast<const osgParticle::FluidFrictionOperator*>(motion->getOperator(0));
    ASSERT_TRUE(air);
    EXPECT_EQ(air->getWind(), wind);
    const osg::ref_ptr<osgParticle::FluidFrictionOperator> plainAir =
        new osgParticle::FluidFrictionOperator;
    plainAir->setFluidToAir();
    EXPECT_EQ(air->getFluidDensity(), plainAir->getFluidDensity());
    EXPECT_EQ(air->getFluidViscosity(), plainAir->getFluidViscosity());
}
