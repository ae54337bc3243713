#pragma once

#include "CapturedPointer.h"
#include "PlayedHand.h"
#include "PointerHand.h"

#include <QWidget>

#include <vector>

/// The place over the sensor, seen from the player's side and a little from above. A click on it
/// makes the pointer a hand until it is let go.
class HandPad : public QWidget
{
    Q_OBJECT

public:
    explicit HandPad(QWidget* parent = nullptr);

    PointerHand& pointerHand() { return hand; }
    /// Moves the hand as the pointer has moved since this was last called; whether it has.
    bool follow();
    void letGo();

    /// What is drawn: the hands as they were sent, fingers in motion included.
    void draw(const std::vector<PlayedHand>& sent);

    QSize sizeHint() const override;

signals:
    void taken();
    void tapped();
    void circled(bool clockwise);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void take();
    QPointF project(const QVector3D& place) const;
    void paintGround(QPainter& painter) const;
    void paintHand(QPainter& painter, const PlayedHand& shownHand) const;

    PointerHand hand;
    CapturedPointer pointer{*this};
    int wheelTurn = 0;  // eighths of a degree that are not yet a notch
    std::vector<PlayedHand> shown;
};
