#include "level/Ball.h"

#include "base/WorldNumbers.h"
#include "blocks/Ribbon.h"
#include "game/Rollix.h"
#include "level/BlockCheckpoint.h"
#include "level/Board.h"
#include "level/FilterGroups.h"
#include "level/Ground.h"
#include "level/Level.h"
#include "shaders/ShaderProgram.h"
#include "shaders/StageRecipes.h"

#include <osg/ShapeDrawable>

namespace {

constexpr float startHeight = 0.5f;  // of the centre over its checkpoint's top

const osg::Vec4f red(0.9f, 0.1f, 0.1f, 1.0f);
const osg::Vec3f ribbonColor(0.5f, 0.5f, 1.0f);
const osg::Vec3f atRest(0.0f, 0.0f, 0.0f);

}  // namespace

Ball::Ball(Level& owner)
    : GameObject(owner), geode(new osg::Geode), transform(new osg::MatrixTransform)
{
    createSphere();
    level->addChild(transform);
    game()->setActorTransform(id, transform);
    createShader();
    ribbon = new Ribbon(ribbonColor, transform, id, game(), level->board->getTransform());
    createActor();
    reset();
}

Ball::~Ball()
{
    transform->removeUpdateCallback(ribbon);
    shader = nullptr;
    ribbon = nullptr;
    transform = nullptr;
    geode = nullptr;
}

void Ball::createSphere()
{
    osg::ref_ptr<osg::ShapeDrawable> sphere =
        new osg::ShapeDrawable(new osg::Sphere(osg::Vec3f(), world::ballRadius));
    sphere->setColor(red);
    geode->addDrawable(sphere);
    transform->addChild(geode);
}

void Ball::createShader()
{
    shader = new ShaderProgram(transform);
    setOwnStages(*shader, "ball");
    transform->getOrCreateStateSet()->addUniform(new osg::Uniform("a_PortalActive", false),
                                                 osg::StateAttribute::ON);
}

void Ball::createActor()
{
    game()->createSphere(id, world::ballRadius, world::ballDensity, "holz",
                         PhysxScene::motionDynamic, ballGroup, ballMask);
    game()->setCcdEnabled(id, true);
    game()->setPose(id, transform->getMatrix());
}

void Ball::reset()
{
    const osg::ref_ptr<BlockCheckpoint> checkpoint = level->checkpoint;
    if (!checkpoint)
        return;
    game()->setPose(id, osg::Matrixd::translate(checkpoint->x, checkpoint->y,
                                                checkpoint->height + startHeight));
    game()->clearForce(id, PhysxScene::forceModeForce);
    game()->setLinearVelocity(id, atRest, true);
    game()->setAngularVelocity(id, atRest, true);
}

void Ball::hitGround(Ground* ground)
{
    ground->hitByBall(this);
}
