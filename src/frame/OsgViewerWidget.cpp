#include "frame/OsgViewerWidget.h"

#include "frame/GameLoop.h"
#include "frame/KeyListener.h"
#include "frame/MouseListener.h"
#include "platform/osgqt/GraphicsWindowQt.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <limits>
#include <utility>

namespace {

bool isArrow(int key)
{
    return key == Qt::Key_Left || key == Qt::Key_Up || key == Qt::Key_Right || key == Qt::Key_Down;
}

/// Offers `event` to the listeners in order until one accepts it.
template <typename Listener, typename Event>
void offer(const std::list<Listener*>& listeners, void (Listener::*handler)(Event*), Event* event)
{
    event->ignore();
    for (Listener* listener : listeners) {
        if (event->isAccepted())
            return;
        (listener->*handler)(event);
    }
}

}  // namespace

bool isSoftwareRenderer(const char* name)
{
    if (!name)
        return false;
    const QString driver = name;
    for (const char* const known : {"llvmpipe", "softpipe", "swrast", "software rasterizer"})
        if (driver.contains(known, Qt::CaseInsensitive))
            return true;
    return false;
}

OsgViewerWidget::OsgViewerWidget() : osgQt::GLWidget(nullptr, nullptr, Qt::WindowFlags(), false)
{
    setWindowTitle("Rollix");
    setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    setKeyEventSetsDone(0);

    osg::ref_ptr<osgQt::GraphicsWindowQt> window = new osgQt::GraphicsWindowQt(this);
    window->getState()->setUseModelViewAndProjectionUniforms(true);
    window->getState()->setUseVertexAttributeAliasing(true);
}

OsgViewerWidget::~OsgViewerWidget()
{
    // A view that listens takes itself off the lists as it goes.
    while (getNumViews() > 0)
        removeView(getView(0));
    mouseListeners.clear();
    keyListeners.clear();
}

bool OsgViewerWidget::drawsInSoftware()
{
    osgQt::GLWidget::makeCurrent();
    const bool software =
        isSoftwareRenderer(reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    osgQt::GLWidget::doneCurrent();
    return software;
}

void OsgViewerWidget::addKeyListener(KeyListener* listener)
{
    keyListeners.push_back(listener);
}

void OsgViewerWidget::addMouseListener(MouseListener* listener)
{
    mouseListeners.push_back(listener);
}

void OsgViewerWidget::removeKeyListener(KeyListener* listener)
{
    keyListeners.remove(listener);
}

void OsgViewerWidget::removeMouseListener(MouseListener* listener)
{
    mouseListeners.remove(listener);
}

void OsgViewerWidget::paintEvent(QPaintEvent*)
{
    // The sensor's thread may be at work on a menu: a resize lays out the same lines.
    const GameLoop::Lock worldLock;
    frame(std::numeric_limits<double>::max());
}

bool OsgViewerWidget::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::Resize:
    case QEvent::Move:
    case QEvent::ScreenChangeInternal: {
        // The sensor's thread may be turning a camera.
        const GameLoop::Lock worldLock;
        return osgQt::GLWidget::event(event);
    }
    default:
        return osgQt::GLWidget::event(event);
    }
}

void OsgViewerWidget::keyPressEvent(QKeyEvent* event)
{
    const quint32 scanCode = event->nativeScanCode();
    // A key that repeats while shift comes down stays the key that was pressed.
    if (scanCode != 0 && !event->isAutoRepeat()) {
        pressedKeys[scanCode] = event->key();
        lostKeys.remove(scanCode);
    }
    osgQt::GLWidget::keyPressEvent(event);
    event->ignore();
    // It was pressed before the focus came: if that goes again, nobody lets go of it.
    if (scanCode != 0 && !pressedKeys.contains(scanCode))
        return;
    offer(keyListeners, &KeyListener::keyPressEvent, event);
}

void OsgViewerWidget::keyReleaseEvent(QKeyEvent* event)
{
    osgQt::GLWidget::keyReleaseEvent(event);
    event->ignore();
    const quint32 scanCode = event->nativeScanCode();
    if (lostKeys.contains(scanCode)) {
        if (!event->isAutoRepeat())
            lostKeys.remove(scanCode);
        return;
    }
    // Whoever lets go of shift first releases another key than was pressed; the press decides.
    const int pressedKey = pressedKeys.value(scanCode, event->key());
    if (!event->isAutoRepeat())
        pressedKeys.remove(scanCode);
    if (pressedKey == Qt::Key_F11) {
        // A key that is held down repeats; only its true release toggles.
        if (!event->isAutoRepeat()) {
            if (isFullScreen())
                showNormal();
            else
                showFullScreen();
        }
        event->accept();
        return;
    }
    QKeyEvent release(QEvent::KeyRelease, pressedKey, event->modifiers(), event->text(),
                      event->isAutoRepeat());
    offer(keyListeners, &KeyListener::keyReleaseEvent, &release);
    event->setAccepted(release.isAccepted());
}

void OsgViewerWidget::focusOutEvent(QFocusEvent* event)
{
    osgQt::GLWidget::focusOutEvent(event);
    // The true releases go to another window, or come here when they mean nothing any more.
    const QHash<quint32, int> held = std::exchange(pressedKeys, {});
    for (auto key = held.constBegin(); key != held.constEnd(); ++key) {
        lostKeys.insert(key.key());
        QKeyEvent release(QEvent::KeyRelease, key.value(), Qt::NoModifier);
        osgQt::GLWidget::keyReleaseEvent(&release);
        if (isArrow(key.value()))
            offer(keyListeners, &KeyListener::keyReleaseEvent, &release);
    }
}

void OsgViewerWidget::mousePressEvent(QMouseEvent* event)
{
    osgQt::GLWidget::mousePressEvent(event);
    offer(mouseListeners, &MouseListener::mousePressEvent, event);
}

void OsgViewerWidget::mouseReleaseEvent(QMouseEvent* event)
{
    osgQt::GLWidget::mouseReleaseEvent(event);
    offer(mouseListeners, &MouseListener::mouseReleaseEvent, event);
}

void OsgViewerWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    osgQt::GLWidget::mouseDoubleClickEvent(event);
    offer(mouseListeners, &MouseListener::mouseDoubleClickEvent, event);
}

void OsgViewerWidget::mouseMoveEvent(QMouseEvent* event)
{
    osgQt::GLWidget::mouseMoveEvent(event);
    offer(mouseListeners, &MouseListener::mouseMoveEvent, event);
}

void OsgViewerWidget::wheelEvent(QWheelEvent* event)
{
    osgQt::GLWidget::wheelEvent(event);
    offer(mouseListeners, &MouseListener::wheelEvent, event);
}
