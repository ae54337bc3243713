#include "platform/osgqt/GraphicsWindowQt.h"

#include "platform/osgqt/GLWidget.h"

#include <QCursor>

namespace osgQt {

GraphicsWindowQt::GraphicsWindowQt(GLWidget* glWidget) : widget(glWidget)
{
    const qreal ratio = widget->devicePixelRatioF();
    const QGLFormat format = widget->format();
    _traits = new osg::GraphicsContext::Traits;
    _traits->x = qRound(widget->x() * ratio);
    _traits->y = qRound(widget->y() * ratio);
    // Not yet in device pixels: a camera is taken to fill the window, and follows its size, only if
    // its viewport is no smaller, and a first viewport knows nothing of the screen. The size comes
    // right when the widget is shown.
    _traits->width = widget->width();
    _traits->height = widget->height();
    _traits->red = format.redBufferSize() > 0 ? format.redBufferSize() : 8;
    _traits->green = format.greenBufferSize() > 0 ? format.greenBufferSize() : 8;
    _traits->blue = format.blueBufferSize() > 0 ? format.blueBufferSize() : 8;
    _traits->depth = format.depth() ? 24 : 0;
    _traits->stencil = format.stencil() ? 8 : 0;
    _traits->samples = format.sampleBuffers() ? format.samples() : 0;
    _traits->doubleBuffer = format.doubleBuffer();

    setState(new osg::State);
    getState()->setGraphicsContext(this);
    getState()->setContextID(osg::GraphicsContext::createNewContextID());

    widget->graphicsWindow = this;
    getEventQueue()->syncWindowRectangleWithGraphicsContext();
}

GLWidget* GraphicsWindowQt::getGLWidget() const
{
    return widget;
}

bool GraphicsWindowQt::valid() const
{
    return widget && widget->isValid();
}

bool GraphicsWindowQt::realizeImplementation()
{
    realized = valid();
    return realized;
}

bool GraphicsWindowQt::isRealizedImplementation() const
{
    return realized;
}

void GraphicsWindowQt::closeImplementation()
{
    realized = false;
}

bool GraphicsWindowQt::makeCurrentImplementation()
{
    if (!valid())
        return false;
    widget->makeCurrent();
    return true;
}

bool GraphicsWindowQt::releaseContextImplementation()
{
    if (!valid())
        return false;
    widget->doneCurrent();
    return true;
}

void GraphicsWindowQt::swapBuffersImplementation()
{
    if (valid())
        widget->swapBuffers();
}

bool GraphicsWindowQt::setWindowRectangleImplementation(int x, int y, int width, int height)
{
    if (!widget)
        return false;
    const qreal ratio = widget->devicePixelRatioF();
    widget->setGeometry(qRound(x / ratio), qRound(y / ratio), qRound(width / ratio),
                        qRound(height / ratio));
    return true;
}

void GraphicsWindowQt::grabFocus()
{
    if (widget)
        widget->setFocus(Qt::ActiveWindowFocusReason);
}

void GraphicsWindowQt::grabFocusIfPointerInWindow()
{
    if (widget && widget->underMouse())
        grabFocus();
}

void GraphicsWindowQt::raiseWindow()
{
    if (widget)
        widget->raise();
}

void GraphicsWindowQt::requestWarpPointer(float x, float y)
{
    if (!widget)
        return;
    const qreal ratio = widget->devicePixelRatioF();
    QCursor::setPos(widget->mapToGlobal(QPoint(qRound(x / ratio), qRound(y / ratio))));
}

}  // namespace osgQt
