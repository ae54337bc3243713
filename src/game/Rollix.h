#pragma once

#include "game/GameState.h"
#include "game/GravlinApplication.h"
#include "shaders/ShaderProgram.h"

#include <QPointer>
#include <osg/Texture2D>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

class AbstractMenuItem;
class HandCamera;
class Level;
class MenuHUD;
class OsgViewerWidget;
class TextHUD;

/// The game: builds camera, world, sounds and menus once, owns the one current level and swaps it
/// on demand, reads the keyboard, and decides by its state what a sensor frame means. The rules of
/// lives, coins and checkpoints are the level's; here only its two outcomes arrive.
class Rollix : public GravlinApplication
{
public:
    /// Builds everything under the world lock, level 0 included. Main thread.
    explicit Rollix(OsgViewerWidget* widget);

    /// Replaces the current level by "data/Rollix/level<number>.png"; no number is refused. Main
    /// thread, takes the world lock.
    void loadLevel(unsigned int number);

    /// The two outcomes of a level. World lock held.
    void levelCompleted();
    void levelFailed();

    /// The shader stage that all levels share under its short file name, made by its recipe at its
    /// first use.
    ShaderProgram::Shader* sharedShader(const std::string& name);

    /// Gives `program` the shared stages of a program's recipe.
    void setSharedStages(ShaderProgram& program, const std::string& programName);

    /// The picture that all levels share, read at its first use; its borders run on.
    osg::Texture2D* sharedTexture(const std::string& file);

    /// The lamp's place in the world, "a_LightPos" to shaders.
    static const osg::Vec3f lightPosition;
    /// Behind everything; the ground fades into it.
    static const osg::Vec4f skyColor;

    /// Serves a requested level change, then turns the held arrow keys into torque on the board.
    void update() override;

    /// 1/30 s at 50 ticks a second: the world runs at 5/3 of real time, which gives the ball its
    /// liveliness.
    float timeStep() override;

    void keyPressEvent(QKeyEvent* event) override;
    /// Menus and commands act on release. A release that a menu takes leaves the arrow key held.
    void keyReleaseEvent(QKeyEvent* event) override;

    void onContact(const physx::PxContactPairHeader& header, const physx::PxContactPair* pairs,
                   physx::PxU32 count) override;
    void onTrigger(physx::PxTriggerPair* pairs, physx::PxU32 count) override;

    /// The sensor's thread; see RollixHand.cpp.
    void onConnect(const Leap::Controller& controller) override;
    void onFrame(const Leap::Controller& controller) override;

    /// Shader stages by short file name; they outlive every level.
    std::unordered_map<std::string, osg::ref_ptr<ShaderProgram::Shader>> shaderPrograms;

    std::unordered_map<std::string, osg::ref_ptr<osg::Texture2D>> textures;

    osg::ref_ptr<MenuHUD> pauseMenu;
    osg::ref_ptr<MenuHUD> endMenu;
    osg::ref_ptr<TextHUD> messageText;
    osg::ref_ptr<Level> level;

    /// Written under the world lock. The sensor's thread looks at it without, to see what a frame
    /// is for, and again once it has the lock.
    std::atomic<GameState> state{GameState::Initial};

    osg::ref_ptr<HandCamera> handCamera;

protected:
    /// Leaves the sensor and the widget first. Without the world lock, which a frame that is being
    /// served may be waiting for.
    ~Rollix() override;

private:
    enum class LevelAction : int { None = 0, Restart = 1, Next = 2, Previous = 3 };

    /// An arrow key. What is pressed counts for a tick, even if it is let go of before that.
    struct ArrowKey
    {
        void press();
        void release() { isHeld = false; }
        /// Whether it turns the board in this tick.
        bool takeTick();

        bool isHeld = false;
        bool isDue = false;
    };

    void setUpCamera();
    void createWorld();
    void createHandCamera();
    void loadSounds();
    void createMenus();
    void createMessageText();
    void requestLevel(LevelAction action);
    void showMessage(const std::string& text, const osg::Vec4f& color);
    void endLevel(GameState outcome, const std::string& text, const osg::Vec4f& color);
    bool hasLevelEnded() const;
    bool isMenuVisible() const;

    void serveLevelAction();
    void applyKeyTorque();
    ArrowKey* arrowKey(int key);
    void serveKey(QKeyEvent* event);
    void takeOldMessageAway();

    void changeState(GameState from, GameState to);
    osg::MatrixTransform* guide();
    void hideGuide();
    void awaitRestPose(const Leap::Frame& frame);
    static bool detectScreenTap(const Leap::Frame& frame);
    void applyHandTilt(const Leap::Frame& frame);
    void drivePauseMenu(const Leap::Controller& controller);
    void driveEndMenu(const Leap::Controller& controller);
    void driveMenu(MenuHUD* menu, const Leap::Controller& controller);

    /// The lines of both menus, which own none.
    std::vector<std::unique_ptr<AbstractMenuItem>> menuItems;
    LevelAction pendingLevelAction = LevelAction::None;
    ArrowKey keyUp;
    ArrowKey keyDown;
    ArrowKey keyLeft;
    ArrowKey keyRight;

    /// The message is of a level before this one, and no sensor has spoken since.
    bool isMessageOld = false;
    /// The guide plate has been brought up by a frame; the sensor's thread alone looks here.
    bool isGuideUp = false;

    QPointer<OsgViewerWidget> widget;
};
