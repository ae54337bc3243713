#include "level/Ground.h"

#include "game/Rollix.h"
#include "level/BoardShadow.h"
#include "level/FilterGroups.h"
#include "level/Level.h"
#include "shaders/ShaderProgram.h"

#include <osg/ShapeDrawable>

namespace {

const osg::Vec3f center(0.0f, 0.0f, -10.0f);
const osg::Vec3f up(0.0f, 0.0f, 1.0f);
const osg::Vec3f drawnSize(30.0f, 30.0f, 0.1f);
const osg::Vec4f darkGrey(0.2f, 0.2f, 0.2f, 1.0f);
constexpr int behindAll = 2;  // bin: drawn after all that is solid, it costs only where it is seen

}  // namespace

Ground::Ground(Level& owner) : GameObject(owner), geode(new osg::Geode)
{
    osg::ref_ptr<osg::ShapeDrawable> square =
        new osg::ShapeDrawable(new osg::Box(center, drawnSize.x(), drawnSize.y(), drawnSize.z()));
    square->setColor(darkGrey);
    geode->addDrawable(square);
    // Its underside fills half the window for nothing.
    geode->getOrCreateStateSet()->setMode(GL_CULL_FACE, osg::StateAttribute::ON);
    createShader();
    level->addChild(geode);
    game()->createPlane(id, "holz", center, up, groundGroup, groundMask);
}

Ground::~Ground() = default;

void Ground::createShader()
{
    shader = new ShaderProgram(geode);
    game()->setSharedStages(*shader, "ground");
    geode->getOrCreateStateSet()->setRenderBinDetails(behindAll, "RenderBin");
}

void Ground::catchShadow(const Board& board, const Relief& relief)
{
    const osg::Image* const grain = game()->sharedTexture("data/Rollix/wood.png")->getImage();
    geode->setCullCallback(new BoardShadow(board, relief, grain, *geode->getOrCreateStateSet()));
}

void Ground::hitByBall(Ball*)
{
    level->changeLives(-1, true);
}
