// The listener side of the game: what a sensor frame means in which state. All of it runs on the
// sensor's thread, each frame is judged alone, and whatever touches the scene, the level or the
// HUD holds the world lock.

#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hand/HandCamera.h"
#include "hand/HandPose.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Board.h"
#include "level/Level.h"

namespace {

constexpr float tiltDeadZone = 0.1f;    // radians under which a hand commands nothing
constexpr float tiltGain = 2.0f;        // rad/s a radian of error
constexpr float restTolerance = 0.25f;  // radians between hand and board that start play

const osg::Vec3f boardDown(0.0f, 0.0f, -1.0f);
const osg::Vec3f boardForward(0.0f, 1.0f, 0.0f);

}  // namespace

void Rollix::onConnect(const Leap::Controller& controller)
{
    controller.enableGesture(Leap::Gesture::TYPE_CIRCLE, true);
    controller.enableGesture(Leap::Gesture::TYPE_SCREEN_TAP, true);
}

void Rollix::onFrame(const Leap::Controller& controller)
{
    const Leap::Frame frame = controller.frame(0);
    switch (state) {
    case GameState::Initial:
    case GameState::WaitingForRest:
        if (handCamera->handleFrame(frame))
            state = GameState::CameraControl;
        else
            awaitRestPose(frame);
        break;
    case GameState::CameraControl:
        if (!handCamera->handleFrame(frame))
            state = GameState::WaitingForRest;
        break;
    case GameState::Playing:
        if (handCamera->handleFrame(frame))
            state = GameState::CameraControl;
        else if (!detectScreenTap(frame))
            applyHandTilt(frame);
        break;
    case GameState::PauseMenu:
        drivePauseMenu(controller);
        break;
    case GameState::LevelCompleted:
    case GameState::LevelFailed:
        driveEndMenu(controller);
        break;
    }
}

void Rollix::awaitRestPose(const Leap::Frame& frame)
{
    state = GameState::WaitingForRest;
    const GameLoop::Lock worldLock;
    showMessage("Bring your hand in rest position.", osg::Vec4f(0.0f, 0.9f, 0.0f, 1.0f));
    if (!frame.hands().isEmpty()) {
        const HandPose hand = handPose(frame.hands()[0], handCamera->angle());
        const osg::Vec3f error =
            alignmentRotation(actorTransforms[level->board->getId()], boardDown, hand.down,
                              boardForward, hand.forward, 0.0f);
        if (error.length() < restTolerance) {
            state = GameState::Playing;
            messageText->hide();
        } else {
            // Show the player where the hand is: the guide plate tilts as the palm does.
            osg::MatrixTransform* guide = actorTransforms[level->board->guideId];
            guide->setMatrix(osg::Matrixd::rotate(boardDown, hand.down));
            guide->setNodeMask(0xffffffff);
        }
    }
}

bool Rollix::detectScreenTap(const Leap::Frame& frame)
{
    for (int i = 0; i < frame.gestures().count(); ++i) {
        if (frame.gestures()[i].type() == Leap::Gesture::TYPE_SCREEN_TAP) {
            state = GameState::PauseMenu;
            return true;
        }
    }
    return false;
}

void Rollix::applyHandTilt(const Leap::Frame& frame)
{
    if (frame.hands().isEmpty())
        return;
    const HandPose hand = handPose(frame.hands()[0], handCamera->angle());
    const GameLoop::Lock worldLock;
    const unsigned int boardId = level->board->getId();
    const osg::Vec3f rotation = alignmentRotation(actorTransforms[boardId], boardDown, hand.down,
                                                  boardForward, hand.forward, tiltDeadZone);
    setAngularVelocity(boardId, rotation * tiltGain, true);
}

void Rollix::drivePauseMenu(const Leap::Controller& controller)
{
    driveMenu(pauseMenu, controller);
}

void Rollix::driveEndMenu(const Leap::Controller& controller)
{
    driveMenu(endMenu, controller);
}

void Rollix::driveMenu(MenuHUD* menu, const Leap::Controller& controller)
{
    const GameLoop::Lock worldLock;
    // The first frame of a menu state only brings the menu up.
    if (menu->isVisible())
        menu->onLeapFrame(controller);
    else
        menu->show();
}
