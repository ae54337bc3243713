#include "level/Decoration.h"

#include "game/Rollix.h"
#include "shaders/StageRecipes.h"

#include <osg/BlendFunc>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Group>
#include <osg/PolygonOffset>
#include <osg/observer_ptr>
#include <osgParticle/FluidFrictionOperator>
#include <osgParticle/ModularEmitter>
#include <osgParticle/ModularProgram>
#include <osgParticle/MultiSegmentPlacer>
#include <osgParticle/ParticleSystem>
#include <osgParticle/ParticleSystemUpdater>
#include <osgParticle/RadialShooter>
#include <osgParticle/RandomRateCounter>

#include <map>
#include <utility>

namespace {

constexpr int inlayBin = 1;  // wood is drawn in bin 0, translucent things in bin 10

constexpr double lifeSeconds = 1.0;
constexpr float mass = 0.01f;
constexpr float halfTurn = 3.1415927f;  // sparks fly to all sides
constexpr float slowestSpark = 1.0f;    // units a second
constexpr float fastestSpark = 2.0f;

osg::ref_ptr<osgParticle::ParticleSystem> createSystem(const Sparks& sparks)
{
    osg::ref_ptr<osgParticle::ParticleSystem> system = new osgParticle::ParticleSystem;
    osg::StateSet* stateSet = system->getOrCreateStateSet();
    stateSet->setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
    stateSet->setAttributeAndModes(new osg::BlendFunc(GL_SRC_ALPHA, GL_ONE),
                                   osg::StateAttribute::ON);
    osgParticle::Particle& spark = system->getDefaultParticleTemplate();
    spark.setShape(sparks.shape);
    spark.setSizeRange(sparks.size);
    spark.setLifeTime(lifeSeconds);
    spark.setMass(mass);
    spark.setColorRange(sparks.color);
    return system;
}

osg::ref_ptr<osgParticle::ModularProgram> createMotion(osgParticle::ParticleSystem* system,
                                                       const osg::Vec3f& wind)
{
    osg::ref_ptr<osgParticle::FluidFrictionOperator> air = new osgParticle::FluidFrictionOperator;
    air->setFluidToAir();
    air->setWind(wind);
    osg::ref_ptr<osgParticle::ModularProgram> motion = new osgParticle::ModularProgram;
    motion->setParticleSystem(system);
    motion->addOperator(air);
    return motion;
}

osg::ref_ptr<osgParticle::ModularEmitter> createEmitter(osgParticle::ParticleSystem* system,
                                                        const Sparks& sparks)
{
    osg::ref_ptr<osgParticle::RandomRateCounter> counter = new osgParticle::RandomRateCounter;
    counter->setRateRange(sparks.rate);
    osg::ref_ptr<osgParticle::MultiSegmentPlacer> placer = new osgParticle::MultiSegmentPlacer;
    for (const osg::Vec3f& corner : sparks.source)
        placer->addVertex(corner);
    osg::ref_ptr<osgParticle::RadialShooter> shooter = new osgParticle::RadialShooter;
    shooter->setThetaRange(0.0f, halfTurn);
    shooter->setInitialSpeedRange(slowestSpark, fastestSpark);

    osg::ref_ptr<osgParticle::ModularEmitter> emitter = new osgParticle::ModularEmitter;
    emitter->setParticleSystem(system);
    emitter->setCounter(counter);
    emitter->setPlacer(placer);
    emitter->setShooter(shooter);
    return emitter;
}

}  // namespace

osg::ref_ptr<ShaderProgram> addProgram(osg::Node* node, const std::string& programName,
                                       Rollix* game)
{
    // By stages; a program that lives keeps its stages, so that no other can have their addresses.
    using Stages = std::pair<ShaderProgram::Shader*, ShaderProgram::Shader*>;
    static std::map<Stages, osg::observer_ptr<ShaderProgram>> programs;
    const ProgramRecipe& recipe = programRecipe(programName);
    osg::observer_ptr<ShaderProgram>& known = programs[{game->sharedShader(recipe.vertexStage),
                                                        game->sharedShader(recipe.fragmentStage)}];
    osg::ref_ptr<ShaderProgram> shared;
    if (known.lock(shared))
        return new ShaderProgram(node, shared);
    shared = new ShaderProgram(node);
    game->setSharedStages(*shared, programName);
    known = shared;
    return shared;
}

osg::ref_ptr<ShaderProgram> addInlay(osg::Group* parent, InlayKind kind,
                                     const CornerHeights& corners, const osg::Vec3f& direction,
                                     Rollix* game)
{
    osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
    osg::ref_ptr<osg::Vec2Array> places = new osg::Vec2Array;
    for (const osg::Vec2f& place : {osg::Vec2f(-0.5f, -0.5f), osg::Vec2f(0.5f, -0.5f),
                                    osg::Vec2f(0.5f, 0.5f), osg::Vec2f(-0.5f, 0.5f)}) {
        places->push_back(place);
        const float height = corners.at(place.x() + 0.5f, place.y() + 0.5f);
        vertices->push_back(osg::Vec3f(place.x(), place.y(), height));
    }
    osg::ref_ptr<osg::Vec3Array> normal = new osg::Vec3Array;
    normal->push_back(((*vertices)[1] - (*vertices)[0]) ^ ((*vertices)[3] - (*vertices)[0]));
    osg::ref_ptr<osg::Geometry> picture = new osg::Geometry;
    picture->setVertexArray(vertices);
    picture->setNormalArray(normal, osg::Array::BIND_OVERALL);
    picture->setTexCoordArray(0, places, osg::Array::BIND_PER_VERTEX);
    picture->addPrimitiveSet(new osg::DrawArrays(GL_QUADS, 0, GLsizei(vertices->size())));

    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(picture);
    osg::StateSet* stateSet = geode->getOrCreateStateSet();
    stateSet->addUniform(new osg::Uniform("a_InlayKind", int(kind)));
    stateSet->addUniform(new osg::Uniform("a_InlayDirection", direction));
    stateSet->setMode(GL_BLEND, osg::StateAttribute::ON);
    // Over the wood that it lies in, before all that is translucent.
    stateSet->setAttributeAndModes(new osg::PolygonOffset(-1.0f, -1.0f), osg::StateAttribute::ON);
    stateSet->setRenderBinDetails(inlayBin, "RenderBin");
    parent->addChild(geode);
    return addProgram(geode, "inlay", game);
}

osg::ref_ptr<ShaderProgram> addSparks(osg::Group* parent, const Sparks& sparks, Rollix* game)
{
    const osg::ref_ptr<osgParticle::ParticleSystem> system = createSystem(sparks);
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(system);
    osg::ref_ptr<ShaderProgram> program = addProgram(geode, "standard", game);
    osg::ref_ptr<osgParticle::ParticleSystemUpdater> updater =
        new osgParticle::ParticleSystemUpdater;
    updater->addParticleSystem(system);

    parent->addChild(geode);
    parent->addChild(updater);
    parent->addChild(createMotion(system, sparks.wind));
    parent->addChild(createEmitter(system, sparks));
    return program;
}
