#pragma once

#include <QPointer>
#include <osgViewer/GraphicsWindow>

namespace osgQt {

class GLWidget;

/// The graphics context of a GLWidget, as OpenSceneGraph wants to see it. It uses the widget's one
/// OpenGL context and makes none. A window whose widget has gone is not valid and draws nothing.
class GraphicsWindowQt : public osgViewer::GraphicsWindow
{
public:
    /// Makes the window and gives it to `widget`, which holds it from then on.
    explicit GraphicsWindowQt(GLWidget* widget);

    GLWidget* getGLWidget() const;

    bool valid() const override;
    bool realizeImplementation() override;
    bool isRealizedImplementation() const override;
    void closeImplementation() override;
    bool makeCurrentImplementation() override;
    bool releaseContextImplementation() override;
    void swapBuffersImplementation() override;

    bool setWindowRectangleImplementation(int x, int y, int width, int height) override;
    void grabFocus() override;
    void grabFocusIfPointerInWindow() override;
    void raiseWindow() override;
    void requestWarpPointer(float x, float y) override;

private:
    QPointer<GLWidget> widget;
    bool realized = false;
};

}  // namespace osgQt
