#pragma once

#include "frame/KeyListener.h"
#include "frame/MouseListener.h"
#include "physics/PhysxScene.h"
#include "sound/FmodScene.h"

#include <Leap.h>
#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>
#include <osgViewer/View>

#include <unordered_map>

/// What a game is made from: at once the viewer's view, the sensor's, keyboard's and mouse's
/// listener, the physics scene and the sound scene, so that a game object with a pointer to the
/// application reaches all of them. It knows no levels and no rules. Its life is that of the
/// reference which the viewer takes on its view side.
class GravlinApplication : public osgViewer::View,
                           public Leap::Listener,
                           public KeyListener,
                           public MouseListener,
                           public PhysxScene,
                           public FmodScene
{
public:
    GravlinApplication() = default;

    /// Makes `transform` show the actor of this id from the next tick on. An id without an actor is
    /// allowed: nothing then moves the transform. World lock held.
    void setActorTransform(unsigned int actorId, osg::MatrixTransform* transform);

    /// The game's own share of a tick, before the physics step. World lock held.
    virtual void update();

    /// Seconds that one tick advances the physics; real time unless a game decides otherwise.
    virtual float timeStep();

    /// Ticks a second.
    virtual int frameRate();

    /// Copies the pose of every actor to the transform that is registered for it. World lock held.
    virtual void syncTransforms();

    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

protected:
    ~GravlinApplication() override = default;

    osg::ref_ptr<osg::Group> sceneRoot;
    std::unordered_map<unsigned int, osg::ref_ptr<osg::MatrixTransform>> actorTransforms;
};
