#include "HandPad.h"

#include "HandModel.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr float farthestTilt = 0.6f;  // radians, a little over the board's own limit
constexpr float farthestYaw = 0.7f;
constexpr float lowest = 60.0f;  // mm
constexpr float highest = 450.0f;
constexpr float heightPerNotch = 15.0f;
constexpr float betweenHands = 110.0f;  // from the sensor's middle to either hand

// The view: millimetres to pixels, and how far the back of the pad is up the picture.
constexpr double scale = 1.0;
constexpr double depthToRight = 0.15;
constexpr double depthToUp = 0.45;
constexpr double heightToUp = 0.8;

const QColor paper(250, 247, 240);
const QColor ink(60, 50, 40);
const QColor grid(215, 208, 195);
const QColor skin(222, 170, 130);
const QColor wood(150, 105, 65);

}  // namespace

HandPad::HandPad(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
    setMinimumSize(sizeHint());
}

QSize HandPad::sizeHint() const
{
    return QSize(560, 440);
}

std::vector<PlayedHand> HandPad::hands() const
{
    if (!handPresent)
        return {};
    PlayedHand right;
    right.id = handNumber;
    right.palm.setY(palmHeight);
    const auto x = float(mouse.x());
    const auto y = float(mouse.y());
    if (!secondHand) {
        // The ball rolls to the mouse: down where it is.
        right.roll = -farthestTilt * x;
        right.pitch = -farthestTilt * y;
        return {right};
    }
    right.yaw = farthestYaw * x;
    right.palm.setX(betweenHands);
    PlayedHand left = right;
    left.id = handNumber + 1;
    left.isLeft = true;
    left.palm.setX(-betweenHands);
    return {right, left};
}

void HandPad::draw(const std::vector<PlayedHand>& sent)
{
    shown = sent;
    update();
}

void HandPad::setHandPresent(bool present)
{
    if (present && !handPresent)
        handNumber += 2;
    handPresent = present;
    emit changed();
}

void HandPad::setSecondHand(bool present)
{
    secondHand = present;
    emit changed();
}

void HandPad::mouseMoveEvent(QMouseEvent* event)
{
    const auto part = [](double at, int size) {
        return std::clamp(2.0 * at / std::max(size, 1) - 1.0, -1.0, 1.0);
    };
    mouse = QPointF(part(event->localPos().x(), width()), -part(event->localPos().y(), height()));
    emit changed();
}

// A mouse that goes for a button leaves a level hand behind, not one that tilts for ever.
void HandPad::leaveEvent(QEvent*)
{
    mouse = QPointF();
    emit changed();
}

void HandPad::wheelEvent(QWheelEvent* event)
{
    constexpr float notch = 120.0f;
    const auto notches = float(event->angleDelta().y()) / notch;
    palmHeight = std::clamp(palmHeight + notches * heightPerNotch, lowest, highest);
    event->accept();
    emit changed();
}

void HandPad::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), paper);
    paintGround(painter);
    for (const PlayedHand& hand : shown)
        paintHand(painter, hand);
    if (shown.empty()) {
        painter.setPen(ink);
        painter.drawText(rect(), Qt::AlignCenter, tr("No hand over the sensor"));
    }
}

QPointF HandPad::project(const QVector3D& place) const
{
    const double right = place.x() - depthToRight * place.z();
    const double up = heightToUp * place.y() - depthToUp * place.z();
    return QPointF(0.5 * width() + scale * right, 0.82 * height() - scale * up);
}

void HandPad::paintGround(QPainter& painter) const
{
    constexpr int reach = 150;
    constexpr int cell = 50;
    painter.setPen(QPen(grid, 1.0));
    for (int at = -reach; at <= reach; at += cell) {
        const auto line = float(at);
        painter.drawLine(project({line, 0, -reach}), project({line, 0, reach}));
        painter.drawLine(project({-reach, 0, line}), project({reach, 0, line}));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawPolygon(QPolygonF({project({-40, 0, -14}), project({40, 0, -14}),
                                   project({40, 0, 14}), project({-40, 0, 14})}));
}

void HandPad::paintHand(QPainter& painter, const PlayedHand& hand) const
{
    const QVector3D foot(hand.palm.x(), 0.0f, hand.palm.z());
    painter.setPen(QPen(grid.darker(120), 1.5, Qt::DashLine));
    painter.drawLine(project(hand.palm), project(foot));

    // The board that the hand stands for.
    const QQuaternion pose = hand.orientation();
    QPolygonF board;
    for (const QVector3D& corner : {QVector3D(-95, 0, -125), QVector3D(95, 0, -125),
                                    QVector3D(95, 0, 75), QVector3D(-95, 0, 75)})
        board << project(hand.palm + pose.rotatedVector(corner));
    QColor glass = wood;
    glass.setAlpha(50);
    painter.setPen(QPen(wood, 1.5));
    painter.setBrush(glass);
    painter.drawPolygon(board);

    QPolygonF palm;
    const QPen finger(skin, 13.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    const QPen outline(ink, 16.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    std::vector<QPainterPath> fingers;
    for (int number = 0; number < fingerCount; ++number) {
        const auto joints = fingerJoints(hand, number);
        if (number == 0)
            palm << project(joints[0]);
        palm << project(joints[1]);
        QPainterPath path(project(joints[1]));
        for (std::size_t joint = 2; joint < joints.size(); ++joint)
            path.lineTo(project(joints[joint]));
        fingers.push_back(path);
    }
    palm << project(fingerJoints(hand, fingerCount - 1)[0]);
    QPainterPath whole;
    whole.addPolygon(palm);
    whole.closeSubpath();

    painter.setBrush(Qt::NoBrush);
    for (const QPen& pen : {outline, finger}) {
        painter.setPen(pen);
        painter.setBrush(pen.color());
        painter.drawPath(whole);
        painter.setBrush(Qt::NoBrush);
        for (const QPainterPath& path : fingers)
            painter.drawPath(path);
    }
}
