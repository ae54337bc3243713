#include "game/Rollix.h"

#include "base/UnreadableFile.h"
#include "base/WorldNumbers.h"
#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "hand/HandCamera.h"
#include "hand/LeapManager.h"
#include "hud/MenuHUD.h"
#include "hud/MenuItemAction.h"
#include "hud/MenuItemFolder.h"
#include "hud/TextHUD.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/FilterGroups.h"
#include "level/Ground.h"
#include "level/Level.h"
#include "platform/osgqt/GraphicsWindowQt.h"
#include "shaders/StageRecipes.h"

#include <QKeyEvent>
#include <osg/Uniform>
#include <osgDB/ReadFile>
#include <osgDB/Registry>

#include <functional>
#include <utility>

namespace {

constexpr int hitSounds = 8;

// The camera's circle around the board, in world units and radians.
constexpr float cameraHeight = 30.0f;
constexpr float cameraDistance = 25.0f;
constexpr float cameraAngle = 3.1415927f;
const osg::Vec3f cameraCenter(0.0f, -2.0f, 0.0f);

const osg::Vec4f goodNews(0.0f, 0.9f, 0.0f, 1.0f);
const osg::Vec4f badNews(0.9f, 0.0f, 0.0f, 1.0f);

}  // namespace

const osg::Vec3f Rollix::lightPosition(8.0f, -8.0f, 16.0f);
const osg::Vec4f Rollix::skyColor(0.2f, 0.2f, 0.6f, 1.0f);

Rollix::Rollix(OsgViewerWidget* window) : widget(window)
{
    const GameLoop::Lock worldLock;
    setUpCamera();
    createWorld();
    loadLevel(0);
    setSceneData(sceneRoot);
    createHandCamera();
    LeapManager::setListener(this);
    widget->addKeyListener(this);
    loadSounds();
    createMenus();
    createMessageText();
    state = GameState::WaitingForRest;
}

Rollix::~Rollix()
{
    LeapManager::forget(this);
    if (widget)
        widget->removeKeyListener(this);
    handCamera = nullptr;
    level = nullptr;
    messageText = nullptr;
    endMenu = nullptr;
    pauseMenu = nullptr;
    shaderPrograms.clear();
}

void Rollix::setUpCamera()
{
    osg::Camera* camera = getCamera();
    camera->setGraphicsContext(widget->getGraphicsWindow());
    camera->setClearColor(skyColor);
    camera->setViewport(0, 0, 800, 600);
    camera->setProjectionMatrixAsPerspective(30.0, 1.3333333333333333, 1.0, 10000.0);
}

void Rollix::createWorld()
{
    const GameLoop::Lock worldLock;
    createScene(osg::Vec3f(0.0f, 0.0f, -world::gravity));
    sceneRoot = new osg::Group;
    sceneRoot->getOrCreateStateSet()->addUniform(new osg::Uniform("a_LightPos", lightPosition),
                                                 osg::StateAttribute::ON);
}

void Rollix::createHandCamera()
{
    handCamera = new HandCamera;
    handCamera->setHeight(cameraHeight);
    handCamera->setDistance(cameraDistance);
    handCamera->setAngle(cameraAngle);
    handCamera->setCenter(cameraCenter);
    handCamera->setVerticalAxisFixed(true);
    setCameraManipulator(handCamera, true);
}

void Rollix::loadSounds()
{
    for (int i = 1; i <= hitSounds; ++i) {
        const std::string number = std::to_string(i);
        loadSound("hit" + number, "data/Rollix/wood-ball-hit-" + number + ".mp3");
    }
}

void Rollix::createMenus()
{
    const auto makeMenu = [this](bool canContinue) {
        auto* folder = new MenuItemFolder("Menu", nullptr);
        menuItems.emplace_back(folder);
        const auto addLine = [this, folder](const char* name, std::function<void()> action) {
            auto* line = new MenuItemAction(std::move(action), name, folder);
            menuItems.emplace_back(line);
            folder->addItem(line);
        };
        addLine("Restart", [this] { requestLevel(LevelAction::Restart); });
        addLine("Next Level", [this] { requestLevel(LevelAction::Next); });
        addLine("Previous Level", [this] { requestLevel(LevelAction::Previous); });
        if (canContinue)
            addLine("Continue", [this] {
                pauseMenu->hide();
                state = GameState::WaitingForRest;
            });
        osg::ref_ptr<MenuHUD> menu = new MenuHUD;
        menu->init(sceneRoot, this);
        menu->setRootItem(folder);
        menu->setCurrentFolder(folder);
        return menu;
    };
    pauseMenu = makeMenu(true);
    endMenu = makeMenu(false);
}

