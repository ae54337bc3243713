#pragma once

class QKeyEvent;

/// Hears of the widget's key events on the main thread. To accept an event ends its way through
/// the listeners.
class KeyListener
{
public:
    virtual ~KeyListener() = default;

    virtual void keyPressEvent(QKeyEvent* event) = 0;
    virtual void keyReleaseEvent(QKeyEvent* event) = 0;
};
