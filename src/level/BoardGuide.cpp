// The guide plate: it shows the hand's pose while the game waits for it to come to the board's.
#include "game/Rollix.h"
#include "level/Board.h"
#include "level/Level.h"

#include <osg/PolygonOffset>
#include <osg/ShapeDrawable>

namespace {

constexpr float guideThickness = 2.0f;
const osg::Vec4f guideColor(0.0f, 9.0f, 0.0f, 0.3f);  // over 1: as green as it gets, lit or not

}  // namespace

/// Draws the guide plate only while the game waits for the hand to come to the board's pose.
class Board::SynchronizerCallback : public osg::NodeCallback
{
public:
    explicit SynchronizerCallback(Rollix* owner) : game(owner) {}

    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override
    {
        if (game->state == GameState::WaitingForRest)
            traverse(node, visitor);
    }

private:
    Rollix* game;
};

void Board::createGuide(int columns, int rows)
{
    guideId = level->nextObjectId();
    guide = new osg::Geode;
    osg::ref_ptr<osg::ShapeDrawable> plate = new osg::ShapeDrawable(
        new osg::Box(osg::Vec3f(), float(columns), float(rows), guideThickness));
    plate->setColor(guideColor);
    guide->addDrawable(plate);

    osg::ref_ptr<osg::MatrixTransform> guideTransform = new osg::MatrixTransform;
    guideTransform->addChild(guide);
    guideTransform->setCullCallback(new SynchronizerCallback(game()));
    // Without a hand there is no pose to show: the first hand that is seen brings the plate up.
    guideTransform->setNodeMask(0);
    osg::StateSet* stateSet = guideTransform->getOrCreateStateSet();
    stateSet->setMode(GL_BLEND, osg::StateAttribute::ON);
    stateSet->setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
    // Its faces lie where the tops of unit walls are; those stay in front.
    stateSet->setAttributeAndModes(new osg::PolygonOffset(1.0f, 1.0f), osg::StateAttribute::ON);
    level->addChild(guideTransform);
    game()->setActorTransform(guideId, guideTransform);
}
