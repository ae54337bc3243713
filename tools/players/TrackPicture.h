#pragma once

#include "LevelRun.h"

#include <QImage>

/// A level's picture, enlarged and darkened, with the ways of the ball over it, and
/// a red cross where it was lost.
QImage trackPicture(const QImage& level, const std::vector<RunResult>& runs);