void Rollix::createMessageText()
{
    messageText = new TextHUD;
    messageText->setPosition(osg::Vec2f(0.5f, 0.05f));
    messageText->setAlignment(osgText::TextBase::CENTER_BOTTOM);
    messageText->init(sceneRoot, this);
}

void Rollix::requestLevel(LevelAction action)
{
    // Menus may be driven on the sensor's thread; the level changes in the next update.
    pendingLevelAction = action;
    state = GameState::WaitingForRest;
}

void Rollix::loadLevel(unsigned int number)
{
    const GameLoop::Lock worldLock;
    level = nullptr;
    // Ids start anew with each level; what the old ones showed is gone.
    actorTransforms.clear();
    level = new Level(number, sceneRoot, this);
    isMessageOld = messageText && messageText->isVisible();
    state = GameState::WaitingForRest;
}

void Rollix::showMessage(const std::string& text, const osg::Vec4f& color)
{
    if (messageText->isVisible())
        return;
    messageText->setText(text);
    messageText->setColor(color);
    messageText->show();
}

void Rollix::levelCompleted()
{
    endLevel(GameState::LevelCompleted, "Well Done!", goodNews);
}

void Rollix::levelFailed()
{
    endLevel(GameState::LevelFailed, "Not even close...", badNews);
}

void Rollix::endLevel(GameState outcome, const std::string& text, const osg::Vec4f& color)
{
    // The fuse of a mine burns on behind a menu.
    if (pauseMenu->isVisible())
        pauseMenu->hide();
    state = outcome;
    isMessageOld = false;
    showMessage(text, color);
}

bool Rollix::hasLevelEnded() const
{
    return state == GameState::LevelCompleted || state == GameState::LevelFailed;
}

bool Rollix::isMenuVisible() const
{
    return pauseMenu->isVisible() || endMenu->isVisible();
}

ShaderProgram::Shader* Rollix::sharedShader(const std::string& name)
{
    osg::ref_ptr<ShaderProgram::Shader>& shader = shaderPrograms[name];
    if (!shader)
        shader = makeStage(name);
    return shader;
}

void Rollix::setSharedStages(ShaderProgram& program, const std::string& programName)
{
    setStages(
        program, programName, [this](const std::string& stage) { return sharedShader(stage); });
}

osg::Texture2D* Rollix::sharedTexture(const std::string& file)
{
    osg::ref_ptr<osg::Texture2D>& texture = textures[file];
    if (texture)
        return texture;
    osg::ref_ptr<osg::Image> picture =
        osgDB::readRefImageFile(file, osgDB::Registry::instance()->getOptions());
    if (!picture)
        reportUnreadable("image", file, "Imagine the grain.");
    texture = new osg::Texture2D(picture);
    texture->setWrap(osg::Texture::WRAP_S, osg::Texture::CLAMP_TO_EDGE);
    texture->setWrap(osg::Texture::WRAP_T, osg::Texture::CLAMP_TO_EDGE);
    // Mixing two steps of the pyramid costs a processor a tenth of the frame.
    if (widget->drawsInSoftware())
        texture->setFilter(osg::Texture::MIN_FILTER, osg::Texture::LINEAR_MIPMAP_NEAREST);
    return texture;
}

void Rollix::update()
{
    const GameLoop::Lock worldLock;
    serveLevelAction();
    applyKeyTorque();
}

void Rollix::serveLevelAction()
{
    switch (pendingLevelAction) {
    case LevelAction::None:
        return;
    case LevelAction::Restart:
        loadLevel(level->number);
        break;
    case LevelAction::Next:
        loadLevel(level->number + 1);
        break;
    case LevelAction::Previous:
        loadLevel(level->number - 1);
        break;
    }
    pendingLevelAction = LevelAction::None;
}

void Rollix::applyKeyTorque()
{
    osg::Matrixd rotation;
    rotation.makeRotate(double(handCamera->angle()), osg::Vec3d(0.0, 0.0, 1.0));
    const unsigned int boardId = level->board->getId();
    // 0.1 rad/s a tick, about an axis that turns with the camera.
    const auto turn = [&](const osg::Vec3f& axis) {
        addTorque(boardId, rotation * axis, forceModeVelocityChange, true);
    };
    if (keyUp.takeTick())
        turn(osg::Vec3f(0.1f, 0.0f, 0.0f));
    if (keyDown.takeTick())
        turn(osg::Vec3f(-0.1f, 0.0f, 0.0f));
    if (keyLeft.takeTick())
        turn(osg::Vec3f(0.0f, 0.1f, 0.0f));
    if (keyRight.takeTick())
        turn(osg::Vec3f(0.0f, -0.1f, 0.0f));
}

