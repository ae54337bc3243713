#include "HandPad.h"

#include "HandModel.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

// The view: millimetres to pixels, and how far the back of the pad is up the picture.
constexpr double scale = 0.65;
constexpr double depthToRight = 0.15;
constexpr double depthToUp = 0.45;
constexpr double heightToUp = 0.8;

constexpr int wheelNotch = 120;  // eighths of a degree

const QColor paper(250, 247, 240);
const QColor takenPaper(255, 252, 226);
const QColor ink(60, 50, 40);
const QColor grid(215, 208, 195);
const QColor skin(222, 170, 130);
const QColor wood(150, 105, 65);

bool looksTheSame(const PlayedHand& hand, const PlayedHand& other)
{
    return hand.isLeft == other.isLeft && hand.palm == other.palm && hand.pitch == other.pitch &&
           hand.yaw == other.yaw && hand.roll == other.roll && hand.tipOffset == other.tipOffset;
}

}  // namespace

HandPad::HandPad(QWidget* parent) : QWidget(parent)
{
    setMinimumSize(sizeHint());
    setCursor(Qt::PointingHandCursor);
}

QSize HandPad::sizeHint() const
{
    return QSize(330, 230);
}

bool HandPad::follow()
{
    const QPoint way = pointer.motion();
    hand.move(QVector2D(float(way.x()), float(-way.y())));
    return !way.isNull();
}

void HandPad::take()
{
    activateWindow();
    pointer.capture();
    hand.take();
    wheelTurn = 0;
    update();
    emit taken();
}

void HandPad::letGo()
{
    pointer.release();
    hand.letGo();
    update();
}

void HandPad::draw(const std::vector<PlayedHand>& sent)
{
    if (std::equal(sent.begin(), sent.end(), shown.begin(), shown.end(), looksTheSame))
        return;
    shown = sent;
    update();
}

void HandPad::mousePressEvent(QMouseEvent* event)
{
    if (!hand.isTaken()) {
        if (event->button() == Qt::LeftButton)
            take();
        return;
    }
    switch (event->button()) {
    case Qt::LeftButton:
        // The menu that comes leaves the board level; so the hand waits level for its end.
        hand.level();
        emit tapped();
        break;
    case Qt::RightButton:
        hand.raiseSecondHand(true);
        break;
    case Qt::MiddleButton:
        hand.level();
        break;
    default:
        break;
    }
}

// The second of two quick clicks is a click like any other.
void HandPad::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void HandPad::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton && hand.isTaken())
        hand.raiseSecondHand(false);
}

void HandPad::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (!hand.isTaken())
        return;
    // Towards the player, as one scrolls down a list, is down the menu.
    wheelTurn -= event->angleDelta().y();
    for (; wheelTurn >= wheelNotch; wheelTurn -= wheelNotch)
        emit circled(true);
    for (; wheelTurn <= -wheelNotch; wheelTurn += wheelNotch)
        emit circled(false);
}

void HandPad::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), hand.isTaken() ? takenPaper : paper);
    paintGround(painter);
    for (const PlayedHand& one : shown)
        paintHand(painter, one);
    painter.setPen(ink);
    if (hand.isTaken())
        painter.drawText(rect(), Qt::AlignHCenter | Qt::AlignTop, tr("Esc lets the mouse go"));
    else if (shown.empty())
        painter.drawText(rect(), Qt::AlignCenter,
                         tr("Click here, and the mouse is your hand,\nor touch a gamepad's stick"));
}

QPointF HandPad::project(const QVector3D& place) const
{
    const double right = place.x() - depthToRight * place.z();
    const double up = heightToUp * place.y() - depthToUp * place.z();
    return QPointF(0.5 * width() + scale * right, 0.78 * height() - scale * up);
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

void HandPad::paintHand(QPainter& painter, const PlayedHand& shownHand) const
{
    const QVector3D foot(shownHand.palm.x(), 0.0f, shownHand.palm.z());
    painter.setPen(QPen(grid.darker(120), 1.5, Qt::DashLine));
    painter.drawLine(project(shownHand.palm), project(foot));

    // The board that the hand stands for.
    const QQuaternion pose = shownHand.orientation();
    QPolygonF board;
    for (const QVector3D& corner : {QVector3D(-95, 0, -125), QVector3D(95, 0, -125),
                                    QVector3D(95, 0, 75), QVector3D(-95, 0, 75)})
        board << project(shownHand.palm + pose.rotatedVector(corner));
    QColor glass = wood;
    glass.setAlpha(50);
    painter.setPen(QPen(wood, 1.2));
    painter.setBrush(glass);
    painter.drawPolygon(board);

    QPolygonF palm;
    const QPen finger(skin, 13.0 * scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    const QPen outline(ink, 13.0 * scale + 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    std::vector<QPainterPath> fingers;
    for (int number = 0; number < fingerCount; ++number) {
        const auto joints = fingerJoints(shownHand, number);
        if (number == 0)
            palm << project(joints[0]);
        palm << project(joints[1]);
        QPainterPath path(project(joints[1]));
        for (std::size_t joint = 2; joint < joints.size(); ++joint)
            path.lineTo(project(joints[joint]));
        fingers.push_back(path);
    }
    palm << project(fingerJoints(shownHand, fingerCount - 1)[0]);
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
