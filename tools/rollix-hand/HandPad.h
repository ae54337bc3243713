#pragma once

#include "PlayedHand.h"

#include <QWidget>

#include <vector>

/// The place over the sensor, seen from the player's side and a little from above. The mouse is the
/// hand: where it goes, the ball is to roll. The wheel lifts and lowers it.
class HandPad : public QWidget
{
    Q_OBJECT

public:
    explicit HandPad(QWidget* parent = nullptr);

    /// The hands as the mouse and the switches have them now; the first one is the right hand.
    std::vector<PlayedHand> hands() const;
    /// What is drawn: the hands as they were sent, fingers in motion included.
    void draw(const std::vector<PlayedHand>& sent);

    void setHandPresent(bool present);
    void setSecondHand(bool present);
    bool hasSecondHand() const { return secondHand; }

    QSize sizeHint() const override;

signals:
    void changed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QPointF project(const QVector3D& place) const;
    void paintGround(QPainter& painter) const;
    void paintHand(QPainter& painter, const PlayedHand& hand) const;

    std::vector<PlayedHand> shown;
    bool handPresent = true;
    bool secondHand = false;
    QPointF mouse;              // -1 to 1 in both directions, up is positive
    float palmHeight = 200.0f;  // mm
    int handNumber = 1;         // a hand that comes back is a new one for the service
};
