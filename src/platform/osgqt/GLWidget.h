#pragma once

#include <QGLWidget>
#include <osg/ref_ptr>

namespace osgQt {

class GraphicsWindowQt;

/// A Qt widget with an OpenGL context of its own that OpenSceneGraph draws into. It translates
/// Qt's size, key and mouse events into the event queue of its graphics window, in device
/// pixels. Main thread only.
class GLWidget : public QGLWidget
{
    Q_OBJECT

public:
    /// Asks for depth, stencil and four samples a pixel. With `forwardKeyEvents` the key events go
    /// on to QGLWidget after they have been queued.
    GLWidget(QWidget* parent, const QGLWidget* shareWidget, Qt::WindowFlags flags,
             bool forwardKeyEvents);
    ~GLWidget() override;

    /// The window that draws here; null until one has been made on this widget. The widget keeps
    /// it alive.
    GraphicsWindowQt* getGraphicsWindow() const;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    friend class GraphicsWindowQt;

    void sizeChanged();

    osg::ref_ptr<GraphicsWindowQt> graphicsWindow;
    bool forwardKeyEvents;
};

}  // namespace osgQt
