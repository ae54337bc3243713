#pragma once

#include "SensorServer.h"

#include <QWidget>

#include <map>

class HandPad;
class QAbstractButton;
class QCheckBox;
class QLabel;
class QPushButton;

/// The pad, the switches and the gestures, and the service that sends what they make.
class HandWindow : public QWidget
{
    Q_OBJECT

public:
    /// The server is listening and outlives the window.
    explicit HandWindow(SensorServer& server);

    HandPad& pad() { return *handPad; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPushButton* gestureButton(const QString& text, Qt::Key key, const QString& hint);
    void updateHands();
    void showClients();

    SensorServer& server;
    HandPad* handPad;
    QCheckBox* handSwitch;
    QCheckBox* secondHandSwitch;
    QLabel* clients;
    std::map<int, QAbstractButton*> keys;
};
