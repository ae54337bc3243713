#pragma once

#include "platform/osgqt/GLWidget.h"

#include <QHash>
#include <QSet>
#include <osgViewer/CompositeViewer>

#include <list>

class KeyListener;
class MouseListener;

/// Whether a driver of that name (GL_RENDERER) draws without a graphics card. False for null.
bool isSoftwareRenderer(const char* name);

/// The program's one window: an OpenGL widget that is at the same time an OpenSceneGraph viewer.
/// It draws the views that are added to it on the main thread, and passes key and mouse events on
/// to listeners. F11 belongs to the window itself: it toggles full screen.
class OsgViewerWidget : public osgQt::GLWidget, public osgViewer::CompositeViewer
{
    Q_OBJECT

public:
    OsgViewerWidget();
    ~OsgViewerWidget() override;

    /// Whether the processor does the drawing, where every pixel costs. Not while a frame is drawn.
    bool drawsInSoftware();

    /// Appends; a listener added twice stands twice. Listeners are not owned.
    void addKeyListener(KeyListener* listener);
    void addMouseListener(MouseListener* listener);

    /// Takes the listener away wherever it stands; one that stands nowhere is fine. Not to be
    /// called by a listener while it hears of an event.
    void removeKeyListener(KeyListener* listener);
    void removeMouseListener(MouseListener* listener);

protected:
    /// Renders one frame outside the tick, for an expose or a resize.
    void paintEvent(QPaintEvent* event) override;

    /// Takes the world lock for what changes the cameras: a new size, place or screen.
    bool event(QEvent* event) override;

    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    /// Lets go of the arrow keys that are down. Whatever else is down then, commands and F11, does
    /// nothing when it is released.
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    std::list<KeyListener*> keyListeners;
    std::list<MouseListener*> mouseListeners;

    /// What the keys that are down meant when they were pressed, by scan code. An event of a
    /// program's own making has none, and leaves nothing here.
    QHash<quint32, int> pressedKeys;
    /// Scan codes of what was down when the focus went, until they are pressed or released.
    QSet<quint32> lostKeys;
};
