#include "program/Sight.h"

Sight lookAt(const QImage& image)
{
    Sight sight;
    // The hearts of the score are red too; they stand above.
    for (int y = image.height() / 10; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qRed(pixel) > 90 && qGreen(pixel) < 50 && qBlue(pixel) < 50) {
                ++sight.red;
                sight.redX += x;
            } else if (qRed(pixel) > qGreen(pixel) + 15 && qGreen(pixel) > qBlue(pixel) + 15) {
                ++sight.wood;
            } else if (qBlue(pixel) == 153 && qRed(pixel) == 51 && qGreen(pixel) == 51) {
                ++sight.sky;
            }
        }
    }
    if (sight.red > 0)
        sight.redX /= sight.red;
    return sight;
}
