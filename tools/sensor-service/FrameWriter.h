#pragma once

#include "PlayedHand.h"

#include <QByteArray>

#include <vector>

/// One report of a gesture.
struct PlayedGesture
{
    enum class Type { Circle, ScreenTap };

    Type type = Type::ScreenTap;
    int id = 1;
    const char* state = "stop";
    int handId = 1;
    qint64 duration = 10000;  // us
    QVector3D normal{0, 0, -1};
    QVector3D place;  // a circle's centre, a tap's turning point
    double progress = 1.0;
    double radius = 0.0;
};

struct PlayedFrame
{
    qint64 id = 1;
    qint64 timestamp = 0;  // us
    double frameRate = 0.0;
    std::vector<PlayedHand> hands;
    std::vector<PlayedGesture> gestures;
    bool tellsGestures = true;  // newer services leave the whole list out
};

/// The number of a hand's finger in the frames written here.
int pointableId(int handId, int finger);

/// The service's text messages.
QByteArray helloMessage(bool recognizesGestures);
QByteArray deviceMessage(bool attached);
QByteArray frameMessage(const PlayedFrame& frame);
