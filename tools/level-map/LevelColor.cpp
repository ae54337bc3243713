#include "LevelColor.h"

#include "level/LevelPixel.h"

#include <cmath>

namespace {

constexpr int reach = 4;  // steps of a channel to either side of the obvious colour

bool decodesTo(QRgb color, const Cell& cell)
{
    const LevelPixel pixel = LevelPixel::decode(color);
    return pixel.value == cell.value &&
           (cell.value == 0 || (pixel.hue == cell.hue && pixel.saturation == cell.saturation));
}

}  // namespace

std::optional<QRgb> nearestColor(const Cell& cell)
{
    const QColor exact =
        QColor::fromHsvF(cell.hue / 360.0, cell.saturation / 100.0, cell.value / 100.0);
    const double ideal[3] = {exact.redF() * 255.0, exact.greenF() * 255.0, exact.blueF() * 255.0};
    const auto channel = [&](int index, int offset) {
        return qBound(0, int(std::lround(ideal[index])) + offset, 255);
    };
    std::optional<QRgb> nearest;
    double smallest = 0.0;
    for (int red = -reach; red <= reach; ++red) {
        for (int green = -reach; green <= reach; ++green) {
            for (int blue = -reach; blue <= reach; ++blue) {
                const QRgb color =
                    qRgba(channel(0, red), channel(1, green), channel(2, blue), cell.alpha);
                const double distance = std::abs(qRed(color) - ideal[0]) +
                                        std::abs(qGreen(color) - ideal[1]) +
                                        std::abs(qBlue(color) - ideal[2]);
                if (decodesTo(color, cell) && (!nearest || distance < smallest)) {
                    nearest = color;
                    smallest = distance;
                }
            }
        }
    }
    return nearest;
}
