#include "HandWindow.h"

#include "HandPad.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace {

// Of a wheel that was spun, what is worth doing: a menu has four lines.
constexpr int mostGestures = 3;

QString legend()
{
    const auto row = [](const QString& what, const QString& mouse, const QString& gamepad) {
        return QStringLiteral("<tr><td>%1&nbsp;</td><td>%2&nbsp;</td><td>%3</td></tr>")
            .arg(what, mouse, gamepad);
    };
    const auto strong = [](const QString& text) {
        return QStringLiteral("<b>%1</b>").arg(text);
    };
    return "<table cellspacing=2>" +
           row(QString(), strong(QObject::tr("Mouse")), strong(QObject::tr("Gamepad"))) +
           row(strong(QObject::tr("Tilt")), QObject::tr("move"), QObject::tr("left stick")) +
           row(strong(QObject::tr("Level")), QObject::tr("middle click"), QObject::tr("let go")) +
           row(strong(QObject::tr("Tap")), QObject::tr("left click"), QObject::tr("A")) +
           row(strong(QObject::tr("Circle")), QObject::tr("wheel"), QObject::tr("cross up, down")) +
           row(strong(QObject::tr("Camera")), QObject::tr("hold right"),
               QObject::tr("right stick, or hold B")) +
           "</table>" +
           QObject::tr("A tap opens the menu and picks in it, a circle moves on in it. "
                       "The keys are the game's: R, +, -, Esc, arrows.");
}

}  // namespace

HandWindow::HandWindow(SensorServer& server_, int framesPerSecond)
    : server(server_),
      motion(framesPerSecond),
      padHand(framesPerSecond),
      handPad(new HandPad),
      clients(new QLabel)
{
    setWindowTitle(tr("Rollix hand"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(handPad);
    auto* help = new QLabel(legend());
    help->setWordWrap(true);
    help->setFixedWidth(handPad->sizeHint().width());
    layout->addWidget(help);
    layout->addWidget(clients);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(
        handPad, &HandPad::taken, this, [this] { source = Source::Mouse; });
    connect(handPad, &HandPad::tapped, this, [this] { motion.tap(); });
    connect(handPad, &HandPad::circled, this, &HandWindow::circle);
    connect(&server, &SensorServer::frameDue, this, &HandWindow::prepareFrame);
    connect(&server, &SensorServer::frameSent, this, &HandWindow::showFrame);
    connect(&server, &SensorServer::clientsChanged, this, &HandWindow::showClients);
    showClients();
}

QString HandWindow::status() const
{
    return clients->text();
}

void HandWindow::prepareFrame()
{
    if (handPad->follow())
        source = Source::Mouse;
    usePads();
    motion.setWish(wish());
    motion.step(server.player());
    handPad->pointerHand().sent(motion.yaw(), motion.lift());
}

void HandWindow::usePads()
{
    pads.poll();
    if (leaving)
        return;
    if (pads.wasTouched())
        source = Source::Gamepad;
    else if (pads.hasLostPad() && source == Source::Gamepad)
        source = Source::None;
    for (const Gamepads::Press press : pads.presses())
        if (press == Gamepads::Press::Tap)
            motion.tap();
        else
            circle(press == Gamepads::Press::CircleOn);
}

HandWish HandWindow::wish()
{
    const HandWish padWish = padHand.next(pads.state());
    switch (source) {
    case Source::Mouse:
        return handPad->pointerHand().wish();
    case Source::Gamepad:
        return padWish;
    case Source::None:
        break;
    }
    padHand.drop();
    return {};
}

void HandWindow::showFrame()
{
    if (isVisible())
        handPad->draw(server.player().hands);
    const bool isServed = server.port() != 0;
    if (leaving && !motion.isHere() && isServed) {
        server.stream(false);
        server.close();
        emit left();
    }
}

void HandWindow::circle(bool clockwise)
{
    if (server.player().movementCount() < mostGestures)
        server.player().circle(1.0, clockwise);
}

void HandWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        letGo();
    game.pass(*event);
}

void HandWindow::keyReleaseEvent(QKeyEvent* event)
{
    game.pass(*event);
}

void HandWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && !isActiveWindow()) {
        letGo();
        game.releaseKeys();
    }
}

// The board would go on turning as the hand last had it, so the hand does not just vanish.
void HandWindow::closeEvent(QCloseEvent* event)
{
    letGo();
    source = Source::None;
    leaving = true;
    QWidget::closeEvent(event);
}

void HandWindow::letGo()
{
    handPad->letGo();
    if (source == Source::Mouse)
        source = Source::None;
}

void HandWindow::showClients()
{
    clients->setText(server.clientCount() == 0 ? tr("No game listens yet.")
                                               : tr("The game listens."));
}
