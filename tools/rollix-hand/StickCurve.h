#pragma once

#include <QVector2D>

/// A stick as the hand takes it, each way from -1 to 1 and never longer than 1. It rests in a round
/// zone in the middle, where worn sticks stay when they are let go, begins at nothing at its edge,
/// and is finer near it than far out.
QVector2D curvedStick(const QVector2D& stick);

/// Whether somebody holds the stick out of its zone of rest.
bool isDeflected(const QVector2D& stick);
