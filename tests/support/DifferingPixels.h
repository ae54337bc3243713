#pragma once

#include <QImage>

/// The number of pixels by which two pictures of one size differ, counting those where a channel
/// differs by more than `tolerance`.
int differingPixels(const QImage& a, const QImage& b, int tolerance = 8);
