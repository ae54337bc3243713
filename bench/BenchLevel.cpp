#include "BenchLevel.h"

#include "game/Rollix.h"
#include "support/LevelPicture.h"
#include "support/SharedWorld.h"

#include <initializer_list>
#include <vector>

namespace {

constexpr unsigned int levelNumber = 1;
constexpr int interactiveEvery = 10;  // cells

constexpr int standardHue = 90;
constexpr int checkpointHue = 135;
constexpr int elevatorHue = 180;
constexpr int ghostHue = 225;
constexpr int buttonHue = 270;
constexpr int portalHue = 315;
constexpr int trapHue = 0;
constexpr int itemHue = 45;

constexpr int wellSaturation = 50;
constexpr int topPortalSaturation = 50;
constexpr int floorValue = 73;

std::vector<QRgb> colorsOf(std::initializer_list<Cell> cells)
{
    std::vector<QRgb> colors;
    for (const Cell& cell : cells)
        colors.push_back(colorOf(cell));
    return colors;
}

/// Floors, walls, towers and ramps of every direction.
std::vector<QRgb> staticColors()
{
    return colorsOf({{standardHue, 100, 73},
                     {standardHue, 100, 86},
                     {standardHue, 100, 73},
                     {standardHue, 100, 74},
                     {standardHue, 100, 73},
                     {standardHue, 100, 75},
                     {standardHue, 100, 100},
                     {standardHue, 100, 76},
                     {standardHue, 100, 73},
                     {standardHue, 100, 77},
                     {standardHue, 100, 95}});
}

std::vector<QRgb> interactiveColors()
{
    return colorsOf({{checkpointHue, 70, 73, 1},
                     {elevatorHue, 90, 86, 2},
                     {ghostHue, 90, 86, 3},
                     {buttonHue, 90, 73, 2},
                     {portalHue, topPortalSaturation, 86, 4},
                     {trapHue, wellSaturation, 73, 5},
                     {itemHue, 90, 73, 6},
                     {trapHue, 90, 73, 7},
                     {trapHue, 80, 73, 8},
                     {trapHue, 70, 73, 9},
                     {itemHue, 70, 73, 10},
                     {itemHue, 50, 73, 11}});
}

}  // namespace

QImage mixedLevel(int size)
{
    const std::vector<QRgb> statics = staticColors();
    const std::vector<QRgb> interactive = interactiveColors();
    QImage picture(size, size, QImage::Format_ARGB32);
    for (int cell = 0; cell < size * size; ++cell) {
        const bool isStatic = cell % interactiveEvery != 0;
        const std::vector<QRgb>& colors = isStatic ? statics : interactive;
        const std::size_t turn = std::size_t(isStatic ? cell : cell / interactiveEvery);
        picture.setPixel(cell % size, cell / size, colors[turn % colors.size()]);
    }
    picture.setPixel(size / 2, size / 2, colorOf(cells::start));
    return picture;
}

QImage effectsLevel(bool effects)
{
    constexpr int size = 12;
    LevelPicture picture(size, size, cells::floor);
    picture.set(size / 2, size / 2, cells::start);
    const Cell portal{portalHue, topPortalSaturation, floorValue, 1};
    const Cell well{trapHue, wellSaturation, floorValue, 2};
    picture.set(2, 2, effects ? portal : cells::floor);
    picture.set(size - 3, size - 3, effects ? portal : cells::floor);
    picture.set(2, size - 3, effects ? well : cells::floor);
    picture.set(size - 3, 2, effects ? well : cells::floor);
    return picture.image();
}

QImage benchLevel(int argument)
{
    const QString campaign = QString(ROLLIX_SOURCE_DIR "/data/Rollix/level%1.png");
    return argument > 0 ? mixedLevel(argument) : QImage(campaign.arg(-argument));
}

void load(const QImage& picture)
{
    // Brings the folder that "data" is in: before, it would be the checkout's own.
    Rollix& game = *sharedWorld().game;
    picture.save(QString("data/Rollix/level%1.png").arg(levelNumber));
    game.loadLevel(levelNumber);
}
