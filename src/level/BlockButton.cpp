#include "level/BlockButton.h"

#include "base/Say.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Board.h"
#include "level/Decoration.h"
#include "level/Level.h"
#include "shaders/ShaderProgram.h"

#include <QColor>
#include <QTimer>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>

#include <cmath>

namespace {

constexpr float capRadius = 0.5f;
constexpr float capHeight = 0.3f;
const osg::Vec3f raised(0.0f, 0.0f, 0.0f);
const osg::Vec3f sunk(0.0f, 0.0f, -0.14f);  // 0.01 of the cap stays over the block
constexpr float animationSeconds = 0.5f;

const osg::Vec4f red(1.0f, 0.0f, 0.0f, 1.0f);
const osg::Vec4f blue(0.0f, 0.0f, 1.0f, 1.0f);
const osg::Vec4f yellow(1.0f, 1.0f, 0.0f, 1.0f);

osg::Vec4f colorOf(ButtonMode mode)
{
    switch (mode) {
    case ButtonMode::OneShot:
        break;
    case ButtonMode::Timed:
        return blue;
    case ButtonMode::Toggle:
        return yellow;
    }
    return red;
}

/// Turns a cap that leans towards a high edge at -x to lean towards the block's own one.
double turnOfSlope(int slope)
{
    if (slope == flatSlope)
        return 0.0;
    const CellSide& high = highSides[slope];
    return std::atan2(-high.y, -high.x);
}

}  // namespace

BlockButton::BlockButton(Level& owner, float cellX, float cellY, int saturation, int value,
                         BlockGroup& linkGroup)
    : Block(owner, cellX, cellY, saturation, value, linkGroup, true, "Button"),
      option(ButtonOption::ofSaturation(saturation)),
      fullColor(colorOf(option.mode))
{
    fixToBoard();
    level->board->addContactShape(this, id);
    createCap();
}

BlockButton::~BlockButton() = default;

void BlockButton::createCap()
{
    capGeode = new osg::Geode;
    capGeode->addDrawable(
        new osg::ShapeDrawable(new osg::Cylinder(osg::Vec3f(), capRadius, capHeight)));
    osg::StateSet* stateSet = capGeode->getOrCreateStateSet();
    pose = std::make_unique<UniformAnimation<osg::Vec3f>>(stateSet, "a_Pose", raised);
    color = std::make_unique<UniformAnimation<osg::Vec4f>>(stateSet, "a_Color", fullColor);

    capShader = addProgram(capGeode, "buttonCap", game());

    osg::Vec3d alongSlope(1.0, 0.0, highHeight - lowHeight);
    alongSlope.normalize();
    osg::ref_ptr<osg::MatrixTransform> seat = new osg::MatrixTransform(
        osg::Matrixd::rotate(alongSlope, osg::Vec3d(1.0, 0.0, 0.0)) *
        osg::Matrixd::rotate(turnOfSlope(slope), osg::Vec3d(0.0, 0.0, 1.0)) *
        osg::Matrixd::translate(0.0, 0.0, surfaceHeight()));
    seat->addChild(capGeode);
    transform->addChild(seat);
}

void BlockButton::onBallContact(Ball*)
{
    if (busy)
        return;
    busy = true;
    signalGroup();
    color->run(fullColor, grey(), frameTime(), animationSeconds);
    if (option.mode == ButtonMode::OneShot) {
        setPressed(true);
        return;
    }
    setPressed(!pressed);
    QTimer::singleShot(int(option.coolDown * 1000.0), this, [this] {
        const GameLoop::Lock worldLock;
        cooledDown();
    });
}

void BlockButton::cooledDown()
{
    color->run(grey(), fullColor, frameTime(), animationSeconds);
    if (option.mode == ButtonMode::Timed) {
        setPressed(!pressed);
        signalGroup();
    }
    busy = false;
}

void BlockButton::signalGroup()
{
    for (const osg::ref_ptr<Block>& block : *group)
        block->onSignal(this);
}

void BlockButton::setPressed(bool down)
{
    pressed = down;
    pose->run(down ? raised : sunk, down ? sunk : raised, frameTime(), animationSeconds);
}

/// The colour's brightness as Qt's qGray weighs it, in all four channels: alpha fades as well.
osg::Vec4f BlockButton::grey() const
{
    const int brightness =
        qGray(int(fullColor.r() * 255), int(fullColor.g() * 255), int(fullColor.b() * 255));
    const float channel = float(brightness / 255.0);
    return osg::Vec4f(channel, channel, channel, channel);
}

void BlockButton::reset()
{
    pressed = false;
    busy = false;
    pose->stop(raised);
    color->stop(fullColor);
    say("reset");
}
