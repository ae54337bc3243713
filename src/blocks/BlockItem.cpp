#include "blocks/BlockItem.h"

#include "blocks/HidingCallback.h"
#include "blocks/SingleShot.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Decoration.h"
#include "level/Level.h"

#include <osg/ShapeDrawable>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace {

constexpr int restMilliseconds = 10000;
constexpr double millisecondsPerSecond = 1000.0;

constexpr double displayScale = 0.2;
constexpr double floatHeight = 0.3;  // over the block

// Where the copies and their sign hover, in the display's frame. More than three are not shown.
const osg::Vec3f copyPlaces[] = {osg::Vec3f(1.0f, 0.0f, 0.5f), osg::Vec3f(0.7f, 0.6f, -0.4f),
                                 osg::Vec3f(1.4f, -0.6f, -0.2f)};
constexpr int mostCopies = 3;
const osg::Vec3f signPlace(-1.0f, 0.0f, 0.0f);
constexpr float itemRadius = 0.45f;
const osg::Vec3f middlePlace(0.0f, 0.0f, 0.0f);  // the weight's
constexpr float signLength = 1.0f;
constexpr float signDepth = 0.2f;
constexpr float signWidth = 0.3f;

// How itemShader.vert draws the display, in its frame: twice as large about its middle, lifted, and
// floating up and down. A sign is drawn smaller and nearer to the middle than that.
constexpr float drawnScale = 2.0f;
constexpr float drawnLift = 0.9f;
constexpr float drawnFloat = 0.12f;

struct Appearance
{
    const char* modelFile;
    osg::Vec4f color;
};

Appearance appearanceOf(ItemKind kind)
{
    switch (kind) {
    case ItemKind::Coin:
        return {"data/Rollix/coin.osgt", osg::Vec4f(1.0f, 0.85f, 0.0f, 1.0f)};
    case ItemKind::Heart:
        return {"data/Rollix/heart.osgt", osg::Vec4f(0.9f, 0.0f, 0.0f, 1.0f)};
    case ItemKind::Weight:
        break;
    }
    return {"data/Rollix/weight.osgt", osg::Vec4f(0.7f, 0.7f, 0.7f, 1.0f)};
}

void displace(osg::Node* node, const osg::Vec3f& place)
{
    node->getOrCreateStateSet()->addUniform(new osg::Uniform("a_ItemDisplace", place),
                                            osg::StateAttribute::ON);
}

/// Bounds that hold the part wherever the shader draws it, in the middle or at one of the places
/// and turned to any side: of all, since the copies share one drawable.
void setDrawnBounds(osg::Drawable* part)
{
    const osg::BoundingBox own = part->computeBoundingBox();
    const float reach =
        std::hypot(std::max(-own.xMin(), own.xMax()), std::max(-own.yMin(), own.yMax()));
    osg::BoundingBox drawn;
    for (const osg::Vec3f& place :
         {copyPlaces[0], copyPlaces[1], copyPlaces[2], signPlace, middlePlace}) {
        const osg::Vec3f lowest(-reach, -reach, own.zMin());
        const osg::Vec3f highest(reach, reach, own.zMax());
        drawn.expandBy((place + lowest) * drawnScale +
                       osg::Vec3f(0.0f, 0.0f, drawnLift - drawnFloat));
        drawn.expandBy((place + highest) * drawnScale +
                       osg::Vec3f(0.0f, 0.0f, drawnLift + drawnFloat));
    }
    part->setInitialBound(drawn);
}

void addCopies(osg::Group* parent, osg::Drawable* model, int count)
{
    const int copies = std::clamp(std::abs(count), 1, mostCopies);
    setDrawnBounds(model);
    for (int i = 0; i < copies; ++i) {
        osg::ref_ptr<osg::Geode> geode = new osg::Geode;
        geode->addDrawable(model);
        if (count != 0)
            displace(geode, copyPlaces[i]);
        parent->addChild(geode);
    }
}