float Rollix::timeStep()
{
    return world::secondsPerTick;
}

void Rollix::ArrowKey::press()
{
    // What repeats has had its ticks.
    isDue = isDue || !isHeld;
    isHeld = true;
}

bool Rollix::ArrowKey::takeTick()
{
    const bool wasDue = std::exchange(isDue, false);
    return isHeld || wasDue;
}

Rollix::ArrowKey* Rollix::arrowKey(int key)
{
    switch (key) {
    case Qt::Key_Up:
        return &keyUp;
    case Qt::Key_Down:
        return &keyDown;
    case Qt::Key_Left:
        return &keyLeft;
    case Qt::Key_Right:
        return &keyRight;
    default:
        return nullptr;
    }
}

void Rollix::keyPressEvent(QKeyEvent* event)
{
    if (ArrowKey* arrow = arrowKey(event->key())) {
        arrow->press();
        if (!event->isAutoRepeat())
            takeOldMessageAway();
        event->accept();
    }
}

void Rollix::takeOldMessageAway()
{
    const GameLoop::Lock worldLock;
    if (!isMessageOld || isMenuVisible())
        return;
    messageText->hide();
    isMessageOld = false;
}

void Rollix::keyReleaseEvent(QKeyEvent* event)
{
    // A held key repeats as pairs of release and press: only the true release counts.
    if (event->isAutoRepeat())
        return;
    // The sensor's thread may be at work on the same menu.
    const GameLoop::Lock worldLock;
    serveKey(event);
}

void Rollix::serveKey(QKeyEvent* event)
{
    if (pauseMenu->isVisible()) {
        pauseMenu->onKeyPress(event);
        if (!pauseMenu->isVisible())
            state = GameState::WaitingForRest;
        return;
    }
    if (endMenu->isVisible()) {
        endMenu->onKeyPress(event);
        return;
    }

    if (ArrowKey* arrow = arrowKey(event->key())) {
        arrow->release();
        event->accept();
        return;
    }
    switch (event->key()) {
    case Qt::Key_Plus:
        loadLevel(level->number + 1);
        break;
    case Qt::Key_Minus:
        loadLevel(level->number - 1);
        break;
    case Qt::Key_R:
        loadLevel(level->number);
        break;
    case Qt::Key_Escape:
        state = GameState::PauseMenu;
        pauseMenu->toggle();
        break;
    case Qt::Key_Return:
        // A sensor's next frame would do it; there may be none.
        if (!hasLevelEnded())
            return;
        endMenu->show();
        break;
    default:
        return;
    }
    event->accept();
}

void Rollix::onContact(const physx::PxContactPairHeader& header, const physx::PxContactPair* pairs,
                       physx::PxU32 count)
{
    const unsigned int ballId = level->ball->getId();
    if (isContactBetween(level->ground->getId(), ballId, header))
        level->ball->hitGround(level->ground);
    else if (isContactOf(ballId, header) && isShapeContactBetween(boardGroup, ballGroup, pairs[0]))
        level->board->onBallContact(header, pairs, count);
}

void Rollix::onTrigger(physx::PxTriggerPair* pairs, physx::PxU32 count)
{
    const auto shapeRemoved = physx::PxTriggerPairFlag::eREMOVED_SHAPE_TRIGGER |
                              physx::PxTriggerPairFlag::eREMOVED_SHAPE_OTHER;
    const unsigned int ballId = level->ball->getId();
    for (physx::PxU32 i = 0; i < count; ++i) {
        const physx::PxTriggerPair& pair = pairs[i];
        if (pair.flags & shapeRemoved)
            continue;
        // The pair in the form of a contact, so that the same queries serve.
        physx::PxContactPairHeader actorPair;
        actorPair.actors[0] = pair.triggerActor;
        actorPair.actors[1] = pair.otherActor;
        physx::PxContactPair shapes;
        shapes.shapes[0] = pair.triggerShape;
        shapes.shapes[1] = pair.otherShape;
        if (isContactOf(ballId, actorPair) && isShapeContactBetween(boardGroup, ballGroup, shapes))
            level->board->onBallTrigger(pair, actorPair);
    }
}
