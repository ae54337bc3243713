#include "HandWindow.h"

#include "HandPad.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

HandWindow::HandWindow(SensorServer& server_)
    : server(server_),
      handPad(new HandPad),
      handSwitch(new QCheckBox(tr("&Hand over the sensor"))),
      secondHandSwitch(new QCheckBox(tr("&Second hand: steer the camera"))),
      clients(new QLabel)
{
    setWindowTitle(tr("Rollix hand"));

    handSwitch->setChecked(true);
    handSwitch->setToolTip(tr("Takes the hand away, and brings it back"));
    secondHandSwitch->setToolTip(
        tr("With both hands, left and right turn the camera, and the wheel lifts it"));
    auto* tap = gestureButton(tr("&Tap"), Qt::Key_T, tr("Opens the menu, and picks its line"));
    auto* next = gestureButton(tr("&Circle: next line"), Qt::Key_C, tr("Clockwise"));
    auto* previous =
        gestureButton(tr("Circle &back: line before"), Qt::Key_B, tr("Against the clock"));

    auto* hint = new QLabel(tr("Mouse: tilt.  Wheel: height.  Keys: H, S, T, C, B."));
    auto* layout = new QGridLayout(this);
    layout->addWidget(handPad, 0, 0, 1, 3);
    layout->addWidget(hint, 1, 0, 1, 3);
    layout->addWidget(handSwitch, 2, 0);
    layout->addWidget(secondHandSwitch, 2, 1, 1, 2);
    layout->addWidget(tap, 3, 0);
    layout->addWidget(next, 3, 1);
    layout->addWidget(previous, 3, 2);
    layout->addWidget(clients, 4, 0, 1, 3);
    layout->setRowStretch(0, 1);

    keys[Qt::Key_H] = handSwitch;
    keys[Qt::Key_S] = secondHandSwitch;
    connect(handSwitch, &QCheckBox::toggled, handPad, &HandPad::setHandPresent);
    connect(secondHandSwitch, &QCheckBox::toggled, handPad, &HandPad::setSecondHand);
    connect(
        tap, &QPushButton::clicked, this, [this] { server.player().tap(); });
    connect(
        next, &QPushButton::clicked, this, [this] { server.player().circle(1.0, true); });
    connect(previous, &QPushButton::clicked, this, [this] { server.player().circle(1.0, false); });
    connect(handPad, &HandPad::changed, this, &HandWindow::updateHands);
    connect(&server, &SensorServer::frameSent, this,
            [this] { handPad->draw(server.player().hands); });
    connect(&server, &SensorServer::clientsChanged, this, &HandWindow::showClients);

    updateHands();
    showClients();
}

QPushButton* HandWindow::gestureButton(const QString& text, Qt::Key key, const QString& hint)
{
    auto* button = new QPushButton(text);
    keys[key] = button;
    button->setToolTip(hint);
    return button;
}

// Plain keys and no shortcuts: these would need a window manager that makes the window active.
void HandWindow::keyPressEvent(QKeyEvent* event)
{
    const auto button = keys.find(event->key());
    if (button != keys.end() && !event->isAutoRepeat())
        button->second->click();
    else
        QWidget::keyPressEvent(event);
}

// The finger's way through a gesture belongs to the player; all the rest comes from the pad.
void HandWindow::updateHands()
{
    std::vector<PlayedHand> hands = handPad->hands();
    const auto& moving = server.player().hands;
    if (!hands.empty() && !moving.empty())
        hands[0].tipOffset = moving[0].tipOffset;
    server.player().hands = hands;
}

void HandWindow::showClients()
{
    const QString served = tr("Sensor service on 127.0.0.1:%1. ").arg(server.port());
    clients->setText(served + (server.clientCount() == 0 ? tr("No program is connected.")
                                                         : tr("A program takes the hand.")));
}
