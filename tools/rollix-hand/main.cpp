#include "HandWindow.h"
#include "SensorServer.h"

#include <CLI/CLI.hpp>
#include <QApplication>
#include <QIcon>

#include <cstdint>
#include <iostream>

// Plays a hand sensor for the game: run it, run the game, move the mouse.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setDesktopFileName("rollix-hand");
    QApplication::setWindowIcon(QIcon(":/rollix-hand.png"));

    CLI::App options(
        "Plays the hand sensor's service, so that Rollix can be steered with the mouse "
        "in place of a hand.");
    std::uint16_t port = 6437;
    int rate = 100;
    bool plain = false;
    options.add_option("--port", port, "Port on 127.0.0.1; the game asks for 6437")
        ->capture_default_str();
    options.add_option("--rate", rate, "Frames a second")
        ->check(CLI::Range(1, 200))
        ->capture_default_str();
    options.add_flag("--no-gestures", plain,
                     "Tell no gestures, as newer services do; the game has to see them in the "
                     "moving finger");
    CLI11_PARSE(options, argc, argv);

    SensorServer::Behaviour behaviour;
    behaviour.framesPerSecond = rate;
    behaviour.recognizesGestures = !plain;
    // The mouse that plays the hand is in this window, so the game's is not the active one.
    behaviour.mindsFocus = false;
    SensorServer server(behaviour);
    if (!server.listen(port)) {
        std::cout << "Port " << port << " is not to be had: " << server.errorString().toStdString()
                  << ". Is a sensor service running already?" << std::endl;
        return 1;
    }
    HandWindow window(server);
    window.show();
    server.stream(true);
    return QApplication::exec();
}
