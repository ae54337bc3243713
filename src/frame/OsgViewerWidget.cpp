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

OsgViewerWidget::OsgViewerWidget()
    : osgQt::GLWidget(nullptr, nullptr, Qt::WindowFlags(), false), osgViewer::CompositeViewer()
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
    mouseListeners.clear();
    keyListeners.clear();
}

void OsgViewerWidget::addKeyListener(KeyListener* listener)
{
    keyListeners.push_back(listener);
}

void OsgViewerWidget::addMouseListener(MouseListener* listener)
{
    mouseListeners.push_back(listener);
}

void OsgViewerWidget::paintEvent(QPaintEvent*)
{
    // The sensor's thread may be at work on a menu: a resize lays out the same lines.
    const GameLoop::Lock worldLock;
    frame(std::numeric_limits<double>::max());
}

void OsgViewerWidget::keyPressEvent(QKeyEvent* event)
{
    // An event of a program's own making has no scan code. A key that repeats while shift comes
    // down stays the key that was pressed.
    if (event->nativeScanCode() != 0 && !event->isAutoRepeat())
        pressedKeys[event->nativeScanCode()] = event->key();
    osgQt::GLWidget::keyPressEvent(event);
    offer(keyListeners, &KeyListener::keyPressEvent, event);
}

void OsgViewerWidget::keyReleaseEvent(QKeyEvent* event)
{
    osgQt::GLWidget::keyReleaseEvent(event);
    event->ignore();
    // Whoever lets go of shift first releases another key than was pressed; the press decides.
    const quint32 scanCode = event->nativeScanCode();
    const int pressedKey = scanCode != 0 ? pressedKeys.value(scanCode, event->key()) : event->key();
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
    // Whoever leaves the window lets go of its keys: their true releases go to another one.
    const QHash<quint32, int> held = std::exchange(pressedKeys, {});
    for (const int key : held) {
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
        keyReleaseEvent(&release);
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
