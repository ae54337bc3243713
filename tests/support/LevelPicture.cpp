#include "support/LevelPicture.h"

namespace {

Cell cellOf(char letter)
{
    switch (letter) {
    case '.':
        return cells::floor;
    case '#':
        return cells::wall;
    case 'T':
        return cells::tower;
    case 'S':
        return cells::start;
    case 'R':
        return cells::required;
    case 'O':
        return cells::optional;
    case 'G':
        return cells::goal;
    default:
        return cells::hole;
    }
}

}  // namespace

QRgb colorOf(const Cell& cell)
{
    const std::optional<QRgb> color = nearestColor(cell);
    if (!color)
        qFatal("no colour for hue %d, saturation %d, value %d", cell.hue, cell.saturation,
               cell.value);
    return *color;
}

LevelPicture::LevelPicture(int width, int height, const Cell& background)
    : picture(width, height, QImage::Format_ARGB32)
{
    picture.fill(colorOf(background));
}

LevelPicture::LevelPicture(std::initializer_list<std::string> rows)
{
    paint(rows);
}

LevelPicture::LevelPicture(const std::vector<std::string>& rows)
{
    paint(rows);
}

void LevelPicture::paint(const std::vector<std::string>& rows)
{
    picture = QImage(int(rows.front().size()), int(rows.size()), QImage::Format_ARGB32);
    for (int row = 0; row < picture.height(); ++row)
        for (int column = 0; column < picture.width(); ++column)
            set(column, row, cellOf(rows[std::size_t(row)].at(std::size_t(column))));
}

LevelPicture& LevelPicture::set(int column, int row, const Cell& cell)
{
    picture.setPixel(column, row, colorOf(cell));
    return *this;
}
