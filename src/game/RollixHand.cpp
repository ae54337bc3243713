// The listener side of the game: what a sensor frame means in which state. All of it runs on the
// sensor's thread, each frame is judged alone, and whatever touches the state, the scene, the level
// or the HUD holds the world lock. Who has waited for that lock looks at the state again.

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
    if (frame.hands().isEmpty())
        hideGuide();
    const GameState seen = stateAtAGlance();
    switch (seen) {
    case GameState::Initial:
    case GameState::WaitingForRest:
        if (handCamera->handleFrame(frame))
            changeState(seen, GameState::CameraControl);
        else
            awaitRestPose(frame);
        break;
    case GameState::CameraControl:
        if (!handCamera->handleFrame(frame))
            changeState(seen, GameState::WaitingForRest);
        break;
    case GameState::Playing:
        if (handCamera->handleFrame(frame))
            changeState(seen, GameState::CameraControl);
        else if (detectScreenTap(frame))
            changeState(seen, GameState::PauseMenu);
        else
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

/// Without the world lock: a frame that waited out a tick to learn that it has nothing to do there
/// would only be late for the next.
GameState Rollix::stateAtAGlance() const
{
    return state;
}

/// Unless a tick or a key has changed it since it was looked at: they know of ends that the frame
/// does not.
void Rollix::changeState(GameState from, GameState to)
{
    const GameLoop::Lock worldLock;
    if (state == from)
        state = to;
}

osg::MatrixTransform* Rollix::guide()
{
    return actorTransforms[level->board->guideId];
}

void Rollix::hideGuide()
{
    if (!isGuideUp)
        return;
    const GameLoop::Lock worldLock;
    guide()->setNodeMask(0);
    isGuideUp = false;
}

void Rollix::awaitRestPose(const Leap::Frame& frame)
{
    const GameLoop::Lock worldLock;
    if (state != GameState::Initial && state != GameState::WaitingForRest)
        return;
    state = GameState::WaitingForRest;
    isMessageOld = false;
    showMessage("Bring your hand in rest position.", osg::Vec4f(0.0f, 0.9f, 0.0f, 1.0f));
    if (frame.hands().isEmpty())
        return;
    const HandPose hand = handPose(frame.hands()[0], handCamera->angle());
    const osg::Vec3f error = alignmentRotation(actorTransforms[level->board->getId()], boardDown,
                                               hand.down, boardForward, hand.forward, 0.0f);
    if (error.length() < restTolerance) {
        state = GameState::Playing;
        messageText->hide();
        hideGuide();
        return;
    }
    // Show the player where the hand is: the guide plate tilts as the palm does.
    guide()->setMatrix(osg::Matrixd::rotate(boardDown, hand.down));
    guide()->setNodeMask(~0u);
    isGuideUp = true;
}

bool Rollix::detectScreenTap(const Leap::Frame& frame)
{
    for (int i = 0; i < frame.gestures().count(); ++i)
        if (frame.gestures()[i].type() == Leap::Gesture::TYPE_SCREEN_TAP)
            return true;
    return false;
}

void Rollix::applyHandTilt(const Leap::Frame& frame)
{
    if (frame.hands().isEmpty())
        return;
    const HandPose hand = handPose(frame.hands()[0], handCamera->angle());
    const GameLoop::Lock worldLock;
    if (state != GameState::Playing)
        return;
    const unsigned int boardId = level->board->getId();
    const osg::Vec3f rotation = alignmentRotation(actorTransforms[boardId], boardDown, hand.down,
                                                  boardForward, hand.forward, tiltDeadZone);
    setAngularVelocity(boardId, rotation * tiltGain, true);
}

void Rollix::drivePauseMenu(const Leap::Controller& controller)
{
    const GameLoop::Lock worldLock;
    if (state == GameState::PauseMenu)
        driveMenu(pauseMenu, controller);
}

void Rollix::driveEndMenu(const Leap::Controller& controller)
{
    const GameLoop::Lock worldLock;
    if (hasLevelEnded())
        driveMenu(endMenu, controller);
}

void Rollix::driveMenu(MenuHUD* menu, const Leap::Controller& controller)
{
    // The first frame of a menu state only brings the menu up.
    if (menu->isVisible())
        menu->onLeapFrame(controller);
    else
        menu->show();
}
