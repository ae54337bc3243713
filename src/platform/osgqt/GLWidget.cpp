#include "platform/osgqt/GLWidget.h"

#include "platform/osgqt/GraphicsWindowQt.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <osgGA/EventQueue>

namespace osgQt {

namespace {

constexpr int samplesPerPixel = 4;

QGLFormat windowFormat()
{
    QGLFormat format = QGLFormat::defaultFormat();
    format.setDoubleBuffer(true);
    format.setDepth(true);
    format.setStencil(true);
    format.setSampleBuffers(true);
    format.setSamples(samplesPerPixel);
    // The tick is the only clock of the world: a swap that waits for the screen would slow it.
    format.setSwapInterval(0);
    return format;
}

struct KeyPair
{
    int qtKey;
    int osgKey;
};

constexpr KeyPair specialKeys[] = {
    {Qt::Key_Escape, osgGA::GUIEventAdapter::KEY_Escape},
    {Qt::Key_Delete, osgGA::GUIEventAdapter::KEY_Delete},
    {Qt::Key_Home, osgGA::GUIEventAdapter::KEY_Home},
    {Qt::Key_Enter, osgGA::GUIEventAdapter::KEY_KP_Enter},
    {Qt::Key_Return, osgGA::GUIEventAdapter::KEY_Return},
    {Qt::Key_End, osgGA::GUIEventAdapter::KEY_End},
    {Qt::Key_Backspace, osgGA::GUIEventAdapter::KEY_BackSpace},
    {Qt::Key_Tab, osgGA::GUIEventAdapter::KEY_Tab},
    {Qt::Key_Left, osgGA::GUIEventAdapter::KEY_Left},
    {Qt::Key_Right, osgGA::GUIEventAdapter::KEY_Right},
    {Qt::Key_Up, osgGA::GUIEventAdapter::KEY_Up},
    {Qt::Key_Down, osgGA::GUIEventAdapter::KEY_Down},
    {Qt::Key_PageUp, osgGA::GUIEventAdapter::KEY_Page_Up},
    {Qt::Key_PageDown, osgGA::GUIEventAdapter::KEY_Page_Down},
    {Qt::Key_Shift, osgGA::GUIEventAdapter::KEY_Shift_L},
    {Qt::Key_Control, osgGA::GUIEventAdapter::KEY_Control_L},
    {Qt::Key_Alt, osgGA::GUIEventAdapter::KEY_Alt_L},
    {Qt::Key_Meta, osgGA::GUIEventAdapter::KEY_Super_L},
    {Qt::Key_CapsLock, osgGA::GUIEventAdapter::KEY_Caps_Lock},
};

int osgKey(const QKeyEvent& event)
{
    if (event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F35)
        return osgGA::GUIEventAdapter::KEY_F1 + (event.key() - Qt::Key_F1);
    for (const KeyPair& pair : specialKeys)
        if (pair.qtKey == event.key())
            return pair.osgKey;
    return event.text().isEmpty() ? event.key() : event.text().at(0).unicode();
}

unsigned int osgModifiers(Qt::KeyboardModifiers modifiers)
{
    unsigned int mask = 0;
    if (modifiers & Qt::ShiftModifier)
        mask |= osgGA::GUIEventAdapter::MODKEY_SHIFT;
    if (modifiers & Qt::ControlModifier)
        mask |= osgGA::GUIEventAdapter::MODKEY_CTRL;
    if (modifiers & Qt::AltModifier)
        mask |= osgGA::GUIEventAdapter::MODKEY_ALT;
    return mask;
}

unsigned int osgButton(Qt::MouseButton button)
{
    switch (button) {
    case Qt::LeftButton:
        return 1;
    case Qt::MiddleButton:
        return 2;
    case Qt::RightButton:
        return 3;
    default:
        return 0;
    }
}

}  // namespace

GLWidget::GLWidget(QWidget* parent, const QGLWidget* shareWidget, Qt::WindowFlags flags,
                   bool forwardKeys)
    : QGLWidget(windowFormat(), parent, shareWidget, flags), forwardKeyEvents(forwardKeys)
{
    // OpenSceneGraph swaps the buffers itself.
    setAutoBufferSwap(false);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

GLWidget::~GLWidget()
{
    // The scene's OpenGL objects go while the context still stands.
    if (graphicsWindow)
        graphicsWindow->close();
}

GraphicsWindowQt* GLWidget::getGraphicsWindow() const
{
    return graphicsWindow.get();
}

bool GLWidget::event(QEvent* event)
{
    const bool result = QGLWidget::event(event);
    // A window that moves to a screen of another pixel ratio has another size in device pixels.
    if (event->type() == QEvent::ScreenChangeInternal)
        sizeChanged();
    return result;
}

void GLWidget::sizeChanged()
{
    if (!graphicsWindow)
        return;
    const qreal ratio = devicePixelRatioF();
    const int deviceX = qRound(x() * ratio);
    const int deviceY = qRound(y() * ratio);
    const int deviceWidth = qMax(1, qRound(width() * ratio));
    const int deviceHeight = qMax(1, qRound(height() * ratio));
    graphicsWindow->resized(deviceX, deviceY, deviceWidth, deviceHeight);
    graphicsWindow->getEventQueue()->windowResize(deviceX, deviceY, deviceWidth, deviceHeight);
    graphicsWindow->requestRedraw();
}

void GLWidget::resizeEvent(QResizeEvent*)
{
    sizeChanged();
}

void GLWidget::moveEvent(QMoveEvent* event)
{
    if (!graphicsWindow)
        return;
    const qreal ratio = devicePixelRatioF();
    const osg::GraphicsContext::Traits* traits = graphicsWindow->getTraits();
    graphicsWindow->resized(qRound(event->pos().x() * ratio), qRound(event->pos().y() * ratio),
                            traits->width, traits->height);
}

void GLWidget::keyPressEvent(QKeyEvent* event)
{
    if (graphicsWindow) {
        osgGA::EventQueue* queue = graphicsWindow->getEventQueue();
        queue->getCurrentEventState()->setModKeyMask(osgModifiers(event->modifiers()));
        queue->keyPress(osgKey(*event));
    }
    if (forwardKeyEvents)
        QGLWidget::keyPressEvent(event);
}

void GLWidget::keyReleaseEvent(QKeyEvent* event)
{
    if (graphicsWindow && !event->isAutoRepeat()) {
        osgGA::EventQueue* queue = graphicsWindow->getEventQueue();
        queue->getCurrentEventState()->setModKeyMask(osgModifiers(event->modifiers()));
        queue->keyRelease(osgKey(*event));
    }
    if (forwardKeyEvents)
        QGLWidget::keyReleaseEvent(event);
}

void GLWidget::mousePressEvent(QMouseEvent* event)
{
    if (!graphicsWindow)
        return;
    const QPointF position = event->localPos() * devicePixelRatioF();
    graphicsWindow->getEventQueue()->mouseButtonPress(float(position.x()), float(position.y()),
                                                      osgButton(event->button()));
}

void GLWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (!graphicsWindow)
        return;
    const QPointF position = event->localPos() * devicePixelRatioF();
    graphicsWindow->getEventQueue()->mouseButtonRelease(float(position.x()), float(position.y()),
                                                        osgButton(event->button()));
}

void GLWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (!graphicsWindow)
        return;
    const QPointF position = event->localPos() * devicePixelRatioF();
    graphicsWindow->getEventQueue()->mouseDoubleButtonPress(
        float(position.x()), float(position.y()), osgButton(event->button()));
}

void GLWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (!graphicsWindow)
        return;
    const QPointF position = event->localPos() * devicePixelRatioF();
    graphicsWindow->getEventQueue()->mouseMotion(float(position.x()), float(position.y()));
}

void GLWidget::wheelEvent(QWheelEvent* event)
{
    if (!graphicsWindow)
        return;
    const QPoint delta = event->angleDelta();
    if (delta.y() != 0) {
        graphicsWindow->getEventQueue()->mouseScroll(delta.y() > 0
                                                         ? osgGA::GUIEventAdapter::SCROLL_UP
                                                         : osgGA::GUIEventAdapter::SCROLL_DOWN);
    } else if (delta.x() != 0) {
        graphicsWindow->getEventQueue()->mouseScroll(delta.x() > 0
                                                         ? osgGA::GUIEventAdapter::SCROLL_LEFT
                                                         : osgGA::GUIEventAdapter::SCROLL_RIGHT);
    }
}

}  // namespace osgQt