void addSign(osg::Group* parent, bool plus)
{
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(
        new osg::ShapeDrawable(new osg::Box(osg::Vec3f(), signLength, signDepth, signWidth)));
    if (plus)
        geode->addDrawable(
            new osg::ShapeDrawable(new osg::Box(osg::Vec3f(), signWidth, signDepth, signLength)));
    for (unsigned int i = 0; i < geode->getNumDrawables(); ++i)
        setDrawnBounds(geode->getDrawable(i));
    displace(geode, signPlace);
    parent->addChild(geode);
}

}  // namespace

class BlockItem::BlockItemCallback : public HidingCallback<BlockItem, &BlockItem::collected>
{
public:
    using HidingCallback::HidingCallback;
};

BlockItem::BlockItem(Level& owner, float cellX, float cellY, int saturation, int value,
                     BlockGroup& linkGroup)
    : Block(owner, cellX, cellY, saturation, value, linkGroup, true, "Item")
{
    fixToBoard();
    const ItemOption option = ItemOption::ofSaturation(saturation);
    kind = option.kind;
    amount = option.amount;
    createDisplay(option.count);
    level->board->addContactShape(this, id);
}

BlockItem::~BlockItem() = default;

void BlockItem::createDisplay(int count)
{
    const Appearance appearance = appearanceOf(kind);
    osg::ref_ptr<osg::MatrixTransform> display = new osg::MatrixTransform(
        osg::Matrixd::scale(displayScale, displayScale, displayScale) *
        osg::Matrixd::translate(0.0, 0.0, double(surfaceHeight()) + floatHeight));
    if (osg::Drawable* model = level->sharedModel(appearance.modelFile))
        addCopies(display, model, count);
    if (count != 0)
        addSign(display, count > 0);
    // The weight's own; around the copies, each of which has its place.
    displace(display, middlePlace);
    itemProgram = addProgram(display, "item", game());
    display->getOrCreateStateSet()->addUniform(new osg::Uniform("a_Color", appearance.color),
                                               osg::StateAttribute::ON);
    rememberDisplay(count);
    display->setCullCallback(new BlockItemCallback(this));
    transform->addChild(display);
}

void BlockItem::rememberDisplay(int count)
{
    const osg::Vec3f middle(x, y, height * 0.5f + surfaceHeight() + float(floatHeight));
    const float scale = float(displayScale);
    const int copies = std::clamp(std::abs(count), 1, mostCopies);
    for (int i = 0; i < copies; ++i) {
        const osg::Vec3f place = count == 0 ? osg::Vec3f() : copyPlaces[i];
        shown.push_back({middle + (place * drawnScale + osg::Vec3f(0.0f, 0.0f, drawnLift)) * scale,
                         itemRadius * drawnScale * scale});
    }
}

std::vector<Hovering> BlockItem::hovering() const
{
    return collected ? std::vector<Hovering>() : shown;
}

void BlockItem::onBallContact(Ball*)
{
    if (collected)
        return;
    collected = true;
    switch (kind) {
    case ItemKind::Coin:
        level->changeCoins(int(amount));
        startTimer(restMilliseconds, &BlockItem::reset);
        break;
    case ItemKind::Heart:
        // The last life's restart has reset this block before the timer starts; the reset that
        // comes of it changes nothing.
        level->changeLives(int(amount), false);
        startTimer(restMilliseconds, &BlockItem::reset);
        break;
    case ItemKind::Weight:
        setBallMotion(PhysxScene::motionWithoutGravity);
        startTimer(int(amount * millisecondsPerSecond), &BlockItem::endWeight);
        break;
    }
}

void BlockItem::endWeight()
{
    setBallMotion(PhysxScene::motionDynamic);
    startTimer(restMilliseconds, &BlockItem::reset);
}

void BlockItem::startTimer(int milliseconds, void (BlockItem::*slot)())
{
    startSingleShot(timer, milliseconds, this, slot);
}

void BlockItem::reset()
{
    timer.stop();
    if (kind == ItemKind::Weight)
        setBallMotion(PhysxScene::motionDynamic);
    collected = false;
}

void BlockItem::setBallMotion(unsigned int motion)
{
    game()->setMotion(level->ball->getId(), motion);
}
