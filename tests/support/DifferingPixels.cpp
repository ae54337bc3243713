#include "support/DifferingPixels.h"

#include <cstdlib>

int differingPixels(const QImage& a, const QImage& b, int tolerance)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb first = a.pixel(x, y);
            const QRgb second = b.pixel(x, y);
            if (std::abs(qRed(first) - qRed(second)) > tolerance ||
                std::abs(qGreen(first) - qGreen(second)) > tolerance ||
                std::abs(qBlue(first) - qBlue(second)) > tolerance)
                ++count;
        }
    }
    return count;
}
