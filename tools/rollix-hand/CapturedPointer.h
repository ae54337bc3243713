#pragma once

#include <QPoint>

class QWidget;

/// The pointer as a thing that only moves: captured by a widget it is hidden and kept there, and no
/// edge of the screen ends its way.
class CapturedPointer
{
public:
    /// The widget outlives this.
    explicit CapturedPointer(QWidget& owner) : widget(owner) {}

    void capture();
    /// Where it was captured, it comes to light again.
    void release();
    bool isCaptured() const { return captured; }

    /// Pixels to the right and down since this was last asked.
    QPoint motion();

private:
    QPoint home() const;
    void goHome();

    QWidget& widget;
    bool captured = false;
    QPoint last;
};
