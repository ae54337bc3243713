#include "GameProcess.h"
#include "GameWindow.h"
#include "HandPad.h"
#include "HandWindow.h"
#include "SensorServer.h"

#include <CLI/CLI.hpp>
#include <QApplication>
#include <QIcon>
#include <QScreen>

#include <algorithm>
#include <cstdint>
#include <iostream>

namespace {

constexpr std::uint16_t gamePort = 6437;  // the one that the game asks for
// An unhurried finger is for programs that have to recognise what it does.
constexpr double quickFinger = 3.0;

// Around a window: what its frame takes, and some air.
constexpr int margin = 12;
constexpr int titleHeight = 36;

/// The hand at the screen's right side.
QRect placeHand(HandWindow& window, const QRect& screen)
{
    window.adjustSize();
    const QSize size = window.sizeHint();
    window.move(screen.right() - size.width() - margin, screen.top() + titleHeight);
    return QRect(window.pos(), size);
}

/// What is left of the screen beside the hand, at most as high as the game's picture is made for.
QRect placeForGame(const QRect& screen, const QRect& hand)
{
    const int width = hand.left() - screen.left() - 2 * margin;
    const int height = std::min(screen.height() - titleHeight - margin, width * 3 / 4);
    return QRect(screen.left(), screen.top(), width, height);
}

void say(const QString& line)
{
    std::cout << line.toStdString() << std::endl;
}

/// The window with a hand that tilts, for the manual.
int savePicture(HandWindow& window, const QString& file)
{
    PlayedHand hand;
    hand.pitch = -0.2f;
    hand.roll = -0.3f;
    window.pad().draw({hand});
    window.adjustSize();
    return window.grab().save(file) ? 0 : 1;
}

}  // namespace

// Plays a hand sensor for the game, by mouse or gamepad, and brings the game up beside it.
// NOLINTNEXTLINE(bugprone-exception-escape): options that were put together wrongly may end it
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setDesktopFileName("rollix-hand");
    QApplication::setWindowIcon(QIcon(":/rollix-hand.png"));

    CLI::App options(
        "Brings up Rollix with a hand beside it, which the mouse or a gamepad moves: the hand "
        "plays the hand sensor's service for the game.");
    std::uint16_t port = gamePort;
    int rate = 100;
    bool alone = false;
    bool plain = false;
    std::string picture;
    options.add_flag("--alone", alone, "The hand only, for a game that is started by itself");
    options
        .add_option("--port", port, "Port on 127.0.0.1; any other than the game's means --alone")
        ->capture_default_str();
    options.add_option("--rate", rate, "Frames a second")
        ->check(CLI::Range(60, 200))
        ->capture_default_str();
    options.add_flag("--no-gestures", plain,
                     "Tell no gestures, as newer services do; the game has to see them in the "
                     "moving finger");
    options.add_option("--picture", picture, "Writes a picture of the window there, and ends");
    CLI11_PARSE(options, argc, argv);

    SensorServer::Behaviour behaviour;
    behaviour.framesPerSecond = rate;
    behaviour.recognizesGestures = !plain;
    behaviour.pace = plain ? 1.0 : quickFinger;
    // The mouse that plays the hand is in this window, so the game's is not the active one.
    behaviour.mindsFocus = false;
    SensorServer server(behaviour);
    HandWindow window(server, rate);
    if (!picture.empty())
        return savePicture(window, QString::fromStdString(picture));
    if (!server.listen(port)) {
        say(QStringLiteral("A hand or a sensor's service is here already: port %1 is taken.")
                .arg(port));
        return 1;
    }

    // The window says when the hand has left, and the game when it has ended.
    QApplication::setQuitOnLastWindowClosed(false);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QRect place = placeHand(window, screen);
    GameProcess game;
    QObject::connect(&game, &GameProcess::ended, &QApplication::exit);
    QObject::connect(&game, &GameProcess::crashed, [] {
        say(QStringLiteral("The game has crashed."));
        QApplication::exit(1);
    });
    const bool bringsGame = !alone && port == gamePort && !GameWindow().isThere();
    if (bringsGame) {
        const QString program = GameProcess::find();
        if (program.isEmpty() || !game.start(program, placeForGame(screen, place))) {
            say(QStringLiteral(
                "I cannot find the game: rollix should be beside me or on the PATH."));
            return 1;
        }
    } else {
        QObject::connect(&window, &HandWindow::left, &QApplication::quit);
    }
    window.show();
    server.stream(true);
    return QApplication::exec();
}
