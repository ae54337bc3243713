#include "CapturedPointer.h"

#include <QCursor>
#include <QWidget>

void CapturedPointer::capture()
{
    captured = true;
    widget.grabMouse(Qt::BlankCursor);
    goHome();
}

void CapturedPointer::release()
{
    if (!captured)
        return;
    captured = false;
    widget.releaseMouse();
}

// By asking where the pointer is: the events that tell of it also tell of the way home, and stale
// ones come after that.
QPoint CapturedPointer::motion()
{
    if (!captured)
        return {};
    const QPoint way = QCursor::pos() - last;
    if (!way.isNull())
        goHome();
    return way;
}

QPoint CapturedPointer::home() const
{
    return widget.mapToGlobal(widget.rect().center());
}

// Where a display lets nobody move the pointer, it goes on from where it is.
void CapturedPointer::goHome()
{
    QCursor::setPos(home());
    last = QCursor::pos();
}
