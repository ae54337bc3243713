#include "LevelColor.h"

#include "level/LevelPixel.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int reach = 4;      // steps of a channel to either side of the obvious colour
constexpr double tie = 1e-6;  // of distances, where the darker colour is taken

/// What a channel would have to be, 0 to 255: red, green and blue have the phases 5, 3 and 1 on the
/// circle of hues. QColor rounds to 16 bits, which decides where two colours are equally near.
double exactChannel(const Cell& cell, int phase)
{
    const double place = std::fmod(phase + cell.hue / 60.0, 6.0);
    const double missing = std::clamp(std::min(place, 4.0 - place), 0.0, 1.0);
    return 255.0 * (cell.value / 100.0) * (1.0 - cell.saturation / 100.0 * missing);
}

bool decodesTo(QRgb color, const Cell& cell)
{
    const LevelPixel pixel = LevelPixel::decode(color);
    return pixel.value == cell.value &&
           (cell.value == 0 || (pixel.hue == cell.hue && pixel.saturation == cell.saturation));
}

}  // namespace

std::optional<QRgb> nearestColor(const Cell& cell)
{
    const double ideal[3] = {exactChannel(cell, 5), exactChannel(cell, 3), exactChannel(cell, 1)};
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
                if (decodesTo(color, cell) && (!nearest || distance < smallest - tie)) {
                    nearest = color;
                    smallest = distance;
                }
            }
        }
    }
    return nearest;
}
