#pragma once

class QMouseEvent;
class QWheelEvent;

/// Hears of the widget's mouse events on the main thread. To accept an event ends its way through
/// the listeners.
class MouseListener
{
public:
    virtual ~MouseListener() = default;

    virtual void mousePressEvent(QMouseEvent* event) = 0;
    virtual void mouseReleaseEvent(QMouseEvent* event) = 0;
    virtual void mouseDoubleClickEvent(QMouseEvent* event) = 0;
    virtual void mouseMoveEvent(QMouseEvent* event) = 0;
    virtual void wheelEvent(QWheelEvent* event) = 0;
};
