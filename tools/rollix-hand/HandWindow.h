#pragma once

#include "GameWindow.h"
#include "Gamepads.h"
#include "HandMotion.h"
#include "PadHand.h"
#include "SensorServer.h"

#include <QWidget>

class HandPad;
class QLabel;

/// The hand beside the game: mouse and gamepads play it, the service sends it, and the window shows
/// what is sent. Whichever of them was used last has the hand. Its keys are the game's.
class HandWindow : public QWidget
{
    Q_OBJECT

public:
    /// The server is listening and outlives the window. `framesPerSecond` is its rate.
    HandWindow(SensorServer& server, int framesPerSecond);

    HandPad& pad() { return *handPad; }
    QString status() const;

signals:
    /// The window is closed, the hand has come level and gone, and so has the service.
    void left();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    enum class Source { None, Mouse, Gamepad };

    void prepareFrame();
    void showFrame();
    void usePads();
    HandWish wish();
    void circle(bool clockwise);
    void letGo();
    void showClients();

    SensorServer& server;
    HandMotion motion;
    Gamepads pads;
    PadHand padHand;
    GameWindow game;
    HandPad* handPad;
    QLabel* clients;
    Source source = Source::None;
    bool leaving = false;
};
