#include "level/BlockCheckpoint.h"

#include "game/Rollix.h"
#include "level/Board.h"
#include "level/Decoration.h"
#include "level/Level.h"
#include "shaders/ShaderProgram.h"

#include <osg/Geometry>
#include <osg/ShapeDrawable>

namespace {

// The flag, in world units: it hangs from the top of its pole towards +x.
constexpr int flagSteps = 5;
constexpr float flagStepWidth = 0.1f;
constexpr float flagHeight = 0.4f;
constexpr float flagTop = 1.55f;
constexpr float poleHeight = 1.6f;
constexpr float poleRadius = 0.03f;

const osg::Vec4f poleLacquer(1.0f, 0.98f, 0.92f, 0.9f);  // seen from afar: it is thin

const osg::Vec4f requiredColor(0.8f, 0.0f, 0.0f, 1.0f);
const osg::Vec4f optionalColor(0.0f, 0.0f, 0.8f, 1.0f);

const osg::Vec3f raised(0.0f, 0.0f, 0.0f);
const osg::Vec3f sunk(0.0f, 0.0f, -1.0f);
constexpr float flagSeconds = 1.0f;

}  // namespace

std::unordered_set<BlockCheckpoint*> BlockCheckpoint::allCheckpoints;

BlockCheckpoint::BlockCheckpoint(Level& owner, float cellX, float cellY, int saturation, int value,
                                 BlockGroup& linkGroup)
    : Block(owner, cellX, cellY, saturation, value, linkGroup, true, "Checkpoint")
{
    fixToBoard();
    allCheckpoints.insert(this);
    const CheckpointOption option = CheckpointOption::ofSaturation(saturation);
    type = option.type;
    required = option.required;
    coins = option.coins;
    if (type == CheckpointType::Start)
        level->setStart(this);
    else
        createFlag();
    level->board->addContactShape(this, id);
}

BlockCheckpoint::~BlockCheckpoint()
{
    allCheckpoints.erase(this);
}

void BlockCheckpoint::createFlag()
{
    const float top = surfaceHeight() + flagTop;
    osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
    for (int i = 0; i < flagSteps; ++i) {
        const float along = float(i) * flagStepWidth;
        vertices->push_back(osg::Vec3f(along, 0.0f, top));
        vertices->push_back(osg::Vec3f(along, 0.0f, top - flagHeight));
    }
    osg::ref_ptr<osg::Geometry> cloth = new osg::Geometry;
    cloth->setDataVariance(osg::Object::STATIC);
    cloth->setVertexArray(vertices);
    cloth->addPrimitiveSet(new osg::DrawArrays(GL_QUAD_STRIP, 0, GLsizei(vertices->size())));

    flagGeode = addDecoration(cloth);
    osg::StateSet* stateSet = flagGeode->getOrCreateStateSet();
    stateSet->addUniform(new osg::Uniform("a_FlagType", int(type)), osg::StateAttribute::ON);
    if (type == CheckpointType::Checkpoint)
        stateSet->addUniform(
            new osg::Uniform("a_FlagColor", required ? requiredColor : optionalColor),
            osg::StateAttribute::ON);
    pose = std::make_unique<UniformAnimation<osg::Vec3f>>(stateSet, "a_Pose", raised);

    createFlagProgram();
    createPole();
}

void BlockCheckpoint::createFlagProgram()
{
    if (type == CheckpointType::Checkpoint) {
        flagShader = addProgram(flagGeode, "flag", game());
        return;
    }
    // A goal has no colour of its own, and would see that of the flag drawn last.
    flagShader = new ShaderProgram(flagGeode);
    game()->setSharedStages(*flagShader, "flag");
}

void BlockCheckpoint::createPole()
{
    const osg::Vec3f center(0.0f, 0.0f, surfaceHeight() + poleHeight * 0.5f);
    poleGeode = addWoodenDecoration(
        new osg::ShapeDrawable(new osg::Cylinder(center, poleRadius, poleHeight)));
    poleGeode->getOrCreateStateSet()->addUniform(new osg::Uniform("a_Lacquer", poleLacquer));
}

void BlockCheckpoint::onBallContact(Ball*)
{
    if (type == CheckpointType::Checkpoint)
        passFlag();
    else if (type == CheckpointType::Goal)
        reachGoal();
}

void BlockCheckpoint::passFlag()
{
    if (passed)
        return;
    passed = true;
    pose->run(raised, sunk, frameTime(), flagSeconds);
    level->checkpoint = this;
    level->changeCoins(coins);
}

void BlockCheckpoint::reachGoal()
{
    for (const BlockCheckpoint* other : allCheckpoints)
        if (other->type == CheckpointType::Checkpoint && other->required && !other->passed)
            return;
    level->changeCoins(coins);
    level->complete();
}

void BlockCheckpoint::reset()
{
    passed = false;
    if (pose)
        pose->run(sunk, raised, frameTime(), flagSeconds);
}
