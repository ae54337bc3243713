#include "blocks/BlockGhost.h"

#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Board.h"
#include "level/Level.h"
#include "shaders/ShaderProgram.h"

namespace {

constexpr float fadeSeconds = 0.5f;

}  // namespace

BlockGhost::BlockGhost(Level& owner, float cellX, float cellY, int saturation, int value,
                       BlockGroup& linkGroup)
    : Block(owner, cellX, cellY, saturation, value, linkGroup, true, "Ghost"),
      option(GhostOption::ofSaturation(saturation))
{
    fixToBoard();
    startRhythm();
    shareProgram();
    createUniforms();
    setOpaque(option.initiallyOpaque);
}

BlockGhost::~BlockGhost()
{
    // Without a rhythm this finds nothing to remove.
    GameLoop::removeIntervalTask(&toggleTask, option.period);
}

void BlockGhost::startRhythm()
{
    if (option.period == 0.0)
        return;
    toggleTask = [this] {
        onSignal(nullptr);
    };
    GameLoop::addIntervalTask(&toggleTask, option.period);
}

/// All ghosts of a level are drawn by one program, in one transparent bin.
void BlockGhost::shareProgram()
{
    ShaderProgram::ShaderGroup* ghosts = level->board->shaderGroup("Ghost");
    if (ghosts->shaderProgram)
        return;
    osg::ref_ptr<ShaderProgram> program = new ShaderProgram(ghosts);
    game()->setSharedStages(*program, "ghost");
    osg::StateSet* stateSet = ghosts->getOrCreateStateSet();
    stateSet->setMode(GL_BLEND, osg::StateAttribute::ON);
    stateSet->setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
    ghosts->shaderProgram = program;
}

void BlockGhost::createUniforms()
{
    opaqueUniform = new osg::Uniform("a_Opaque", true);
    opaqueStart = new osg::Uniform("a_OpaqueStart", 0.0f);
    opaqueEnd = new osg::Uniform("a_OpaqueEnd", 0.0f);
    osg::StateSet* stateSet = transform->getOrCreateStateSet();
    for (const osg::ref_ptr<osg::Uniform>& uniform : {opaqueUniform, opaqueStart, opaqueEnd})
        stateSet->addUniform(uniform);
}

void BlockGhost::setOpaque(bool solid)
{
    opaque = solid;
    game()->setCollisionEnabled(id, opaque);
    const float now = frameTime();
    opaqueUniform->set(opaque);
    opaqueStart->set(now);
    opaqueEnd->set(now + fadeSeconds);
}

bool BlockGhost::isRestless() const
{
    return true;
}

float BlockGhost::presence() const
{
    float start = 0.0f;
    opaqueStart->get(start);
    const float progress = std::clamp((frameTime() - start) / fadeSeconds, 0.0f, 1.0f);
    return opaque ? progress : 1.0f - progress;
}

void BlockGhost::onSignal(Block*)
{
    setOpaque(!opaque);
}

void BlockGhost::reset()
{
    setOpaque(option.initiallyOpaque);
}
