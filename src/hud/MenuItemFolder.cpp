#include "hud/MenuItemFolder.h"

#include "hud/MenuHUD.h"

#include <Leap.h>
#include <QKeyEvent>

namespace {

constexpr float quarterTurn = 1.5707964f;   // pi/2
constexpr float fullCircleProgress = 0.9f;  // turns; less is a wave of the finger

// Clockwise for the player: the normal lies on the side to which the finger points.
bool isClockwise(const Leap::CircleGesture& circle)
{
    return circle.pointable().direction().angleTo(circle.normal()) <= quarterTurn;
}

}  // namespace

MenuItemFolder::MenuItemFolder(const char* itemName, AbstractMenuItem* itemParent)
    : AbstractMenuItem(itemName, itemParent)
{
}

void MenuItemFolder::addItem(AbstractMenuItem* item)
{
    items.push_back(item);
    ++itemCount;
}

void MenuItemFolder::activate(MenuHUD* menu)
{
    hud = menu;
    hud->setCurrentFolder(this);
    hud->build();
}

void MenuItemFolder::onKeyPress(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        if (hud)
            hud->hide();
        break;
    case Qt::Key_Return:
        pickSelected();
        break;
    case Qt::Key_Up:
        moveSelection(-1);
        break;
    case Qt::Key_Down:
        moveSelection(1);
        break;
    default:
        return;
    }
    event->accept();
}

void MenuItemFolder::onLeapFrame(const Leap::Controller& controller)
{
    onGestures(controller.frame(0).gestures());
}

void MenuItemFolder::onGestures(const Leap::GestureList& gestures)
{
    for (int i = 0; i < gestures.count(); ++i) {
        const Leap::Gesture gesture = gestures[i];
        if (gesture.type() == Leap::Gesture::TYPE_CIRCLE) {
            const Leap::CircleGesture circle(gesture);
            if (gesture.state() == Leap::Gesture::STATE_STOP &&
                circle.progress() > fullCircleProgress)
                moveSelection(isClockwise(circle) ? 1 : -1);
        } else if (gesture.type() == Leap::Gesture::TYPE_SCREEN_TAP) {
            pickSelected();
        }
    }
}

void MenuItemFolder::moveSelection(int step)
{
    if (itemCount == 0)
        return;
    selected = (selected + step + itemCount) % itemCount;
    if (hud)
        hud->refresh();
}

void MenuItemFolder::pickSelected()
{
    if (hud && itemCount > 0)
        items[selected]->activate(hud);
}
